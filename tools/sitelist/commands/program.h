#ifndef TOOLS_SITELIST_COMMANDS_PROGRAM_H
#define TOOLS_SITELIST_COMMANDS_PROGRAM_H

#include <memory>
#include <string>
#include <vector>

#include "tools/sitelist/cli/command_line.h"
#include "tools/sitelist/report/context.h"

namespace tool {

// The command line of the tool with all its options and commands, which put what they read into the
// context.
std::unique_ptr<CommandLine> makeCommandLine(Context& context);

// The same with no other commands than those whose names are among `words`, because most of what a
// short command takes would be the making of all others. A line of these words that it parses means
// the same to the whole command line; of any other line only that one can say what is wrong.
std::unique_ptr<CommandLine> makeCommandLineFor(const std::vector<std::string>& words,
                                                Context& context);

}  // namespace tool

#endif
