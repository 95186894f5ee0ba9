#ifndef TOOLS_SITELIST_COMMANDS_PROGRAM_H
#define TOOLS_SITELIST_COMMANDS_PROGRAM_H

#include <memory>
#include <string>
#include <vector>

#include "tools/sitelist/cli/command_line.h"
#include "tools/sitelist/report/context.h"

namespace tool {

// Makes the command line of the tool with all options and commands. Their values are stored in
// `context`.
std::unique_ptr<CommandLine> makeCommandLine(Context& context);

// Makes a command line with only those commands whose names are in `words`. It saves most of the
// time of a short command. A line that it can parse means the same on the complete command line.
// For any other line, only the complete command line gives the correct message.
std::unique_ptr<CommandLine> makeCommandLineFor(const std::vector<std::string>& words,
                                                Context& context);

// Returns the names of all commands.
std::vector<std::string> commandNames();

// Returns the help text of a command, or of the tool if `command` is empty. `line` must have all
// commands. Fails if the command does not exist.
std::string helpOn(CommandLine& line, std::vector<std::string> command);

}  // namespace tool

#endif
