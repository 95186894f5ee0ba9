#include <cerrno>

#include "host/fs/files.h"
#include "host/fs/path_walk.h"

namespace host {
namespace {

// Returns whether both are the same file and it has only one name. On a file system that ignores
// case, the name may have two spellings.
bool haveOneName(const struct stat* a, const struct stat* b) {
  return a && b && a->st_dev == b->st_dev && a->st_ino == b->st_ino && a->st_nlink == 1;
}

}  // namespace

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
  const bool isOneDirectory = a.st_dev == b.st_dev && a.st_ino == b.st_ino;
  answer = isOneDirectory &&
           (first.name() == second.name() || haveOneName(first.found(), second.found()));
  return 0;
}

}  // namespace host
