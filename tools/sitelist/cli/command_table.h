#ifndef TOOLS_SITELIST_CLI_COMMAND_TABLE_H
#define TOOLS_SITELIST_CLI_COMMAND_TABLE_H

#include <string>
#include <vector>

namespace tool {

// The kind of a value, for completion. Site is a site of the agent's own list. List is a
// comma-separated list of the suggested words.
enum class Completion { Nothing, File, Directory, Site, List };

// An option or a positional argument.
struct OptionInfo {
  std::vector<std::string> names;  // including dashes; empty for an argument
  std::string valueName;           // empty for a flag
  std::string help;
  bool isFlag = false;  // a flag with a value name takes all words after it
  bool isRequired = false;
  bool isRepeatable = false;
  std::vector<std::string> choices;      // all permitted values; empty if there is no restriction
  std::vector<std::string> suggestions;  // some of the permitted values
  Completion completes = Completion::Nothing;
};

// A command, or the program itself. All lists are in the order of creation.
struct CommandInfo {
  std::string name;
  std::string description;
  std::string footer;
  std::vector<OptionInfo> arguments;
  std::vector<OptionInfo> options;  // a command also accepts the options of the commands above it
  std::vector<CommandInfo> commands;
};

}  // namespace tool

#endif
