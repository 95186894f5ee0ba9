#include "tests/support/rerooted_file_system.h"

#include <utility>

namespace test {

RerootedFileSystem::RerootedFileSystem(std::string from, std::string to)
    : m_from(std::move(from)), m_to(std::move(to)) {}

std::string RerootedFileSystem::moved(const std::string& path) const {
  const bool below = path.compare(0, m_from.size(), m_from) == 0 &&
                     (path.size() == m_from.size() || path[m_from.size()] == '/');
  return below ? m_to + path.substr(m_from.size()) : path;
}

int RerootedFileSystem::open(int directory, const std::string& path, int flags, mode_t mode) {
  return FaultyFileSystem::open(directory, moved(path), flags, mode);
}
int RerootedFileSystem::stat(int directory, const std::string& path, bool follow,
                             struct stat& out) {
  return FaultyFileSystem::stat(directory, moved(path), follow, out);
}
int RerootedFileSystem::readLink(int directory, const std::string& path, std::string& target) {
  return FaultyFileSystem::readLink(directory, moved(path), target);
}
int RerootedFileSystem::unlink(int directory, const std::string& path) {
  return FaultyFileSystem::unlink(directory, moved(path));
}
int RerootedFileSystem::makeDirectory(const std::string& path, mode_t mode) {
  return FaultyFileSystem::makeDirectory(moved(path), mode);
}
int RerootedFileSystem::access(const std::string& path, int mode) {
  return FaultyFileSystem::access(moved(path), mode);
}

}  // namespace test
