#include "host/fs/owner.h"

#include <unistd.h>

#include "host/fs/file_system.h"

namespace host {

int giveToOwnerOf(int directory, int fd) {
  if (::geteuid() != 0) return 0;
  struct stat above;
  struct stat made;
  if (const int failed = fileSystem().statOpen(directory, above)) return -failed;
  if (const int failed = fileSystem().statOpen(fd, made)) return -failed;
  if (made.st_uid == above.st_uid && made.st_gid == above.st_gid) return 0;
  return -fileSystem().chown(fd, above.st_uid, above.st_gid);
}

}  // namespace host
