#ifndef TESTS_DOCS_HELP_TEXTS_H
#define TESTS_DOCS_HELP_TEXTS_H

#include <set>
#include <string>
#include <vector>

namespace test {

// The content of the help of one command.
struct HelpText {
  std::vector<std::string> path;   // the path of the command; empty for the program
  std::set<std::string> own;       // options with two dashes
  std::set<std::string> options;   // including those of the commands above
  std::set<std::string> commands;  // subcommands
  std::string text;

  std::string name() const;  // the name of the complete command line
};

// Returns the help of the program, then that of all commands.
const std::vector<HelpText>& helpTexts();

}  // namespace test

#endif
