#ifndef TESTS_DOCS_HELP_TEXTS_H
#define TESTS_DOCS_HELP_TEXTS_H

#include <set>
#include <string>
#include <vector>

namespace test {

// What the help of one command says.
struct HelpText {
  std::vector<std::string> path;   // of the command; empty for the program
  std::set<std::string> own;       // options with two dashes
  std::set<std::string> options;   // with those of the commands above
  std::set<std::string> commands;  // below it
  std::string text;

  std::string name() const;  // of the whole command line
};

// The program's help, then that of all commands.
const std::vector<HelpText>& helpTexts();

}  // namespace test

#endif
