#include <fcntl.h>
#include <unistd.h>

#include <cerrno>

#include "host/fs/files.h"
#include "host/fs/temp_file.h"

namespace host {
namespace {

constexpr int c_maxLinks = 40;

// Where a file is: everything happens relative to the open directory, so that a directory that is
// exchanged meanwhile sends nothing elsewhere.
struct Place {
  Descriptor directory{AT_FDCWD};
  std::string name;
};

int descend(Place& place, const std::string& path) {
  const std::size_t slash = path.rfind('/');
  const std::string above = slash == std::string::npos ? "." : path.substr(0, slash + 1);
  Descriptor directory(fileSystem().open(place.directory.get(), above, O_RDONLY | O_DIRECTORY, 0));
  if (directory.error()) return directory.error();
  place.directory = std::move(directory);
  place.name = slash == std::string::npos ? path : path.substr(slash + 1);
  if (place.name.empty()) return path.empty() ? ENOENT : EISDIR;
  return 0;
}

int find(const std::string& path, Place& place) {
  int error = descend(place, path);
  for (int links = 0; error == 0; ++links) {
    std::string target;
    const int notALink = -fileSystem().readLink(place.directory.get(), place.name, target);
    if (notALink == EINVAL || notALink == ENOENT) return 0;
    if (notALink) return notALink;
    error = links < c_maxLinks ? descend(place, target) : ELOOP;
  }
  return error;
}

// Gives the new file the mode and owner of the one that it replaces.
int takeOver(const Place& place, int fd, mode_t modeOfNew) {
  struct stat old;
  const int missing = -fileSystem().stat(place.directory.get(), place.name, false, old);
  if (missing == ENOENT) return -fileSystem().chmod(fd, modeOfNew);
  if (missing) return missing;
  if (S_ISDIR(old.st_mode)) return EISDIR;
  if (!S_ISREG(old.st_mode)) return EINVAL;

  struct stat mine;
  if (const int failed = fileSystem().statOpen(fd, mine)) return -failed;
  if (mine.st_uid != old.st_uid || mine.st_gid != old.st_gid) {
    if (const int failed = fileSystem().chown(fd, old.st_uid, old.st_gid)) return -failed;
  }
  // After the owner: changing the owner takes mode bits away.
  return -fileSystem().chmod(fd, old.st_mode & 07777);
}

}  // namespace

int replaceFile(const std::string& path, const void* data, std::size_t size, mode_t modeOfNew) {
  Place place;
  if (const int error = find(path, place)) return error;
  TempFile temp(place.directory.get());
  int error = temp.create();
  if (error == 0) error = takeOver(place, temp.fd(), modeOfNew);
  if (error == 0) error = temp.writeAll(data, size);
  if (error == 0) error = -fileSystem().sync(temp.fd());
  if (error == 0) error = temp.renameTo(place.name);
  if (error) return error;
  error = -fileSystem().sync(place.directory.get());
  removeLeftOverTempFiles(place.directory.get());
  return error;
}

}  // namespace host
