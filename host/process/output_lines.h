#ifndef HOST_PROCESS_OUTPUT_LINES_H
#define HOST_PROCESS_OUTPUT_LINES_H

#include <cstddef>
#include <functional>
#include <string>

namespace host {

// Divides the output of a program into lines and passes on the first ones. Empty lines are skipped.
// One object must not be used by two threads at the same time.
class OutputLines {
 public:
  static constexpr std::size_t c_maxLines = 64;
  static constexpr std::size_t c_maxBytes = 8192;  // total of all lines

  // `take` receives each line without its end.
  explicit OutputLines(std::function<void(const std::string& line)> take);

  void add(const char* bytes, std::size_t size);
  // Passes on a last line that has no end. If bytes were omitted, then passes on a line with their
  // number.
  void end();

 private:
  void addByte(char byte);
  void endLine();

  std::function<void(const std::string& line)> m_take;
  std::string m_line;
  std::size_t m_lines = 0;
  std::size_t m_bytes = 0;
  unsigned long long m_leftOut = 0;  // omitted bytes
};

}  // namespace host

#endif
