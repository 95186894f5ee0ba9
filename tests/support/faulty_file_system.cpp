#include "tests/support/faulty_file_system.h"

#include <algorithm>
#include <limits>
#include <utility>

namespace test {

FaultyFileSystem::FaultyFileSystem() : m_limit(std::numeric_limits<std::size_t>::max()) {}

void FaultyFileSystem::failCall(std::size_t number, int error) {
  fail([number](std::size_t n, FileCall) { return n == number; }, error);
}

void FaultyFileSystem::failFrom(std::size_t number, int error) {
  fail([number](std::size_t n, FileCall) { return n >= number; }, error);
}

void FaultyFileSystem::failEvery(FileCall call, int error) {
  fail([call](std::size_t, FileCall c) { return c == call; }, error);
}

void FaultyFileSystem::failNothing() { fail(nullptr, 0); }

void FaultyFileSystem::fail(Choice choice, int error) {
  const std::lock_guard<std::mutex> guard(m_mutex);
  m_choice = std::move(choice);
  m_error = error;
}

void FaultyFileSystem::limitTransfers(std::size_t bytes) {
  const std::lock_guard<std::mutex> guard(m_mutex);
  m_limit = bytes;
}

void FaultyFileSystem::beforeEach(std::function<void(FileCall)> action) {
  const std::lock_guard<std::mutex> guard(m_mutex);
  m_action = std::move(action);
}

std::vector<FileCall> FaultyFileSystem::calls() const {
  const std::lock_guard<std::mutex> guard(m_mutex);
  return m_calls;
}

std::vector<FileCall> FaultyFileSystem::failed() const {
  const std::lock_guard<std::mutex> guard(m_mutex);
  return m_failed;
}

int FaultyFileSystem::before(const FileArguments& arguments) {
  const FileCall call = arguments.call;
  std::function<void(FileCall)> action;
  {
    const std::lock_guard<std::mutex> guard(m_mutex);
    const std::size_t number = m_calls.size();
    m_calls.push_back(call);
    if (m_choice && m_choice(number, call)) {
      m_failed.push_back(call);
      return m_error;
    }
    action = m_action;
  }
  if (action) action(call);
  return 0;
}

ssize_t FaultyFileSystem::read(int fd, void* data, std::size_t size) {
  return ForwardingFileSystem::read(fd, data, std::min(size, m_limit));
}

ssize_t FaultyFileSystem::write(int fd, const void* data, std::size_t size) {
  return ForwardingFileSystem::write(fd, data, std::min(size, m_limit));
}

}  // namespace test
