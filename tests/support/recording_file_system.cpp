#include "tests/support/recording_file_system.h"

#include <ostream>
#include <utility>

namespace test {

std::ostream& operator<<(std::ostream& out, const RecordedCall& call) {
  out << call.call << " " << call.path;
  if (!call.newPath.empty()) out << " -> " << call.newPath;
  return out << " = " << call.result;
}

RecordingFileSystem::RecordingFileSystem(host::FileSystem& behind) : ForwardingFileSystem(behind) {}

std::vector<RecordedCall> RecordingFileSystem::calls() const {
  const std::lock_guard<std::mutex> guard(m_mutex);
  return m_calls;
}

void RecordingFileSystem::forget() {
  const std::lock_guard<std::mutex> guard(m_mutex);
  m_calls.clear();
}

std::string RecordingFileSystem::full(int directory, std::string_view path) const {
  const auto found = m_open.find(directory);
  if (found == m_open.end() || (!path.empty() && path.front() == '/')) return std::string(path);
  const std::string& above = found->second.path;
  return (above + (above.empty() || above.back() != '/' ? "/" : "")).append(path);
}

RecordedCall RecordingFileSystem::about(const FileArguments& call) const {
  RecordedCall recorded{};
  recorded.call = call.call;
  recorded.flags = call.flags;
  recorded.mode = call.mode;
  if (call.path.data()) {
    recorded.path = full(call.fd, call.path);
    if (call.newPath.data()) recorded.newPath = full(call.fd, call.newPath);
  } else if (const auto found = m_open.find(call.fd); found != m_open.end()) {
    recorded.path = found->second.path;
    recorded.file = found->second.number;
  }
  return recorded;
}

void RecordingFileSystem::after(const FileArguments& call, long result) {
  const std::lock_guard<std::mutex> guard(m_mutex);
  RecordedCall recorded = about(call);
  recorded.result = result;
  if (result > 0 && call.data) {
    recorded.data.assign(static_cast<const char*>(call.data), static_cast<std::size_t>(result));
  }
  if (result >= 0 && call.text) recorded.data = *call.text;
  if (result >= 0 && call.call == FileCall::Open) {
    recorded.file = ++m_opens;
    m_open[static_cast<int>(result)] = {recorded.file, recorded.path};
  }
  if (result >= 0 && call.call == FileCall::Rename) {
    for (auto& [fd, file] : m_open) {
      if (file.path == recorded.path) file.path = recorded.newPath;
    }
  }
  m_calls.push_back(std::move(recorded));
}

int RecordingFileSystem::close(int fd) {
  RecordedCall recorded{};
  {
    // Done before the descriptor is free. Otherwise an open of another thread could get it first.
    const std::lock_guard<std::mutex> guard(m_mutex);
    recorded = about({FileCall::Close, fd});
    m_open.erase(fd);
  }
  const int result = behind().close(fd);
  recorded.result = result;
  const std::lock_guard<std::mutex> guard(m_mutex);
  m_calls.push_back(std::move(recorded));
  return result;
}

}  // namespace test
