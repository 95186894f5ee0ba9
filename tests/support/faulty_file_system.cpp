#include "tests/support/faulty_file_system.h"

#include <algorithm>
#include <limits>
#include <utility>

namespace test {
namespace {

host::FileSystem& real() { return host::posixFileSystem(); }

}  // namespace

FaultyFileSystem::FaultyFileSystem() : m_limit(std::numeric_limits<std::size_t>::max()) {
  host::setFileSystem(this);
}

FaultyFileSystem::~FaultyFileSystem() { host::setFileSystem(nullptr); }

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

int FaultyFileSystem::fault(FileCall call) {
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

int FaultyFileSystem::open(int directory, const std::string& path, int flags, mode_t mode) {
  const int error = fault(FileCall::Open);
  return error ? -error : real().open(directory, path, flags, mode);
}

ssize_t FaultyFileSystem::read(int fd, void* data, std::size_t size) {
  const int error = fault(FileCall::Read);
  return error ? -error : real().read(fd, data, std::min(size, m_limit));
}

ssize_t FaultyFileSystem::write(int fd, const void* data, std::size_t size) {
  const int error = fault(FileCall::Write);
  return error ? -error : real().write(fd, data, std::min(size, m_limit));
}

int FaultyFileSystem::sync(int fd) {
  const int error = fault(FileCall::Sync);
  return error ? -error : real().sync(fd);
}

int FaultyFileSystem::close(int fd) {
  const int error = fault(FileCall::Close);
  const int result = real().close(fd);
  return error ? -error : result;
}

int FaultyFileSystem::lock(int fd, int operation) {
  const int error = fault(FileCall::Lock);
  return error ? -error : real().lock(fd, operation);
}

int FaultyFileSystem::chmod(int fd, mode_t mode) {
  const int error = fault(FileCall::Chmod);
  return error ? -error : real().chmod(fd, mode);
}

int FaultyFileSystem::chown(int fd, uid_t owner, gid_t group) {
  const int error = fault(FileCall::Chown);
  return error ? -error : real().chown(fd, owner, group);
}

int FaultyFileSystem::statOpen(int fd, struct stat& out) {
  const int error = fault(FileCall::StatOpen);
  return error ? -error : real().statOpen(fd, out);
}

int FaultyFileSystem::stat(int directory, const std::string& path, bool follow, struct stat& out) {
  const int error = fault(FileCall::Stat);
  return error ? -error : real().stat(directory, path, follow, out);
}

int FaultyFileSystem::readLink(int directory, const std::string& path, std::string& target,
                               struct stat& link) {
  const int error = fault(FileCall::ReadLink);
  return error ? -error : real().readLink(directory, path, target, link);
}

int FaultyFileSystem::list(int directory, std::vector<std::string>& names) {
  const int error = fault(FileCall::List);
  return error ? -error : real().list(directory, names);
}

int FaultyFileSystem::rename(int directory, const std::string& from, const std::string& to) {
  const int error = fault(FileCall::Rename);
  return error ? -error : real().rename(directory, from, to);
}

int FaultyFileSystem::link(int directory, const std::string& from, const std::string& to) {
  const int error = fault(FileCall::Link);
  return error ? -error : real().link(directory, from, to);
}

int FaultyFileSystem::unlink(int directory, const std::string& path) {
  const int error = fault(FileCall::Unlink);
  return error ? -error : real().unlink(directory, path);
}

int FaultyFileSystem::makeDirectory(int directory, const std::string& path, mode_t mode) {
  const int error = fault(FileCall::MakeDirectory);
  return error ? -error : real().makeDirectory(directory, path, mode);
}

int FaultyFileSystem::access(const std::string& path, int mode) {
  const int error = fault(FileCall::Access);
  return error ? -error : real().access(path, mode);
}

}  // namespace test
