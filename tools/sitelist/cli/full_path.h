#ifndef TOOLS_SITELIST_CLI_FULL_PATH_H
#define TOOLS_SITELIST_CLI_FULL_PATH_H

#include <string>

namespace tool {

// Returns the full path, without "." and "..". Fails for a relative path when the current directory
// cannot be determined, for example because it was removed.
std::string fullPath(const std::string& path);

}  // namespace tool

#endif
