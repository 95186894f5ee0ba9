#ifndef TOOLS_SITELIST_GENERATOR_COMPLETION_H
#define TOOLS_SITELIST_GENERATOR_COMPLETION_H

#include <functional>
#include <string>
#include <vector>

#include "tools/sitelist/cli/command_table.h"

// What the completion scripts of all shells have in common.
namespace tool {

// Calls `visit` for the program and every command below it; `path` has the names from the first
// command down, with spaces between them, and is empty for the program.
void forEachCommand(
    const CommandInfo& program,
    const std::function<void(const CommandInfo& command, const std::string& path)>& visit);

// How a value is completed: "words", "list", "site", "directory", "file" or "nothing".
std::string completionOf(const OptionInfo& option);

// The words that a value may be or is likely to be.
const std::vector<std::string>& wordsFor(const OptionInfo& option);

// The options of a command but --help, of which that of the program stands for all.
std::vector<OptionInfo> ownOptions(const CommandInfo& command, const std::string& path);

bool takesValue(const OptionInfo& option);
// Whether all that follows the option belongs to it.
bool takesRest(const OptionInfo& option);

// The beginning of a help text, on one line.
std::string brief(const std::string& help);

// One word for a shell that is like sh.
std::string quoted(const std::string& text);

std::string joined(const std::vector<std::string>& words, const std::string& separator = " ");

}  // namespace tool

#endif
