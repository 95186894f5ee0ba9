#include <dlfcn.h>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>

// Loaded in front of the C library: makes a file system whose directories cannot be locked, and is
// the other program that changes a list while the tool is at work.

namespace {

template <typename Function>
Function* next(const char* name) {
  return reinterpret_cast<Function*>(::dlsym(RTLD_NEXT, name));
}

}  // namespace

extern "C" {

__attribute__((visibility("default"))) int flock(int fd, int operation) noexcept {
  struct stat status;
  if (::fstat(fd, &status) == 0 && S_ISDIR(status.st_mode)) {
    errno = EBADF;  // what a network file system says
    return -1;
  }
  return next<int(int, int)>("flock")(fd, operation);
}

// The tool makes its temporary directory between the lock and the first read.
__attribute__((visibility("default"))) char* mkdtemp(char* pattern) noexcept {
  if (const char* const file = std::getenv("CHANGED_MEANWHILE")) {
    const int fd = ::open(file, O_WRONLY | O_APPEND | O_CLOEXEC);
    if (fd >= 0) {
      if (::write(fd, "\n", 1) != 1) ::abort();
      ::close(fd);
    }
  }
  return next<char*(char*)>("mkdtemp")(pattern);
}

}  // extern "C"
