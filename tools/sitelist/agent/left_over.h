#ifndef TOOLS_SITELIST_AGENT_LEFT_OVER_H
#define TOOLS_SITELIST_AGENT_LEFT_OVER_H

#include <string>

namespace tool {

// Returns a new name for a scratch directory that nobody can predict.
std::string makeScratchName();

// Removes a directory with all that it holds. Follows no symbolic link, and leaves what belongs to
// another user than the directory.
void removeScratchDirectory(const std::string& path);

// Removes the scratch directories in `parent` that no living process has locked. One is removed
// only if its owner could remove it as well: it belongs to the owner of `parent` or, where nobody
// can rename the directories of others, to the effective user.
void removeLeftOverScratchDirectories(const std::string& parent);

}  // namespace tool

#endif
