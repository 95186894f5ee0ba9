#ifndef TOOLS_SITELIST_CLI_COMPLETION_H
#define TOOLS_SITELIST_CLI_COMPLETION_H

#include <functional>
#include <string>
#include <vector>

#include "tools/sitelist/cli/command_table.h"

// Completion of a command line that is being typed.
namespace tool {

// What the shell must do in addition to offering the candidates.
enum class Further { Nothing, Files, Directories, NoSpace };

// A whole word that may replace the last word of the line.
struct Candidate {
  std::string value;        // printable UTF-8, not empty
  std::string description;  // one line, or empty
};

struct Answer {
  std::vector<Candidate> candidates;  // also those without the prefix that was typed
  Further further = Further::Nothing;
};

// Returns the names of the sites in a list. The list is `file` or, when this is empty, the own list
// of the agent in `agentDirectory`. Both are as typed, and empty when the line does not have them.
using SiteNames = std::function<std::vector<std::string>(const std::string& agentDirectory,
                                                         const std::string& file)>;

// `words` are the words after the name of the program, without the quotes of the shell. They may
// have any bytes. The last one is being typed. A candidate is omitted when it is not printable, or
// when the command line would read a value as an option. Throws what `siteNames` throws, and
// std::bad_alloc.
Answer completionsOf(const CommandInfo& program, const std::vector<std::string>& words,
                     const SiteNames& siteNames);

}  // namespace tool

#endif
