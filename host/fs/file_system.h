#ifndef HOST_FS_FILE_SYSTEM_H
#define HOST_FS_FILE_SYSTEM_H

#include <sys/stat.h>
#include <sys/types.h>

#include <cstddef>
#include <string>
#include <vector>

#include "platform/export.h"

// Every system call that the host makes on the agent's files, so that one object can stand between
// the host and the disk. All calls may come from any thread.
namespace host {

// One call a member. A result is 0 or more, or the negated errno of the failure. No call is ever
// interrupted by a signal. A path that is not absolute counts from `directory`, an open directory
// or AT_FDCWD; a path with a zero byte in it gives -EINVAL. Descriptors are closed when another
// program is started.
class PLATFORM_API FileSystem {
 public:
  FileSystem() = default;
  FileSystem(const FileSystem&) = delete;
  FileSystem& operator=(const FileSystem&) = delete;
  virtual ~FileSystem();

  // A new descriptor. `flags` are those of open(2).
  virtual int open(int directory, const std::string& path, int flags, mode_t mode) = 0;
  // The number of bytes read, which may be fewer than asked for; 0 is the end.
  virtual ssize_t read(int fd, void* data, std::size_t size) = 0;
  // The number of bytes written, which may be fewer than asked for.
  virtual ssize_t write(int fd, const void* data, std::size_t size) = 0;
  // Returns once the file or directory is on stable storage.
  virtual int sync(int fd) = 0;
  // The descriptor is gone in any case.
  virtual int close(int fd) = 0;
  // flock(2); waits for ever unless `operation` has LOCK_NB.
  virtual int lock(int fd, int operation) = 0;
  // fchmod(2).
  virtual int chmod(int fd, mode_t mode) = 0;
  // fchown(2).
  virtual int chown(int fd, uid_t owner, gid_t group) = 0;
  // fstat(2).
  virtual int statOpen(int fd, struct stat& out) = 0;

  // fstatat(2); with `follow`, of what a symbolic link points to.
  virtual int stat(int directory, const std::string& path, bool follow, struct stat& out) = 0;
  // What a symbolic link says, in whole, and what it is itself: both of the very same link, even
  // when it is exchanged meanwhile. -EINVAL for anything else.
  virtual int readLink(int directory, const std::string& path, std::string& target,
                       struct stat& link) = 0;
  // The names in an open directory, without "." and "..".
  virtual int list(int directory, std::vector<std::string>& names) = 0;
  // Both names are in `directory`; a file that has the new name is replaced.
  virtual int rename(int directory, const std::string& from, const std::string& to) = 0;
  // Gives a file a second name in `directory`; -EEXIST when that name is taken.
  virtual int link(int directory, const std::string& from, const std::string& to) = 0;
  // Removes a name; not that of a directory.
  virtual int unlink(int directory, const std::string& path) = 0;
  // mkdirat(2).
  virtual int makeDirectory(int directory, const std::string& path, mode_t mode) = 0;
  // 0 when the effective user may use the file in the given way (R_OK, W_OK).
  virtual int access(const std::string& path, int mode) = 0;
};

// The file system in force: the system's own unless another one was set.
PLATFORM_API FileSystem& fileSystem();

// Puts another one in force for the whole process; null brings back the system's own. Descriptors
// that the host holds at that moment are used and closed through the new one.
PLATFORM_API void setFileSystem(FileSystem* replacement);

// The system's own, for one that passes calls on.
PLATFORM_API FileSystem& posixFileSystem();

}  // namespace host

#endif
