#ifndef TESTS_CLI_PSEUDO_TERMINAL_H
#define TESTS_CLI_PSEUDO_TERMINAL_H

#include <string>

namespace test {

// A terminal of this width for the output and the input of a program.
class PseudoTerminal {
 public:
  explicit PseudoTerminal(int columns);
  ~PseudoTerminal();
  PseudoTerminal(const PseudoTerminal&) = delete;
  PseudoTerminal& operator=(const PseudoTerminal&) = delete;

  // The descriptor for the program. readAll() and readUntil() close it.
  int programEnd() const { return m_programEnd; }
  // Returns whether the terminal shows what is typed.
  bool echoes() const;
  void type(const std::string& text) const;
  // Returns what is written until the text was written or the last program has ended.
  std::string readUntil(const std::string& text);
  // Returns what is written until the last program has ended, unchanged.
  std::string readAll();

 private:
  void closeProgramEnd();
  int m_ourEnd;
  int m_programEnd;
};

}  // namespace test

#endif
