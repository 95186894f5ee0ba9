#ifndef HOST_FS_READ_LINK_H
#define HOST_FS_READ_LINK_H

#include <sys/stat.h>

#include <string>

namespace host {

// Implements FileSystem::readLink. `link` and `target` are of the same link, even if another
// process replaces it.
int readOneLink(int directory, const char* path, std::string& target, struct stat& link);

}  // namespace host

#endif
