#ifndef HOST_FS_FILE_SYSTEM_H
#define HOST_FS_FILE_SYSTEM_H

#include <sys/stat.h>
#include <sys/types.h>

#include <cstddef>
#include <string>
#include <vector>

#include "platform/export.h"

// The system calls that the host library makes on the agent's files. Another object can take the
// place of the system, for example to inject failures. Any thread may make any of these calls.
namespace host {

// Each member does one operation. Its result is 0 or more, or the negated errno of the failure.
// No call gives -EINTR. A path that is not absolute is relative to `directory`, an open directory
// or AT_FDCWD. A path with a zero byte gives -EINVAL. Descriptors are closed when another program
// is started.
class PLATFORM_API FileSystem {
 public:
  FileSystem() = default;
  FileSystem(const FileSystem&) = delete;
  FileSystem& operator=(const FileSystem&) = delete;
  virtual ~FileSystem();

  // openat(2). Returns a new descriptor.
  virtual int open(int directory, const std::string& path, int flags, mode_t mode) = 0;
  // read(2). Returns the number of bytes read, which may be fewer than `size`; 0 at the end.
  virtual ssize_t read(int fd, void* data, std::size_t size) = 0;
  // write(2). Returns the number of bytes written, which may be fewer than `size`.
  virtual ssize_t write(int fd, const void* data, std::size_t size) = 0;
  // Returns when the file or directory is on stable storage.
  virtual int sync(int fd) = 0;
  // close(2). The descriptor is closed even on failure.
  virtual int close(int fd) = 0;
  // flock(2). Waits without limit unless `operation` has LOCK_NB.
  virtual int lock(int fd, int operation) = 0;
  // fchmod(2).
  virtual int chmod(int fd, mode_t mode) = 0;
  // fchown(2).
  virtual int chown(int fd, uid_t owner, gid_t group) = 0;
  // fstat(2).
  virtual int statOpen(int fd, struct stat& out) = 0;

  // fstatat(2). If `follow` is set, a symbolic link at the end is followed.
  virtual int stat(int directory, const std::string& path, bool follow, struct stat& out) = 0;
  // Reads the whole target of a symbolic link, and the status of the link itself. Both belong to
  // the same link, even if it is replaced during the call. Gives -EINVAL for anything else.
  virtual int readLink(int directory, const std::string& path, std::string& target,
                       struct stat& link) = 0;
  // Gets the names in an open directory, without "." and "..".
  virtual int list(int directory, std::vector<std::string>& names) = 0;
  // renameat(2), with both names in `directory`. Replaces a file that has the new name.
  virtual int rename(int directory, const std::string& from, const std::string& to) = 0;
  // linkat(2): gives a file a second name in `directory`. Gives -EEXIST when that name exists.
  virtual int link(int directory, const std::string& from, const std::string& to) = 0;
  // unlinkat(2): removes a name, but not the name of a directory.
  virtual int unlink(int directory, const std::string& path) = 0;
  // mkdirat(2).
  virtual int makeDirectory(int directory, const std::string& path, mode_t mode) = 0;
  // Returns 0 when the effective user may use the file in the given way (R_OK, W_OK).
  virtual int access(const std::string& path, int mode) = 0;
};

// Returns the current file system: the system's own unless another one was set.
PLATFORM_API FileSystem& fileSystem();

// Sets the file system of the whole process. Null restores the system's own. The descriptors that
// the host library has open are then used and closed through the new one.
PLATFORM_API void setFileSystem(FileSystem* replacement);

// Returns the system's own file system, for an object that forwards calls to it.
PLATFORM_API FileSystem& posixFileSystem();

}  // namespace host

#endif
