#ifndef TESTS_DOCS_TERMINAL_H
#define TESTS_DOCS_TERMINAL_H

#include <sys/types.h>

#include <string>
#include <vector>

namespace test {

// A program on a large terminal that is operated by keys.
class Terminal {
 public:
  // The program is looked up in PATH.
  Terminal(const std::vector<std::string>& commandLine, const std::string& directory);
  ~Terminal();
  Terminal(const Terminal&) = delete;
  Terminal& operator=(const Terminal&) = delete;

  void type(const std::string& keys);
  // Returns what was printed before the text, and skips the text. Throws when the text is not
  // printed.
  std::string readUntil(const std::string& text);

 private:
  int m_terminal = -1;
  pid_t m_pid = -1;
  std::string m_printed;  // printed, but not returned yet
};

}  // namespace test

#endif
