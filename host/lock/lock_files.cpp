#include "host/lock/lock_files.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <cerrno>

#include "host/fs/files.h"
#include "host/fs/owner.h"
#include "host/fs/path_walk.h"
#include "host/fs/temp_file.h"

namespace host {
namespace {

constexpr mode_t c_modeOfDirectory = 0755;

int checkFile(const LockFiles::File& file) {
  struct stat info;
  const int error = -fileSystem().stat(AT_FDCWD, file.path, false, info);
  if (error == ENOENT || error == ENOTDIR) return ESTALE;
  if (error) return error;
  return info.st_ino == file.inode && info.st_dev == file.device ? 0 : ESTALE;
}

void closeFile(LockFiles::File& file) {
  if (file.fd >= 0) fileSystem().close(file.fd);
  file.fd = -1;
}

int enterDirectory(const std::string& path, PathWalk& walk, LockFailure& failure) {
  failure.path = path;
  int error = walk.enter(path);
  if (error == ENOENT) {
    error = makeDirectories(path, c_modeOfDirectory);
    if (error) return error;
    walk = PathWalk();
    error = walk.enter(path);
    if (error == ENOENT) return ESTALE;
  }
  failure.reason = walk.refusal();
  if (!failure.reason.empty()) failure.advice = PathWalk::c_adviceOnRefusal;
  return error;
}

// A lock needs only read access. This also works with a file that must not be written.
int openOld(int directory, const std::string& name, LockFiles::File& file) {
  file.fd = fileSystem().open(directory, name, O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY, 0);
  if (file.fd < 0) return -file.fd;
  struct stat info;
  if (const int failed = fileSystem().statOpen(file.fd, info)) return -failed;
  if (S_ISDIR(info.st_mode)) return EISDIR;
  if (!S_ISREG(info.st_mode)) return EINVAL;
  file.device = info.st_dev;
  file.inode = info.st_ino;
  return 0;
}

// The file gets its owner before its name, so its owner can always open it.
int makeNew(int directory, const std::string& name) {
  TempFile file(directory);
  int error = file.create();
  if (error == 0) error = giveToOwnerOf(directory, file.fd());
  if (error == 0) error = file.linkAs(name);
  return error == EEXIST ? 0 : error;
}

int openFile(int directory, const std::string& name, LockFiles::File& file, LockFailure& failure) {
  failure.path = file.path;
  int error = openOld(directory, name, file);
  if (error == ENOENT) {
    error = makeNew(directory, name);
    if (error == 0) error = openOld(directory, name, file);
    if (error == ENOENT) return ESTALE;
  }
  if (error == ELOOP) {
    failure.reason = "it is a symbolic link, which is never used as a lock file";
    failure.advice = "remove the link";
  } else if (error == EINVAL) {
    failure.reason = "it is not a regular file";
    failure.advice = "remove it";
  }
  return error;
}

}  // namespace

int LockFiles::check() const {
  const int error = checkFile(main);
  return error ? error : checkFile(gate);
}

void LockFiles::close() {
  closeFile(main);
  closeFile(gate);
}

int openLockFiles(const std::string& directory, const std::string& name, LockFiles& files,
                  LockFailure& failure) {
  const std::string mainName = name + ".lock";
  const std::string gateName = name + ".gate";
  files.main.path = directory + "/" + mainName;
  files.gate.path = directory + "/" + gateName;
  failure = LockFailure();

  PathWalk walk;
  int error = enterDirectory(directory, walk, failure);
  if (error) return error;
  error = openFile(walk.directory(), mainName, files.main, failure);
  if (error == 0) error = openFile(walk.directory(), gateName, files.gate, failure);
  if (error) return error;
  removeLeftOverTempFiles(walk.directory());
  return 0;
}

}  // namespace host
