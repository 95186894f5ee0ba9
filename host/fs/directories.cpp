#include <fcntl.h>

#include <cerrno>

#include "host/fs/file_system.h"
#include "host/fs/files.h"

namespace host {
namespace {

int checkDirectory(const std::string& path) {
  struct stat info;
  if (const int failed = fileSystem().stat(AT_FDCWD, path, true, info)) return -failed;
  return S_ISDIR(info.st_mode) ? 0 : ENOTDIR;
}

}  // namespace

int makeDirectories(const std::string& path, mode_t mode) {
  int error = checkDirectory(path);
  if (error != ENOENT) return error;
  const std::size_t nameEnd = path.find_last_not_of('/');
  const std::size_t slash = nameEnd == std::string::npos ? nameEnd : path.rfind('/', nameEnd);
  if (slash != std::string::npos && slash > 0) {
    error = makeDirectories(path.substr(0, slash), mode);
    if (error) return error;
  }
  error = -fileSystem().makeDirectory(path, mode);
  // Another process may have been faster; a file or a dangling link in its place is a failure.
  return error == EEXIST ? checkDirectory(path) : error;
}

}  // namespace host
