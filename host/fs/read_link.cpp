#include "host/fs/read_link.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>

#include "host/fs/change_time.h"
#include "host/fs/retried.h"

namespace host {
namespace {

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

}  // namespace

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

namespace {

bool isSameState(const struct stat& a, const struct stat& b) {
  const timespec changedA = changeTime(a);
  const timespec changedB = changeTime(b);
  return a.st_dev == b.st_dev && a.st_ino == b.st_ino && a.st_uid == b.st_uid &&
         a.st_size == b.st_size && changedA.tv_sec == changedB.tv_sec &&
         changedA.tv_nsec == changedB.tv_nsec;
}

}  // namespace

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
    if (isSameState(after, link)) return 0;
  }
}

#endif

}  // namespace host
