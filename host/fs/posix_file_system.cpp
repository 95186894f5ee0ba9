#include <dirent.h>
#include <fcntl.h>
#include <stdio.h>
#include <sys/file.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>

#include "host/fs/file_system.h"
#include "host/process/lasting.h"

namespace host {
namespace {

// Repeats an interrupted call. Returns the negated errno of a failed call.
template <typename Call>
auto retried(Call call) -> decltype(call()) {
  for (;;) {
    const auto result = call();
    if (result >= 0) return result;
    if (errno != EINTR) return -errno;
  }
}

bool isPath(const std::string& path) { return path.find('\0') == std::string::npos; }

int flush(int fd) {
#ifdef F_FULLFSYNC
  // fsync alone may leave the bytes in the cache of the drive. Some file systems support only
  // fsync.
  if (::fcntl(fd, F_FULLFSYNC) == 0) return 0;
#endif
  return ::fsync(fd);
}

int readTarget(int directory, const char* path, std::string& target) {
  std::string buffer(256, '\0');
  for (;;) {
    const ssize_t length =
        retried([&] { return ::readlinkat(directory, path, buffer.data(), buffer.size()); });
    if (length < 0) return static_cast<int>(length);
    if (static_cast<std::size_t>(length) < buffer.size()) {
      target.assign(buffer, 0, static_cast<std::size_t>(length));
      return 0;
    }
    buffer.resize(2 * buffer.size());
  }
}

// Gets the owner and the target of the same link, even if its name is replaced during the call.
#ifdef O_PATH
int readOneLink(int directory, const char* path, std::string& target, struct stat& link) {
  const int fd =
      retried([&] { return ::openat(directory, path, O_PATH | O_NOFOLLOW | O_CLOEXEC); });
  if (fd < 0) return fd;
  int result = retried([&] { return ::fstat(fd, &link); });
  if (result == 0 && !S_ISLNK(link.st_mode)) result = -EINVAL;
  if (result == 0) result = readTarget(fd, "", target);
  ::close(fd);
  return result;
}
#else
// There is no descriptor of the link itself, so this repeats the calls until the link is the same
// before and after.
int readOneLink(int directory, const char* path, std::string& target, struct stat& link) {
  for (;;) {
    struct stat after;
    int result = retried([&] { return ::fstatat(directory, path, &link, AT_SYMLINK_NOFOLLOW); });
    if (result == 0 && !S_ISLNK(link.st_mode)) result = -EINVAL;
    if (result == 0) result = readTarget(directory, path, target);
    if (result < 0) return result;
    result = retried([&] { return ::fstatat(directory, path, &after, AT_SYMLINK_NOFOLLOW); });
    if (result < 0) return result;
    if (after.st_dev == link.st_dev && after.st_ino == link.st_ino && after.st_uid == link.st_uid &&
        after.st_size == link.st_size && after.st_ctimespec.tv_sec == link.st_ctimespec.tv_sec &&
        after.st_ctimespec.tv_nsec == link.st_ctimespec.tv_nsec) {
      return 0;
    }
  }
}
#endif

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
