#include "host/fs/mend.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <cerrno>

#include "host/fs/path_walk.h"
#include "host/fs/read_file.h"
#include "host/fs/temp_file.h"
#include "host/process/secret.h"

namespace host {
namespace {

constexpr int c_toExamine = O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY;
constexpr mode_t c_allModes = S_ISUID | S_ISGID | S_ISVTX | S_IRWXU | S_IRWXG | S_IRWXO;

// A file or directory that was opened without following a link at its end.
struct Opened {
  Descriptor file{-EBADF};
  struct stat status {};
};

int openAt(const std::string& path, int flags, Opened& opened) {
  PathWalk parent;
  if (const int error = parent.enter(parentOf(path))) {
    return parent.reported("Cannot mend", path, error);
  }
  opened.file =
      Descriptor(fileSystem().open(parent.directory(), nameOf(path), c_toExamine | flags, 0));
  if (opened.file.error()) return opened.file.error();
  return -fileSystem().statOpen(opened.file.get(), opened.status);
}

// The other names of a file may be in places that are not the agent's.
int checkKind(const struct stat& status) {
  if (S_ISDIR(status.st_mode)) return 0;
  if (!S_ISREG(status.st_mode)) return EINVAL;
  return status.st_nlink == 1 ? 0 : EMLINK;
}

int give(const Opened& opened, uid_t owner, gid_t group) {
  return -fileSystem().chown(opened.file.get(), owner, group);
}

}  // namespace

int removePermissions(const std::string& path, mode_t excess, uid_t owner) {
  Opened opened;
  if (const int error = openAt(path, 0, opened)) return error;
  if (const int error = checkKind(opened.status)) return error;
  if (opened.status.st_uid != owner && opened.status.st_uid != 0) return EPERM;
  return -fileSystem().chmod(opened.file.get(), opened.status.st_mode & c_allModes & ~excess);
}

int giveFile(const std::string& path, uid_t owner, gid_t group, std::size_t limit,
             const std::function<bool(const std::string&)>& isExpected) {
  Opened opened;
  if (const int error = openAt(path, 0, opened)) return error;
  if (const int error = checkKind(opened.status)) return error;
  if (S_ISDIR(opened.status.st_mode)) return EISDIR;
  if (opened.status.st_uid == owner) return give(opened, owner, group);
  if (opened.status.st_uid != 0) return EPERM;
  std::string bytes;
  if (const int error = readOpenFile(opened.file.get(), limit, bytes)) return error;
  const bool isGiven = isExpected(bytes);
  wipe(bytes.data(), bytes.size());  // it may be a key
  return isGiven ? give(opened, owner, group) : EPERM;
}

// Moving a directory to another parent needs write permission for the directory itself, so no other
// user can have moved it here.
int giveDirectory(const std::string& path, uid_t owner, gid_t group,
                  const std::function<bool(const std::vector<std::string>&)>& isExpected) {
  Opened opened;
  if (const int error = openAt(path, O_DIRECTORY, opened)) return error;
  if (opened.status.st_uid == owner) return give(opened, owner, group);
  if (opened.status.st_uid != 0 || (opened.status.st_mode & (S_IWGRP | S_IWOTH)) != 0) return EPERM;
  std::vector<std::string> names;
  if (const int failed = fileSystem().list(opened.file.get(), names)) return -failed;
  return isExpected(names) ? give(opened, owner, group) : EPERM;
}

int openDirectory(const std::string& path) {
  PathWalk place;
  const int error = place.enter(path);
  return error ? -error : fileSystem().open(place.directory(), ".", O_RDONLY | O_DIRECTORY, 0);
}

int findLeftOverTempFiles(const std::string& directory, std::vector<std::string>& names) {
  PathWalk place(Links::All);
  const int error = place.enter(directory);
  return error ? error : listLeftOverTempFiles(place.directory(), names);
}

int removeLeftOverTempFilesIn(const std::string& directory) {
  PathWalk place;
  if (const int error = place.enter(directory)) {
    return place.reported("Cannot mend", directory, error);
  }
  removeLeftOverTempFiles(place.directory());
  return 0;
}

}  // namespace host
