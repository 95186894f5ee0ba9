#include "tests/support/recording_file_system.h"

#include <ostream>
#include <utility>

namespace test {

std::ostream& operator<<(std::ostream& out, const RecordedCall& call) {
  out << call.call << " " << call.path;
  if (!call.newPath.empty()) out << " -> " << call.newPath;
  return out << " = " << call.result;
}

RecordingFileSystem::RecordingFileSystem(host::FileSystem& behind) : m_behind(behind) {
  host::setFileSystem(this);
}

RecordingFileSystem::~RecordingFileSystem() { host::setFileSystem(nullptr); }

std::vector<RecordedCall> RecordingFileSystem::calls() const {
  const std::lock_guard<std::mutex> guard(m_mutex);
  return m_calls;
}

void RecordingFileSystem::forget() {
  const std::lock_guard<std::mutex> guard(m_mutex);
  m_calls.clear();
}

std::string RecordingFileSystem::full(int directory, const std::string& path) const {
  if (!path.empty() && path.front() == '/') return path;
  const std::lock_guard<std::mutex> guard(m_mutex);
  const auto found = m_open.find(directory);
  if (found == m_open.end()) return path;
  const std::string& above = found->second.path;
  return above + (above.empty() || above.back() != '/' ? "/" : "") + path;
}

RecordedCall RecordingFileSystem::about(FileCall call, int fd) const {
  RecordedCall recorded{};
  recorded.call = call;
  const std::lock_guard<std::mutex> guard(m_mutex);
  const auto found = m_open.find(fd);
  if (found != m_open.end()) {
    recorded.path = found->second.path;
    recorded.file = found->second.number;
  }
  return recorded;
}

RecordedCall RecordingFileSystem::about(FileCall call, int directory,
                                        const std::string& path) const {
  RecordedCall recorded{};
  recorded.call = call;
  recorded.path = full(directory, path);
  return recorded;
}

template <typename Result>
Result RecordingFileSystem::keep(RecordedCall call, Result result) {
  const std::lock_guard<std::mutex> guard(m_mutex);
  call.result = static_cast<long>(result);
  m_calls.push_back(std::move(call));
  return result;
}

int RecordingFileSystem::open(int directory, const std::string& path, int flags, mode_t mode) {
  RecordedCall call = about(FileCall::Open, directory, path);
  call.flags = flags;
  call.mode = mode;
  const int fd = m_behind.open(directory, path, flags, mode);
  if (fd >= 0) {
    const std::lock_guard<std::mutex> guard(m_mutex);
    call.file = ++m_opens;
    m_open[fd] = {call.file, call.path};
  }
  return keep(call, fd);
}

ssize_t RecordingFileSystem::read(int fd, void* data, std::size_t size) {
  RecordedCall call = about(FileCall::Read, fd);
  const ssize_t n = m_behind.read(fd, data, size);
  if (n > 0) call.data.assign(static_cast<const char*>(data), static_cast<std::size_t>(n));
  return keep(call, n);
}

ssize_t RecordingFileSystem::write(int fd, const void* data, std::size_t size) {
  RecordedCall call = about(FileCall::Write, fd);
  const ssize_t n = m_behind.write(fd, data, size);
  if (n > 0) call.data.assign(static_cast<const char*>(data), static_cast<std::size_t>(n));
  return keep(call, n);
}

int RecordingFileSystem::sync(int fd) { return keep(about(FileCall::Sync, fd), m_behind.sync(fd)); }

int RecordingFileSystem::close(int fd) {
  const RecordedCall call = about(FileCall::Close, fd);
  {
    // Before the descriptor is free, or another thread's open could get it in between.
    const std::lock_guard<std::mutex> guard(m_mutex);
    m_open.erase(fd);
  }
  return keep(call, m_behind.close(fd));
}

int RecordingFileSystem::lock(int fd, int operation) {
  RecordedCall call = about(FileCall::Lock, fd);
  call.flags = operation;
  return keep(call, m_behind.lock(fd, operation));
}

int RecordingFileSystem::chmod(int fd, mode_t mode) {
  RecordedCall call = about(FileCall::Chmod, fd);
  call.mode = mode;
  return keep(call, m_behind.chmod(fd, mode));
}

int RecordingFileSystem::chown(int fd, uid_t owner, gid_t group) {
  return keep(about(FileCall::Chown, fd), m_behind.chown(fd, owner, group));
}

int RecordingFileSystem::statOpen(int fd, struct stat& out) {
  return keep(about(FileCall::StatOpen, fd), m_behind.statOpen(fd, out));
}

int RecordingFileSystem::stat(int directory, const std::string& path, bool follow,
                              struct stat& out) {
  return keep(about(FileCall::Stat, directory, path), m_behind.stat(directory, path, follow, out));
}

int RecordingFileSystem::readLink(int directory, const std::string& path, std::string& target,
                                  struct stat& link) {
  RecordedCall call = about(FileCall::ReadLink, directory, path);
  const int result = m_behind.readLink(directory, path, target, link);
  if (result >= 0) call.data = target;
  return keep(call, result);
}

int RecordingFileSystem::list(int directory, std::vector<std::string>& names) {
  return keep(about(FileCall::List, directory), m_behind.list(directory, names));
}

int RecordingFileSystem::rename(int directory, const std::string& from, const std::string& to) {
  RecordedCall call = about(FileCall::Rename, directory, from);
  call.newPath = full(directory, to);
  const int result = m_behind.rename(directory, from, to);
  if (result >= 0) {
    const std::lock_guard<std::mutex> guard(m_mutex);
    for (auto& [fd, file] : m_open) {
      if (file.path == call.path) file.path = call.newPath;
    }
  }
  return keep(call, result);
}

int RecordingFileSystem::link(int directory, const std::string& from, const std::string& to) {
  RecordedCall call = about(FileCall::Link, directory, from);
  call.newPath = full(directory, to);
  return keep(call, m_behind.link(directory, from, to));
}

int RecordingFileSystem::unlink(int directory, const std::string& path) {
  return keep(about(FileCall::Unlink, directory, path), m_behind.unlink(directory, path));
}

int RecordingFileSystem::makeDirectory(int directory, const std::string& path, mode_t mode) {
  RecordedCall call = about(FileCall::MakeDirectory, directory, path);
  call.mode = mode;
  return keep(call, m_behind.makeDirectory(directory, path, mode));
}

int RecordingFileSystem::access(const std::string& path, int mode) {
  RecordedCall call = about(FileCall::Access, -1, path);
  call.flags = mode;
  return keep(call, m_behind.access(path, mode));
}

}  // namespace test
