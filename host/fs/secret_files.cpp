#include "host/fs/secret_files.h"

#include <fcntl.h>

#include <string_view>
#include <utility>

#include "host/fs/read_file.h"
#include "host/fs/replace_file.h"
#include "host/process/secret.h"

namespace host {
namespace {

constexpr mode_t c_allModeBits = 07777;

// Returns whether the file has the bytes, the mode and the number of links that a write would give
// it. The owner is not compared, because a write keeps it. A write of a file with several hard
// links would separate it from its other names.
bool isAsWritten(int fd, const SecretFile& wanted) {
  struct stat status;
  if (fileSystem().statOpen(fd, status) < 0) return false;
  if (!S_ISREG(status.st_mode) || status.st_nlink != 1) return false;
  if ((status.st_mode & c_allModeBits) != c_modeOfSecret) return false;
  SecretText bytes;
  return readOpenFile(fd, wanted.size, *bytes) == 0 &&
         *bytes == std::string_view(static_cast<const char*>(wanted.data), wanted.size);
}

// Returns whether the file at the place needs no write. Such a file is synced here, because its
// writer may not have done so.
bool isThere(const PathWalk& place, const SecretFile& wanted) {
  // Opening a pipe would wake its writer.
  if (!place.found() || !S_ISREG(place.found()->st_mode)) return false;
  const Descriptor file(fileSystem().open(place.directory(), place.name(),
                                          O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY, 0));
  return file.error() == 0 && isAsWritten(file.get(), wanted) && fileSystem().sync(file.get()) == 0;
}

int placeSecret(PathWalk& place, const SecretFile& file) {
  if (const int error = place.find(file.path)) {
    return place.reported("Cannot write", file.path, error);
  }
  if (isThere(place, file)) return 0;
  TempFile temp(place.directory());
  return placeFile(place, temp, file.data, file.size, c_modeOfSecret, OldMode::Dropped);
}

// Returns whether both are the same directory, and false if that cannot be determined. The
// directory is then synced once more.
bool isSameDirectory(const PathWalk& a, const PathWalk& b) {
  struct stat first;
  struct stat second;
  return fileSystem().statOpen(a.directory(), first) == 0 &&
         fileSystem().statOpen(b.directory(), second) == 0 && first.st_ino == second.st_ino &&
         first.st_dev == second.st_dev;
}

bool isDirectoryOfAnEarlierOne(const std::vector<PathWalk>& places, std::size_t number) {
  for (std::size_t i = 0; i < number; ++i) {
    if (isSameDirectory(places[i], places[number])) return true;
  }
  return false;
}

}  // namespace

int replaceSecretFiles(const std::vector<SecretFile>& files, std::string& failed) {
  std::vector<PathWalk> places;
  places.reserve(files.size());
  int error = 0;
  for (const SecretFile& file : files) {
    PathWalk place;
    error = placeSecret(place, file);
    if (error) {
      failed = file.path;
      break;
    }
    places.push_back(std::move(place));
  }
  for (std::size_t i = 0; i < places.size(); ++i) {
    if (isDirectoryOfAnEarlierOne(places, i)) continue;
    const int unsynced = finishDirectory(places[i].directory());
    if (unsynced == 0 || error) continue;
    error = unsynced;
    failed = files[i].path;
  }
  return error;
}

}  // namespace host
