#include "tests/support/memory_file_system.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <iterator>

namespace test {
namespace {

// Far above the descriptors of the system, so that the two cannot be confused.
constexpr int c_firstDescriptor = 1 << 20;

std::string withoutDoubleSlashes(const std::string& path) {
  std::string result;
  for (const char c : path) {
    if (c != '/' || result.empty() || result.back() != '/') result += c;
  }
  while (result.size() > 1 && result.back() == '/') result.pop_back();
  if (result.size() > 2 && result.compare(result.size() - 2, 2, "/.") == 0) {
    result.resize(result.size() - 2);
  }
  return result;
}

bool hasZero(const std::string& path) { return path.find('\0') != std::string::npos; }

}  // namespace

MemoryFileSystem::MemoryFileSystem() : m_next(c_firstDescriptor) { host::setFileSystem(this); }

MemoryFileSystem::~MemoryFileSystem() { host::setFileSystem(nullptr); }

void MemoryFileSystem::put(const std::string& path, const std::string& bytes, mode_t mode) {
  auto file = std::make_shared<File>();
  file->bytes = bytes;
  file->mode = mode;
  file->number = ++m_number;
  m_files[withoutDoubleSlashes(path)] = file;
}

void MemoryFileSystem::clear(const std::string& kept) {
  const std::string start = kept + "/";
  for (auto file = m_files.begin(); file != m_files.end();) {
    const bool isKept = file->first.compare(0, start.size(), start) == 0;
    file = isKept ? std::next(file) : m_files.erase(file);
  }
  m_directories.clear();
}

const std::string* MemoryFileSystem::find(const std::string& path) const {
  const auto found = m_files.find(path);
  return found == m_files.end() ? nullptr : &found->second->bytes;
}

std::vector<std::string> MemoryFileSystem::paths() const {
  std::vector<std::string> all;
  for (const auto& file : m_files) all.push_back(file.first);
  return all;
}

std::string MemoryFileSystem::full(int directory, const std::string& path) const {
  const auto above = m_open.find(directory);
  if (above == m_open.end() || (!path.empty() && path.front() == '/')) {
    return withoutDoubleSlashes(path);
  }
  return withoutDoubleSlashes(above->second.path + "/" + path);
}

bool MemoryFileSystem::isDirectory(const std::string& path) const {
  if (path == "/" || m_directories.count(path) != 0) return true;
  const std::string start = path + "/";
  const auto file = m_files.lower_bound(start);
  if (file != m_files.end() && file->first.compare(0, start.size(), start) == 0) return true;
  const auto directory = m_directories.lower_bound(start);
  return directory != m_directories.end() && directory->compare(0, start.size(), start) == 0;
}

void MemoryFileSystem::describe(const File* file, struct stat& out) {
  std::memset(&out, 0, sizeof out);
  out.st_mode = file ? S_IFREG | file->mode : S_IFDIR | 0700;
  out.st_nlink = file ? file->names : 1;
  if (!file) return;
  out.st_ino = file->number;
  out.st_size = static_cast<off_t>(file->bytes.size());
}

int MemoryFileSystem::open(int directory, const std::string& path, int flags, mode_t mode) {
  if (hasZero(path)) return -EINVAL;
  const std::string name = full(directory, path);
  Open opened;
  opened.path = name;
  const auto found = m_files.find(name);
  if (found != m_files.end()) {
    if ((flags & O_DIRECTORY) != 0) return -ENOTDIR;
    if ((flags & O_CREAT) != 0 && (flags & O_EXCL) != 0) return -EEXIST;
    opened.file = found->second;
  } else if (!isDirectory(name)) {
    if ((flags & O_CREAT) == 0) return -ENOENT;
    put(name, std::string(), mode);
    opened.file = m_files[name];
  }
  m_open[m_next] = opened;
  return m_next++;
}

ssize_t MemoryFileSystem::read(int fd, void* data, std::size_t size) {
  const auto found = m_open.find(fd);
  if (found == m_open.end()) return -EBADF;
  Open& opened = found->second;
  if (!opened.file) return -EISDIR;
  const std::string& bytes = opened.file->bytes;
  const std::size_t count = std::min(size, bytes.size() - std::min(bytes.size(), opened.position));
  std::memcpy(data, bytes.data() + opened.position, count);
  opened.position += count;
  return static_cast<ssize_t>(count);
}

ssize_t MemoryFileSystem::write(int fd, const void* data, std::size_t size) {
  const auto found = m_open.find(fd);
  if (found == m_open.end() || !found->second.file) return -EBADF;
  found->second.file->bytes.append(static_cast<const char*>(data), size);
  return static_cast<ssize_t>(size);
}

int MemoryFileSystem::sync(int fd) { return m_open.count(fd) != 0 ? 0 : -EBADF; }

int MemoryFileSystem::close(int fd) { return m_open.erase(fd) != 0 ? 0 : -EBADF; }

int MemoryFileSystem::lock(int fd, int) { return m_open.count(fd) != 0 ? 0 : -EBADF; }

int MemoryFileSystem::chmod(int fd, mode_t mode) {
  const auto found = m_open.find(fd);
  if (found == m_open.end() || !found->second.file) return -EBADF;
  found->second.file->mode = mode;
  return 0;
}

int MemoryFileSystem::chown(int fd, uid_t, gid_t) { return m_open.count(fd) != 0 ? 0 : -EBADF; }

int MemoryFileSystem::statOpen(int fd, struct stat& out) {
  const auto found = m_open.find(fd);
  if (found == m_open.end()) return -EBADF;
  describe(found->second.file.get(), out);
  return 0;
}

int MemoryFileSystem::stat(int directory, const std::string& path, bool, struct stat& out) {
  if (hasZero(path)) return -EINVAL;
  const std::string name = full(directory, path);
  const auto found = m_files.find(name);
  if (found == m_files.end() && !isDirectory(name)) return -ENOENT;
  describe(found == m_files.end() ? nullptr : found->second.get(), out);
  return 0;
}

int MemoryFileSystem::readLink(int directory, const std::string& path, std::string&,
                               struct stat& link) {
  const int error = stat(directory, path, false, link);
  return error ? error : -EINVAL;
}

int MemoryFileSystem::list(int directory, std::vector<std::string>& names) {
  const auto opened = m_open.find(directory);
  if (opened == m_open.end()) return -EBADF;
  const std::string start = opened->second.path + "/";
  for (auto at = m_files.lower_bound(start);
       at != m_files.end() && at->first.compare(0, start.size(), start) == 0; ++at) {
    const std::string name = at->first.substr(start.size());
    if (name.find('/') == std::string::npos) names.push_back(name);
  }
  return 0;
}

int MemoryFileSystem::rename(int directory, const std::string& from, const std::string& to) {
  const auto found = m_files.find(full(directory, from));
  if (found == m_files.end()) return -ENOENT;
  const std::shared_ptr<File> file = found->second;
  m_files.erase(found);
  m_files[full(directory, to)] = file;
  return 0;
}

int MemoryFileSystem::link(int directory, const std::string& from, const std::string& to) {
  const auto found = m_files.find(full(directory, from));
  if (found == m_files.end()) return -ENOENT;
  if (m_files.count(full(directory, to)) != 0) return -EEXIST;
  ++found->second->names;
  m_files[full(directory, to)] = found->second;
  return 0;
}

int MemoryFileSystem::unlink(int directory, const std::string& path) {
  const auto found = m_files.find(full(directory, path));
  if (found == m_files.end()) return -ENOENT;
  --found->second->names;
  m_files.erase(found);
  return 0;
}

int MemoryFileSystem::makeDirectory(int directory, const std::string& path, mode_t) {
  const std::string name = full(directory, path);
  if (m_files.count(name) != 0) return -EEXIST;
  return m_directories.insert(name).second ? 0 : -EEXIST;
}

int MemoryFileSystem::access(const std::string& path, int) {
  struct stat unused;
  return stat(AT_FDCWD, path, true, unused);
}

}  // namespace test
