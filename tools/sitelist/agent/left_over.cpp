#include "tools/sitelist/agent/left_over.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <random>
#include <string_view>
#include <vector>

#include "host/fs/descriptor.h"
#include "host/fs/mend.h"

namespace tool {
namespace {

constexpr std::string_view c_prefix = ".sitelist-";
constexpr std::size_t c_randomDigits = 16;
constexpr char c_hexDigits[] = "0123456789abcdef";
constexpr int c_openDirectory = O_RDONLY | O_DIRECTORY | O_NOFOLLOW;

bool isScratchName(const std::string& name) {
  return name.size() == c_prefix.size() + c_randomDigits &&
         name.compare(0, c_prefix.size(), c_prefix) == 0 &&
         name.find_first_not_of(c_hexDigits, c_prefix.size()) == std::string::npos;
}

// What cannot be removed stays.
void removeContent(int directory, uid_t owner) {
  host::FileSystem& files = host::fileSystem();
  std::vector<std::string> names;
  files.list(directory, names);
  for (const std::string& name : names) {
    const host::Descriptor below(files.open(directory, name, c_openDirectory, 0));
    struct stat status;
    if (below.error() != 0) {
      files.unlink(directory, name);
    } else if (files.statOpen(below.get(), status) == 0 && status.st_uid == owner) {
      removeContent(below.get(), owner);
      ::unlinkat(directory, name.c_str(), AT_REMOVEDIR);
    }
  }
}

bool isRemovable(const struct stat& parent, const struct stat& directory) {
  return directory.st_uid == parent.st_uid ||
         (directory.st_uid == ::geteuid() && (parent.st_mode & S_ISVTX) != 0);
}

// Calls the function for each scratch directory that no living process has locked. It is locked
// meanwhile.
template <typename Function>
void forEachLeftOver(const std::string& parent, Function function) {
  host::FileSystem& files = host::fileSystem();
  const host::Descriptor above(host::openDirectory(parent));
  struct stat status;
  std::vector<std::string> names;
  if (above.error() || files.statOpen(above.get(), status) != 0) return;
  files.list(above.get(), names);
  for (const std::string& name : names) {
    if (!isScratchName(name)) continue;
    const host::Descriptor directory(files.open(above.get(), name, c_openDirectory, 0));
    struct stat found;
    if (directory.error() || files.statOpen(directory.get(), found) != 0 ||
        !isRemovable(status, found) || files.lock(directory.get(), LOCK_EX | LOCK_NB) != 0) {
      continue;
    }
    function(above.get(), name, directory.get(), found.st_uid);
  }
}

}  // namespace

std::string makeScratchName() {
  std::random_device random;
  std::string name(c_prefix);
  for (std::size_t i = 0; i < c_randomDigits; ++i) name += c_hexDigits[random() % 16];
  return name;
}

void removeScratchDirectory(const std::string& path) {
  {
    const host::Descriptor directory(host::fileSystem().open(AT_FDCWD, path, c_openDirectory, 0));
    struct stat status;
    if (directory.error() || host::fileSystem().statOpen(directory.get(), status) != 0) return;
    removeContent(directory.get(), status.st_uid);
  }
  ::rmdir(path.c_str());
}

void removeLeftOverScratchDirectories(const std::string& parent) {
  forEachLeftOver(parent, [](int above, const std::string& name, int directory, uid_t owner) {
    removeContent(directory, owner);
    ::unlinkat(above, name.c_str(), AT_REMOVEDIR);
  });
}

std::vector<std::string> leftOverScratchDirectories(const std::string& parent) {
  std::vector<std::string> found;
  forEachLeftOver(parent, [&found](int /*above*/, const std::string& name, int /*directory*/,
                                   uid_t /*owner*/) { found.push_back(name); });
  return found;
}

}  // namespace tool
