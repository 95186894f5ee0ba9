#ifndef HOST_FS_FILES_H
#define HOST_FS_FILES_H

#include <sys/types.h>

#include <cstddef>
#include <string>

#include "platform/export.h"

// Reads and replaces whole files through fileSystem(). The results are 0 or the errno of the
// failure. Any thread.
//
// Writing, creating and removing follow a symbolic link anywhere in the path only if it belongs to
// the effective user or to root. Any other link gives EPERM and an error line that names it.
// Reading follows all symbolic links. A key in "keystore/" must not be a link;
// host/crypto/key_file.h reads it.
//
// A file or directory that root creates gets the owner and group of the directory it is in.
namespace host {

// Reads a whole regular file. Fails with EISDIR for a directory, EINVAL for another file that is
// not regular, and EFBIG for a file of more than `limit` bytes. Never waits on a pipe or a device.
// On failure `bytes` is unchanged.
PLATFORM_API int readRegularFile(const std::string& path, std::size_t limit, std::string& bytes);

// Creates or atomically replaces a file. Every process finds the whole old file or the whole new
// one, even after a crash or a power cut. A symbolic link is kept, and its target is replaced. An
// existing file keeps its permissions and owner; a new one gets `modeOfNew`. Other hard links of
// the old file keep the old content.
//
// On failure the old file is unchanged and no temporary file remains. There is one exception. If
// only the final sync of the directory fails, the errno is returned although the new file is in
// place. The next successful call in that directory removes temporary files of killed processes.
PLATFORM_API int replaceFile(const std::string& path, const void* data, std::size_t size,
                             mode_t modeOfNew);

// Does the same for a secret. Only the owner may read and write the new file, whatever the old mode
// was.
PLATFORM_API int replaceSecretFile(const std::string& path, const void* data, std::size_t size);

// Determines whether a write to `path` would replace the file of `other`. This is so if both lead
// to the same name in the same directory after symbolic links at their ends are followed. Two hard
// links are different files here, because only the name that is written changes. `answer` is set
// only if the result is 0.
PLATFORM_API int wouldReplace(const std::string& path, const std::string& other, bool& answer);

// Removes a file or a symbolic link durably: a power cut does not restore it. Returns 0 also if
// there is none.
PLATFORM_API int removeFile(const std::string& path);

// Creates a directory in an existing one, durably. The mode is `mode` without the bits of the
// process's umask, and must not let others write. Returns 0 also if the directory exists.
PLATFORM_API int makeDirectory(const std::string& path, mode_t mode);

// Does the same, and creates all missing parents.
PLATFORM_API int makeDirectories(const std::string& path, mode_t mode);

}  // namespace host

#endif
