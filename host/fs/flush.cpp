#include "host/fs/flush.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>

namespace host {

#ifdef F_FULLFSYNC

namespace {

bool isUnsupported(int error) {
  return error == ENOTSUP || error == EOPNOTSUPP || error == ENOTTY || error == EINVAL ||
         error == ENOSYS;
}

}  // namespace

// Here fsync leaves the bytes in the cache of the drive. Some file systems support only fsync.
int flush(int fd) {
  if (::fcntl(fd, F_FULLFSYNC) == 0) return 0;
  return isUnsupported(errno) ? ::fsync(fd) : -1;
}

#else

int flush(int fd) { return ::fsync(fd); }

#endif

}  // namespace host
