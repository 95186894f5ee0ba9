#include "tests/support/rerooted_file_system.h"

#include <fcntl.h>

#include <utility>

namespace test {
namespace {

bool isBelow(const std::string& path, const std::string& directory) {
  return path.compare(0, directory.size(), directory) == 0 &&
         (path.size() == directory.size() || path[directory.size()] == '/');
}

}  // namespace

RerootedFileSystem::RerootedFileSystem(std::string from, std::string to)
    : m_from(std::move(from)), m_to(std::move(to)) {}

bool RerootedFileSystem::isAboveFrom(const std::string& path) const {
  return path == "/" || (path != m_from && !path.empty() && isBelow(m_from, path));
}

std::string RerootedFileSystem::moved(const std::string& path) const {
  return isBelow(path, m_from) ? m_to + path.substr(m_from.size()) : path;
}

std::string RerootedFileSystem::meant(int directory, const std::string& path) {
  if (!path.empty() && path.front() == '/') return path;
  const std::lock_guard<std::mutex> guard(m_mutex);
  const auto above = m_above.find(directory);
  if (above == m_above.end()) return path;
  return above->second + (above->second == "/" ? "" : "/") + path;
}

RerootedFileSystem::Place RerootedFileSystem::placeOf(int directory, const std::string& path) {
  const std::string full = meant(directory, path);
  return {full == path ? directory : AT_FDCWD, moved(full)};
}

int RerootedFileSystem::open(int directory, const std::string& path, int flags, mode_t mode) {
  const std::string full = meant(directory, path);
  if (isAboveFrom(full)) {
    const int fd = FaultyFileSystem::open(AT_FDCWD, "/", flags, mode);
    const std::lock_guard<std::mutex> guard(m_mutex);
    if (fd >= 0) m_above[fd] = full;
    return fd;
  }
  const Place place = placeOf(directory, path);
  return FaultyFileSystem::open(place.directory, place.path, flags, mode);
}

int RerootedFileSystem::close(int fd) {
  {
    // Done before the descriptor is free. Otherwise an open of another thread could get it first.
    const std::lock_guard<std::mutex> guard(m_mutex);
    m_above.erase(fd);
  }
  return FaultyFileSystem::close(fd);
}

int RerootedFileSystem::stat(int directory, const std::string& path, bool follow,
                             struct stat& out) {
  const Place place = placeOf(directory, path);
  return FaultyFileSystem::stat(place.directory, place.path, follow, out);
}
int RerootedFileSystem::readLink(int directory, const std::string& path, std::string& target,
                                 struct stat& link) {
  const Place place = placeOf(directory, path);
  return FaultyFileSystem::readLink(place.directory, place.path, target, link);
}
int RerootedFileSystem::unlink(int directory, const std::string& path) {
  const Place place = placeOf(directory, path);
  return FaultyFileSystem::unlink(place.directory, place.path);
}
int RerootedFileSystem::makeDirectory(int directory, const std::string& path, mode_t mode) {
  const Place place = placeOf(directory, path);
  return FaultyFileSystem::makeDirectory(place.directory, place.path, mode);
}
int RerootedFileSystem::access(const std::string& path, int mode) {
  return FaultyFileSystem::access(moved(path), mode);
}

}  // namespace test
