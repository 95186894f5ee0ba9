#ifndef TOOLS_SITELIST_CLI_COMMAND_TABLE_H
#define TOOLS_SITELIST_CLI_COMMAND_TABLE_H

#include <string>
#include <vector>

namespace tool {

// What a value names, for those who offer values to choose from: a site of the agent's own list, or
// several of the words that are suggested, with commas between them.
enum class Completion { Nothing, File, Directory, Site, List };

// An option, or an argument that is told from others by its place.
struct OptionInfo {
  std::vector<std::string> names;  // with their dashes; none: an argument
  std::string valueName;           // empty for a flag
  std::string help;
  bool isFlag = false;  // one with a value name takes all that follows it on the line
  bool isRequired = false;
  bool isRepeatable = false;
  std::vector<std::string> choices;      // all values there are; empty when anything may be said
  std::vector<std::string> suggestions;  // some of the values there are
  Completion completes = Completion::Nothing;
};

// A command, or the program itself, in the order in which it was put together.
struct CommandInfo {
  std::string name;
  std::string description;
  std::string footer;
  std::vector<OptionInfo> arguments;
  std::vector<OptionInfo> options;  // a command takes those of the commands above it, too
  std::vector<CommandInfo> commands;
};

}  // namespace tool

#endif
