#include "host/fs/replace_file.h"

#include <cerrno>
#include <string>

#include "host/fs/files.h"
#include "host/fs/owner.h"

namespace host {
namespace {

// Set-user-ID and set-group-ID bits are never kept.
constexpr mode_t c_permissions = S_IRWXU | S_IRWXG | S_IRWXO;

// Sets the owner and mode of the new file before it gets its name.
int prepare(const PathWalk& place, int fd, mode_t mode, OldMode oldMode) {
  const struct stat* old = place.found();
  if (!old) {
    const int error = giveToOwnerOf(place.directory(), fd);
    return error ? error : -fileSystem().chmod(fd, mode);
  }
  if (S_ISDIR(old->st_mode)) return EISDIR;
  if (!S_ISREG(old->st_mode)) return EINVAL;

  struct stat mine;
  if (const int failed = fileSystem().statOpen(fd, mine)) return -failed;
  if (mine.st_uid != old->st_uid || mine.st_gid != old->st_gid) {
    if (const int failed = fileSystem().chown(fd, old->st_uid, old->st_gid)) return -failed;
  }
  // The mode is set after the owner, because changing the owner clears bits of the mode.
  return -fileSystem().chmod(fd, oldMode == OldMode::Kept ? old->st_mode & c_permissions : mode);
}

int replace(const std::string& path, const void* data, std::size_t size, mode_t mode,
            OldMode oldMode) {
  PathWalk place;
  if (const int error = place.find(path)) return place.reported("Cannot write", path, error);
  TempFile temp(place.directory());
  const int error = placeFile(place, temp, data, size, mode, oldMode);
  return error ? error : finishDirectory(place.directory());
}

}  // namespace

int placeFile(const PathWalk& place, TempFile& temp, const void* data, std::size_t size,
              mode_t mode, OldMode oldMode) {
  int error = temp.create();
  if (error == 0) error = prepare(place, temp.fd(), mode, oldMode);
  if (error == 0) error = temp.writeAll(data, size);
  if (error == 0) error = -fileSystem().sync(temp.fd());
  return error ? error : temp.renameTo(place.name());
}

int finishDirectory(int directory) {
  const int error = -fileSystem().sync(directory);
  removeLeftOverTempFiles(directory);
  return error;
}

int replaceFile(const std::string& path, const void* data, std::size_t size, mode_t modeOfNew) {
  return replace(path, data, size, modeOfNew, OldMode::Kept);
}

int replaceSecretFile(const std::string& path, const void* data, std::size_t size) {
  return replace(path, data, size, c_modeOfSecret, OldMode::Dropped);
}

}  // namespace host
