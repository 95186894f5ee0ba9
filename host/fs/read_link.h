#ifndef HOST_FS_READ_LINK_H
#define HOST_FS_READ_LINK_H

#include <sys/stat.h>

#include <string>

namespace host {

// The call FileSystem::readLink of the system's own file system.
int readOneLink(int directory, const char* path, std::string& target, struct stat& link);

}  // namespace host

#endif
