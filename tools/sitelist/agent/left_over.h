#ifndef TOOLS_SITELIST_AGENT_LEFT_OVER_H
#define TOOLS_SITELIST_AGENT_LEFT_OVER_H

#include <string>
#include <vector>

namespace tool {

// Returns a new, unpredictable name for a scratch directory.
std::string makeScratchName();

// Removes a directory with all that it holds. Follows no symbolic link. A directory in it that
// belongs to another user is kept, with its content.
void removeScratchDirectory(const std::string& path);

// Removes the scratch directories in `parent` that no living process has locked. A directory is
// removed only if it belongs to the owner of `parent`, or if it belongs to the effective user and
// `parent` has the sticky bit. A link of another user in the path of `parent` is not followed.
void removeLeftOverScratchDirectories(const std::string& parent);
// Returns the names of these directories.
std::vector<std::string> leftOverScratchDirectories(const std::string& parent);

}  // namespace tool

#endif
