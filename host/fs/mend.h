#ifndef HOST_FS_MEND_H
#define HOST_FS_MEND_H

#include <sys/types.h>

#include <functional>
#include <string>
#include <vector>

#include "platform/export.h"

// Mends modes, owners and left-over files in the directories of an agent. Unless stated otherwise,
// links in a path are followed as for a write (host/fs/files.h), and the results are 0 or the errno
// of the failure. Any thread.
namespace host {

// Removes the permissions in `excess` from a file or directory that belongs to `owner` or to root.
// Does not follow a link at the end of the path. Fails with EPERM for another owner, ELOOP or
// ENOTDIR for a link, EMLINK for a file with several hard links, and EINVAL for anything else that
// is neither a file nor a directory.
PLATFORM_API int removePermissions(const std::string& path, mode_t excess, uid_t owner);

// Gives a file of root to a user. `isExpected` gets its bytes and returns whether the file may be
// given: the user may have moved a secret file of root to this path. It is not called if the file
// already belongs to the user, and only the group is set. Does not follow a link at the end of the
// path. Fails as removePermissions does, with EPERM if the file may not be given, with EISDIR for a
// directory, and with EFBIG above `limit` bytes.
PLATFORM_API int giveFile(const std::string& path, uid_t owner, gid_t group, std::size_t limit,
                          const std::function<bool(const std::string& bytes)>& isExpected);

// Does the same for a directory of root in which nobody else can write, and fails with ENOTDIR for
// a file. `isExpected` gets the names in it.
PLATFORM_API int giveDirectory(
    const std::string& path, uid_t owner, gid_t group,
    const std::function<bool(const std::vector<std::string>& names)>& isExpected);

// Opens a directory for reading. Returns a descriptor or the negated errno; -EPERM for a link that
// is not followed.
PLATFORM_API int openDirectory(const std::string& path);

// Gets the names of the temporary files in a directory whose writers have ended. Follows all links,
// and changes nothing.
PLATFORM_API int findLeftOverTempFiles(const std::string& directory,
                                       std::vector<std::string>& names);
// Removes these files. What cannot be removed stays.
PLATFORM_API int removeLeftOverTempFilesIn(const std::string& directory);

}  // namespace host

#endif
