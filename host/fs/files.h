#ifndef HOST_FS_FILES_H
#define HOST_FS_FILES_H

#include <sys/types.h>

#include <cstddef>
#include <string>

#include "platform/export.h"

// Whole files, read and replaced through the file-system interface in force. The results are 0 or
// the errno of what failed. Any thread.
//
// Where something is written, made or removed, a symbolic link is followed only when it belongs to
// the effective user or to root, be it the last part of the path or one before. Any other one gives
// EPERM and an error line that names the link. Reading follows symbolic links. A key in "keystore/"
// must not be one: host/crypto/key_file.h reads it.
//
// What root makes gets the owner and group of the directory that it is made in.
namespace host {

// Reads a regular file whole. A directory gives EISDIR, any other file that is not regular EINVAL,
// a file of more than `limit` bytes EFBIG. Never waits on a pipe or a device. On failure `bytes` is
// left as it was.
PLATFORM_API int readRegularFile(const std::string& path, std::size_t limit, std::string& bytes);

// Creates or replaces a file so that every other process, and every process after a crash or power
// cut, finds the whole old or the whole new file. A symbolic link that is followed keeps pointing
// where it points: its target is replaced. An existing file keeps its permissions and owner, a new
// one gets `modeOfNew`; other names of the old file keep the old file, unchanged. On failure the
// old file is untouched and no temporary file remains; only when the file is in place and the last
// step, making its name durable, fails, the new bytes are there although the errno of that step is
// returned. What a writer that was killed left behind in the directory is removed by the next call
// that succeeds there.
PLATFORM_API int replaceFile(const std::string& path, const void* data, std::size_t size,
                             mode_t modeOfNew);

// The same for a secret: the file is for its owner alone, whatever its mode was.
PLATFORM_API int replaceSecretFile(const std::string& path, const void* data, std::size_t size);

// Whether replacing `path` would replace the file that `other` leads to: both end, links at their
// ends followed, at one name in one directory. Two names of one file are two files here, since only
// the name that is written changes. `answer` is set with 0 alone.
PLATFORM_API int wouldReplace(const std::string& path, const std::string& other, bool& answer);

// Removes a file, or a symbolic link, for good: no power cut brings it back. 0 also when there is
// none.
PLATFORM_API int removeFile(const std::string& path);

// Creates a directory in one that exists, with this mode, less the process's file mode mask. The
// mode must not let others write. No power cut takes it back. 0 also when the directory exists.
PLATFORM_API int makeDirectory(const std::string& path, mode_t mode);

// The same with all missing parents.
PLATFORM_API int makeDirectories(const std::string& path, mode_t mode);

}  // namespace host

#endif
