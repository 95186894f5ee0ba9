#include "host/fs/owner.h"

#include <unistd.h>

#include <cerrno>
#include <vector>

#include "host/fs/file_system.h"
#include "host/fs/path_walk.h"

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

int giveEmptyDirectory(const std::string& path, uid_t owner, gid_t group) {
  PathWalk place;
  if (const int error = place.enter(path)) {
    return place.reported("Cannot change the owner of", path, error);
  }
  struct stat status;
  if (const int failed = fileSystem().statOpen(place.directory(), status)) return -failed;
  if (status.st_uid == owner) return 0;
  std::vector<std::string> names;
  if (const int failed = fileSystem().list(place.directory(), names)) return -failed;
  return names.empty() ? -fileSystem().chown(place.directory(), owner, group) : ENOTEMPTY;
}

}  // namespace host
