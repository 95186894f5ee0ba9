#ifndef HOST_FS_OWNER_H
#define HOST_FS_OWNER_H

#include <sys/types.h>

#include <string>

#include "platform/export.h"

namespace host {

// Gives a new file or directory that root created the owner and group of its directory, so that the
// agent's user can use it. Does nothing for other users. `fd` is the new file or directory, and
// `directory` is the open directory. Returns 0 or an errno.
int giveToOwnerOf(int directory, int fd);

// Makes a directory belong to this user and group. Does nothing if it already belongs to the user.
// Follows links as a write does. Returns 0 or an errno: ENOTEMPTY for a directory of another user
// that is not empty, because its content would not change its owner.
PLATFORM_API int giveEmptyDirectory(const std::string& path, uid_t owner, gid_t group);

}  // namespace host

#endif
