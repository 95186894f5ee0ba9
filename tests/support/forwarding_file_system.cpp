#include "tests/support/forwarding_file_system.h"

#include <fcntl.h>

namespace test {

ForwardingFileSystem::ForwardingFileSystem(host::FileSystem& behind) : m_behind(behind) {
  host::setFileSystem(this);
}

ForwardingFileSystem::~ForwardingFileSystem() { host::setFileSystem(nullptr); }

int ForwardingFileSystem::before(const FileArguments&) { return 0; }
void ForwardingFileSystem::after(const FileArguments&, long) {}

template <typename Forward>
auto ForwardingFileSystem::pass(const FileArguments& call, Forward forward) {
  decltype(forward()) result = -before(call);
  if (result == 0) {
    result = forward();
  } else if (call.call == FileCall::Close) {
    forward();
  }
  after(call, result);
  return result;
}

int ForwardingFileSystem::open(int directory, const std::string& path, int flags, mode_t mode) {
  return pass({FileCall::Open, directory, path, {}, flags, mode},
              [&] { return m_behind.open(directory, path, flags, mode); });
}

ssize_t ForwardingFileSystem::read(int fd, void* data, std::size_t size) {
  FileArguments call{FileCall::Read, fd};
  call.data = data;
  return pass(call, [&] { return m_behind.read(fd, data, size); });
}

ssize_t ForwardingFileSystem::write(int fd, const void* data, std::size_t size) {
  FileArguments call{FileCall::Write, fd};
  call.data = data;
  return pass(call, [&] { return m_behind.write(fd, data, size); });
}

int ForwardingFileSystem::sync(int fd) {
  return pass({FileCall::Sync, fd}, [&] { return m_behind.sync(fd); });
}

int ForwardingFileSystem::close(int fd) {
  return pass({FileCall::Close, fd}, [&] { return m_behind.close(fd); });
}

int ForwardingFileSystem::lock(int fd, int operation) {
  return pass({FileCall::Lock, fd, {}, {}, operation},
              [&] { return m_behind.lock(fd, operation); });
}

int ForwardingFileSystem::chmod(int fd, mode_t mode) {
  return pass({FileCall::Chmod, fd, {}, {}, 0, mode}, [&] { return m_behind.chmod(fd, mode); });
}

int ForwardingFileSystem::chown(int fd, uid_t owner, gid_t group) {
  return pass({FileCall::Chown, fd}, [&] { return m_behind.chown(fd, owner, group); });
}

int ForwardingFileSystem::statOpen(int fd, struct stat& out) {
  return pass({FileCall::StatOpen, fd}, [&] { return m_behind.statOpen(fd, out); });
}

int ForwardingFileSystem::stat(int directory, const std::string& path, bool follow,
                               struct stat& out) {
  return pass({FileCall::Stat, directory, path},
              [&] { return m_behind.stat(directory, path, follow, out); });
}

int ForwardingFileSystem::readLink(int directory, const std::string& path, std::string& target,
                                   struct stat& link) {
  FileArguments call{FileCall::ReadLink, directory, path};
  call.text = &target;
  return pass(call, [&] { return m_behind.readLink(directory, path, target, link); });
}

int ForwardingFileSystem::list(int directory, std::vector<std::string>& names) {
  return pass({FileCall::List, directory}, [&] { return m_behind.list(directory, names); });
}

int ForwardingFileSystem::rename(int directory, const std::string& from, const std::string& to) {
  return pass({FileCall::Rename, directory, from, to},
              [&] { return m_behind.rename(directory, from, to); });
}

int ForwardingFileSystem::link(int directory, const std::string& from, const std::string& to) {
  return pass({FileCall::Link, directory, from, to},
              [&] { return m_behind.link(directory, from, to); });
}

int ForwardingFileSystem::unlink(int directory, const std::string& path) {
  return pass({FileCall::Unlink, directory, path},
              [&] { return m_behind.unlink(directory, path); });
}

int ForwardingFileSystem::makeDirectory(int directory, const std::string& path, mode_t mode) {
  return pass({FileCall::MakeDirectory, directory, path, {}, 0, mode},
              [&] { return m_behind.makeDirectory(directory, path, mode); });
}

int ForwardingFileSystem::access(const std::string& path, int mode) {
  return pass({FileCall::Access, AT_FDCWD, path, {}, mode},
              [&] { return m_behind.access(path, mode); });
}

}  // namespace test
