#ifndef TOOLS_SITELIST_PROGRAM_H
#define TOOLS_SITELIST_PROGRAM_H

#include <memory>

#include "tools/sitelist/command_line.h"
#include "tools/sitelist/context.h"

namespace tool {

// The command line of the tool with all its options and commands, which put what they read into the
// context.
std::unique_ptr<CommandLine> makeCommandLine(Context& context);

}  // namespace tool

#endif
