#include <fcntl.h>
#include <unistd.h>

#include <cerrno>

#include "host/fs/files.h"
#include "host/fs/owner.h"
#include "host/fs/path_walk.h"

namespace host {
namespace {

constexpr const char* c_cannotMake = "Cannot create directory";

// Gives a directory that was just created its owner. Only root changes owners.
//
// Another user may have replaced the new directory. The checks below accept only a directory that
// belongs to root and that others cannot write to. The owner of the parent can replace it only with
// such a directory from the same parent. Moving a directory to another parent needs permission to
// write to the directory itself.
int giveAway(int parent, const std::string& name) {
  if (::geteuid() != 0) return 0;
  const Descriptor made(fileSystem().open(parent, name, O_RDONLY | O_DIRECTORY | O_NOFOLLOW, 0));
  if (made.error()) return made.error();
  struct stat info;
  if (const int failed = fileSystem().statOpen(made.get(), info)) return -failed;
  if (info.st_uid != 0 || (info.st_mode & (S_IWGRP | S_IWOTH)) != 0) return EPERM;
  return giveToOwnerOf(parent, made.get());
}

}  // namespace

int removeFile(const std::string& path) {
  PathWalk parent;
  int error = parent.enter(parentOf(path));
  if (error == 0) error = -fileSystem().unlink(parent.directory(), nameOf(path));
  if (error == ENOENT || error == ENOTDIR) return 0;
  if (error) return parent.reported("Cannot delete", path, error);
  return -fileSystem().sync(parent.directory());
}

int makeDirectory(const std::string& path, mode_t mode) {
  PathWalk parent;
  if (const int error = parent.enter(parentOf(path))) {
    return parent.reported(c_cannotMake, path, error);
  }
  const std::string name = nameOf(path);
  int error = -fileSystem().makeDirectory(parent.directory(), name, mode);
  if (error == EEXIST) {
    // Another process may have created it at the same time. A file or a dangling link with this
    // name is a failure.
    PathWalk there;
    return there.reported(c_cannotMake, path, there.enter(path));
  }
  if (error == 0) error = giveAway(parent.directory(), name);
  return error ? error : -fileSystem().sync(parent.directory());
}

int makeDirectories(const std::string& path, mode_t mode) {
  PathWalk there;
  int error = there.reported(c_cannotMake, path, there.enter(path));
  if (error != ENOENT) return error;
  const std::string parent = parentOf(path);
  const bool isAlwaysThere = parent == "/" || parent == ".";
  error = isAlwaysThere ? 0 : makeDirectories(parent, mode);
  return error ? error : makeDirectory(path, mode);
}

}  // namespace host
