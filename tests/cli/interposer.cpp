#include <dlfcn.h>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdarg>
#include <cstdlib>
#include <cstring>
#include <new>
#include <stdexcept>
#include <string>

// Is loaded before the C library. Changes a list while the tool uses it, or sends the tool a signal
// while it has a draft. UNFORESEEN and NO_MEMORY_FOR name a file. When it is opened, throws an
// exception that no library throws, or std::bad_alloc. With LINK_TO, a user with the id LINK_OWNER
// puts a link to that file into each new draft directory, under the name of a key file. With
// REPLACED, that file has the content of REPLACEMENT when it is opened again. With LIBRARY, that
// directory is in the place of "/Library". With NO_DIRECTORY_LOCKS, directories cannot be locked,
// as on some network file systems. With FREE_KILOBYTES, every file system has that much free space.
// With FREE_FILES, every file system has room for that many files.

namespace {

template <typename Function>
Function* next(const char* name) {
  return reinterpret_cast<Function*>(::dlsym(RTLD_NEXT, name));
}

void changeOnce(const char* file) {
  static bool isChanged = false;
  if (!file || isChanged) return;
  const int fd = ::open(file, O_WRONLY | O_APPEND | O_CLOEXEC);
  if (fd < 0) return;
  if (::write(fd, "\n", 1) != 1) ::abort();
  ::close(fd);
  isChanged = true;
}

bool isDraft(const char* path) {
  return std::strstr(path, "sitelist-") && std::strstr(path, ".xml");
}

bool isNamed(const char* path, const char* variable) {
  const char* const name = std::getenv(variable);
  return name && std::strcmp(path, name) == 0;
}

// Another file has replaced the file when it is opened again.
bool isReplaced(const char* path) {
  static int times = 0;
  return isNamed(path, "REPLACED") && ++times > 1;
}

void plantLink(int directory, const char* draft) {
  const char* const target = std::getenv("LINK_TO");
  const char* const owner = std::getenv("LINK_OWNER");
  if (!target || !owner || !std::strstr(draft, "sitelist-")) return;
  const std::string link = std::string(draft) + "/srpubkey.bin";
  const uid_t user = static_cast<uid_t>(std::atoi(owner));
  if (::symlinkat(target, directory, link.c_str()) != 0 ||
      ::fchownat(directory, link.c_str(), user, static_cast<gid_t>(-1), AT_SYMLINK_NOFOLLOW) != 0) {
    ::abort();
  }
}

}  // namespace

extern "C" {

__attribute__((visibility("default"))) int mkdirat(int directory, const char* path,
                                                   mode_t mode) noexcept {
  const int result = next<int(int, const char*, mode_t)>("mkdirat")(directory, path, mode);
  if (result == 0) plantLink(directory, path);
  return result;
}

__attribute__((visibility("default"))) int flock(int fd, int operation) noexcept {
  struct stat status;
  if (std::getenv("NO_DIRECTORY_LOCKS") && ::fstat(fd, &status) == 0 && S_ISDIR(status.st_mode)) {
    errno = EBADF;  // the error of a network file system
    return -1;
  }
  return next<int(int, int)>("flock")(fd, operation);
}

__attribute__((visibility("default"))) int statvfs(const char* path,
                                                   struct statvfs* space) noexcept {
  const int result = next<int(const char*, struct statvfs*)>("statvfs")(path, space);
  if (const char* const kilobytes = std::getenv("FREE_KILOBYTES")) {
    space->f_frsize = 1024;
    space->f_bavail = static_cast<fsblkcnt_t>(std::atol(kilobytes));
  }
  if (const char* const files = std::getenv("FREE_FILES")) {
    space->f_files = static_cast<fsfilcnt_t>(std::atol(files)) + 1;
    space->f_favail = space->f_files - 1;
  }
  return result;
}

// The library calls this function immediately before it reads a list. The tool then already holds
// the lock of the list.
__attribute__((visibility("default"))) int access(const char* path, int mode) noexcept {
  if (mode == F_OK) changeOnce(std::getenv("CHANGED_MEANWHILE"));
  return next<int(const char*, int)>("access")(path, mode);
}

// A draft is read before it is removed. A real openat never throws.
__attribute__((visibility("default"))) int openat(int directory, const char* path, int flags, ...) {
  va_list rest;
  va_start(rest, flags);
  const mode_t mode = (flags & O_CREAT) != 0 ? va_arg(rest, mode_t) : 0;
  va_end(rest);
  if (isNamed(path, "UNFORESEEN")) throw std::runtime_error("unforeseen");
  if (isNamed(path, "NO_MEMORY_FOR")) throw std::bad_alloc();
  if (isReplaced(path)) path = std::getenv("REPLACEMENT");
  if (const char* const library = std::getenv("LIBRARY")) {
    if (std::strcmp(path, "Library") == 0) path = library;
  }
  const char* const signal = std::getenv("SIGNAL_IN_DRAFT");
  if (signal && isDraft(path)) ::raise(std::atoi(signal));
  return next<int(int, const char*, int, mode_t)>("openat")(directory, path, flags, mode);
}

}  // extern "C"
