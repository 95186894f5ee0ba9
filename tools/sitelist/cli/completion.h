#ifndef TOOLS_SITELIST_CLI_COMPLETION_H
#define TOOLS_SITELIST_CLI_COMPLETION_H

#include <functional>
#include <string>
#include <vector>

#include "tools/sitelist/cli/command_table.h"

// Completion of the last word of a command line.
namespace tool {

// What the shell must do in addition to offering the candidates.
enum class Further { Nothing, Files, Directories, NoSpace };

// A whole word that may replace the last word of the line.
struct Candidate {
  std::string value;        // printable UTF-8, not empty
  std::string description;  // one line, or empty
};

struct Answer {
  std::vector<Candidate> candidates;  // may include candidates without the typed prefix
  Further further = Further::Nothing;
};

// Returns the names of the sites in a list. The list is `file` or, if that is empty, the agent's
// own list in `agentDirectory`. Both are unchanged values of the command line. A value that the
// line does not have is empty.
using SiteNames = std::function<std::vector<std::string>(const std::string& agentDirectory,
                                                         const std::string& file)>;

// Returns the candidates for the last of `words`. `words` are the words after the name of the
// program, without the quotes of the shell. They may have any bytes. A candidate is omitted if it
// is not printable, or if the command line would read the value as an option. Throws the exceptions
// of `siteNames`, and std::bad_alloc.
Answer completionsOf(const CommandInfo& program, const std::vector<std::string>& words,
                     const SiteNames& siteNames);

}  // namespace tool

#endif
