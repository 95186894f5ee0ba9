#ifndef TOOLS_SITELIST_DOCTOR_FILE_TABLE_H
#define TOOLS_SITELIST_DOCTOR_FILE_TABLE_H

#include <sys/types.h>

#include <string>
#include <vector>

namespace tool {

// What a file must have in it, so that root can give it to the agent's user without giving away
// something else. Settings and Opaque are never given.
enum class Expected { Settings, List, Key, Nothing, Opaque, Names };

// A file or directory of an agent, as in the table of SECURITY.md.
struct FileRule {
  std::string name;  // relative to the data directory, which has an empty name
  bool isDirectory;
  bool isSecret;  // whether any permission for others is a failure
  bool isLinkAllowed;
  mode_t most;   // permissions that it may have
  mode_t least;  // permissions that it must have
  Expected content;
};

// Returns a rule for each file and directory that this agent may have. The files of a directory
// come after it.
std::vector<FileRule> fileRules(const std::string& dataDirectory);

}  // namespace tool

#endif
