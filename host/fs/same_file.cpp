#include <cerrno>

#include "host/fs/files.h"
#include "host/fs/path_walk.h"

namespace host {

int wouldReplace(const std::string& path, const std::string& other, bool& answer) {
  PathWalk first(Links::All);
  PathWalk second(Links::All);
  int error = first.find(path);
  if (error == 0) error = second.find(other);
  struct stat a;
  struct stat b;
  if (error == 0) error = -fileSystem().statOpen(first.directory(), a);
  if (error == 0) error = -fileSystem().statOpen(second.directory(), b);
  if (error) return error;
  answer = first.name() == second.name() && a.st_dev == b.st_dev && a.st_ino == b.st_ino;
  return 0;
}

}  // namespace host
