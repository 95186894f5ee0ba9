#include <dirent.h>
#include <fcntl.h>
#include <stdio.h>
#include <sys/file.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>

#include "host/fs/file_system.h"
#include "host/fs/flush.h"
#include "host/fs/read_link.h"
#include "host/fs/retried.h"
#include "host/process/lasting.h"

namespace host {
namespace {

bool isPath(const std::string& path) { return path.find('\0') == std::string::npos; }

class PosixFileSystem : public FileSystem {
 public:
  int open(int directory, const std::string& path, int flags, mode_t mode) override {
    if (!isPath(path)) return -EINVAL;
    return retried([&] { return ::openat(directory, path.c_str(), flags | O_CLOEXEC, mode); });
  }

  ssize_t read(int fd, void* data, std::size_t size) override {
    return retried([&] { return ::read(fd, data, size); });
  }

  ssize_t write(int fd, const void* data, std::size_t size) override {
    return retried([&] { return ::write(fd, data, size); });
  }

  int sync(int fd) override {
    return retried([&] { return flush(fd); });
  }

  int close(int fd) override {
    // Must not be retried: the descriptor is already free, and another thread may have it.
    return ::close(fd) == 0 || errno == EINTR ? 0 : -errno;
  }

  int lock(int fd, int operation) override {
    return retried([&] { return ::flock(fd, operation); });
  }

  int chmod(int fd, mode_t mode) override {
    return retried([&] { return ::fchmod(fd, mode); });
  }

  int chown(int fd, uid_t owner, gid_t group) override {
    return retried([&] { return ::fchown(fd, owner, group); });
  }

  int statOpen(int fd, struct stat& out) override {
    return retried([&] { return ::fstat(fd, &out); });
  }

  int stat(int directory, const std::string& path, bool follow, struct stat& out) override {
    if (!isPath(path)) return -EINVAL;
    const int flags = follow ? 0 : AT_SYMLINK_NOFOLLOW;
    return retried([&] { return ::fstatat(directory, path.c_str(), &out, flags); });
  }

  int readLink(int directory, const std::string& path, std::string& target,
               struct stat& link) override {
    if (!isPath(path)) return -EINVAL;
    return readOneLink(directory, path.c_str(), target, link);
  }

  int list(int directory, std::vector<std::string>& names) override {
    // This needs its own descriptor, because the position in a directory belongs to the open
    // directory.
    const int fd = open(directory, ".", O_RDONLY | O_DIRECTORY, 0);
    if (fd < 0) return fd;
    DIR* entries = ::fdopendir(fd);
    if (!entries) {
      const int error = errno;
      close(fd);
      return -error;
    }
    int result = 0;
    try {
      result = readNames(entries, names);
    } catch (...) {
      ::closedir(entries);
      throw;
    }
    ::closedir(entries);
    return result;
  }

  int rename(int directory, const std::string& from, const std::string& to) override {
    if (!isPath(from) || !isPath(to)) return -EINVAL;
    return retried([&] { return ::renameat(directory, from.c_str(), directory, to.c_str()); });
  }

  int link(int directory, const std::string& from, const std::string& to) override {
    if (!isPath(from) || !isPath(to)) return -EINVAL;
    return retried([&] { return ::linkat(directory, from.c_str(), directory, to.c_str(), 0); });
  }

  int unlink(int directory, const std::string& path) override {
    if (!isPath(path)) return -EINVAL;
    return retried([&] { return ::unlinkat(directory, path.c_str(), 0); });
  }

  int makeDirectory(int directory, const std::string& path, mode_t mode) override {
    if (!isPath(path)) return -EINVAL;
    return retried([&] { return ::mkdirat(directory, path.c_str(), mode); });
  }

  int access(const std::string& path, int mode) override {
    if (!isPath(path)) return -EINVAL;
    return retried([&] { return ::faccessat(AT_FDCWD, path.c_str(), mode, AT_EACCESS); });
  }

 private:
  static int readNames(DIR* entries, std::vector<std::string>& names) {
    for (;;) {
      errno = 0;
      const dirent* entry = ::readdir(entries);
      if (!entry) return -errno;
      const std::string name = entry->d_name;
      if (name != "." && name != "..") names.push_back(name);
    }
  }
};

Lasting<PosixFileSystem> g_posix;
std::atomic<FileSystem*> g_replacement{nullptr};

}  // namespace

FileSystem::~FileSystem() = default;

FileSystem& posixFileSystem() {
  // The object is never destroyed, because locks may be released while the process ends
  return g_posix.get();
}

FileSystem& fileSystem() {
  FileSystem* replacement = g_replacement.load(std::memory_order_acquire);
  return replacement ? *replacement : posixFileSystem();
}

void setFileSystem(FileSystem* replacement) {
  g_replacement.store(replacement, std::memory_order_release);
}

}  // namespace host
