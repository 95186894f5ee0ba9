#ifndef TESTS_CLI_PSEUDO_TERMINAL_H
#define TESTS_CLI_PSEUDO_TERMINAL_H

#include <string>

namespace test {

// A terminal of this width, for a program to write to.
class PseudoTerminal {
 public:
  explicit PseudoTerminal(int columns);
  ~PseudoTerminal();
  PseudoTerminal(const PseudoTerminal&) = delete;
  PseudoTerminal& operator=(const PseudoTerminal&) = delete;

  // The end that the program writes to. Closed by readAll() and readUntil().
  int programEnd() const { return m_programEnd; }
  // What is written until the text is there, or until the last program is gone.
  std::string readUntil(const std::string& text);
  // What is written until the last program is gone, as it was written.
  std::string readAll();

 private:
  void closeProgramEnd();
  int m_ourEnd;
  int m_programEnd;
};

}  // namespace test

#endif
