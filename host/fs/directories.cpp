#include <fcntl.h>

#include <cerrno>

#include "host/fs/descriptor.h"
#include "host/fs/files.h"

namespace host {
namespace {

int checkDirectory(const std::string& path) {
  struct stat info;
  if (const int failed = fileSystem().stat(AT_FDCWD, path, true, info)) return -failed;
  return S_ISDIR(info.st_mode) ? 0 : ENOTDIR;
}

std::string parentOf(const std::string& path) {
  const std::size_t nameEnd = path.find_last_not_of('/');
  const std::size_t slash = nameEnd == std::string::npos ? nameEnd : path.rfind('/', nameEnd);
  if (slash == std::string::npos) return ".";
  return path.substr(0, slash + 1);
}

// Makes what was done to the names in the parent directory of `path` durable.
int syncParent(const std::string& path) {
  const Descriptor parent(fileSystem().open(AT_FDCWD, parentOf(path), O_RDONLY | O_DIRECTORY, 0));
  return parent.error() ? parent.error() : -fileSystem().sync(parent.get());
}

}  // namespace

int removeFile(const std::string& path) {
  const int error = -fileSystem().unlink(AT_FDCWD, path);
  if (error == ENOENT || error == ENOTDIR) return 0;
  return error ? error : syncParent(path);
}

int makeDirectory(const std::string& path, mode_t mode) {
  const int error = -fileSystem().makeDirectory(path, mode);
  // Another process may have been faster; a file or a dangling link in its place is a failure.
  if (error == EEXIST) return checkDirectory(path);
  return error ? error : syncParent(path);
}

int makeDirectories(const std::string& path, mode_t mode) {
  int error = checkDirectory(path);
  if (error != ENOENT) return error;
  const std::string parent = parentOf(path);
  const bool isAlwaysThere = parent == "/" || parent == ".";
  error = isAlwaysThere ? 0 : makeDirectories(parent, mode);
  return error ? error : makeDirectory(path, mode);
}

}  // namespace host
