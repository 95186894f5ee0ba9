#include "tools/sitelist/doctor/read_only_files.h"

#include <fcntl.h>

#include <cerrno>

namespace tool {

ReadOnlyFiles::ReadOnlyFiles() : m_behind(host::fileSystem()) { host::setFileSystem(this); }
ReadOnlyFiles::~ReadOnlyFiles() { host::setFileSystem(&m_behind); }

int ReadOnlyFiles::open(int directory, const std::string& path, int flags, mode_t mode) {
  if ((flags & O_ACCMODE) != O_RDONLY || (flags & (O_CREAT | O_TRUNC)) != 0) return -EROFS;
  return m_behind.open(directory, path, flags, mode);
}

ssize_t ReadOnlyFiles::read(int fd, void* data, std::size_t size) {
  return m_behind.read(fd, data, size);
}
ssize_t ReadOnlyFiles::write(int, const void*, std::size_t) { return -EROFS; }
int ReadOnlyFiles::sync(int fd) { return m_behind.sync(fd); }
int ReadOnlyFiles::close(int fd) { return m_behind.close(fd); }
int ReadOnlyFiles::lock(int fd, int operation) { return m_behind.lock(fd, operation); }
int ReadOnlyFiles::chmod(int, mode_t) { return -EROFS; }
int ReadOnlyFiles::chown(int, uid_t, gid_t) { return -EROFS; }
int ReadOnlyFiles::statOpen(int fd, struct stat& out) { return m_behind.statOpen(fd, out); }

int ReadOnlyFiles::stat(int directory, const std::string& path, bool follow, struct stat& out) {
  return m_behind.stat(directory, path, follow, out);
}
int ReadOnlyFiles::readLink(int directory, const std::string& path, std::string& target,
                            struct stat& link) {
  return m_behind.readLink(directory, path, target, link);
}
int ReadOnlyFiles::list(int directory, std::vector<std::string>& names) {
  return m_behind.list(directory, names);
}

int ReadOnlyFiles::rename(int, const std::string&, const std::string&) { return -EROFS; }
int ReadOnlyFiles::link(int, const std::string&, const std::string&) { return -EROFS; }
int ReadOnlyFiles::unlink(int, const std::string&) { return -EROFS; }
int ReadOnlyFiles::makeDirectory(int, const std::string&, mode_t) { return -EROFS; }
int ReadOnlyFiles::access(const std::string& path, int mode) { return m_behind.access(path, mode); }

}  // namespace tool
