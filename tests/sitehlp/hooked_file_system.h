#ifndef TESTS_SITEHLP_HOOKED_FILE_SYSTEM_H
#define TESTS_SITEHLP_HOOKED_FILE_SYSTEM_H

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <functional>
#include <string>
#include <utility>

#include "host/agent.h"
#include "tests/support/forwarding_file_system.h"

namespace test {

// The real file system with actions when a file is opened or replaced. The actions get the name
// from the call.
class HookedFileSystem : public ForwardingFileSystem {
 public:
  using Action = std::function<void(const std::string& path)>;
  explicit HookedFileSystem(Action onOpen, Action onRename = nullptr)
      : m_onOpen(std::move(onOpen)), m_onRename(std::move(onRename)) {}

  int open(int directory, const std::string& path, int flags, mode_t mode) override {
    if (m_onOpen) m_onOpen(path);
    return ForwardingFileSystem::open(directory, path, flags, mode);
  }
  int rename(int directory, const std::string& from, const std::string& to) override {
    if (m_onRename) m_onRename(to);
    return ForwardingFileSystem::rename(directory, from, to);
  }

 private:
  Action m_onOpen;
  Action m_onRename;
};

inline bool endsWith(const std::string& text, const std::string& end) {
  return text.size() >= end.size() && text.compare(text.size() - end.size(), end.size(), end) == 0;
}

enum class LockState { Free, Read, Written };
inline std::ostream& operator<<(std::ostream& out, LockState state) {
  return out << (state == LockState::Free ? "free" : state == LockState::Read ? "read" : "written");
}

// Returns how any process or thread holds the lock now. Asks the kernel, because code that runs
// under a mutex of the host library must not use its locks. A log sink is an example.
inline LockState lockState(const char* name) {
  const std::string path = host::agent().dataDirectory + "/locks/" + name + ".lock";
  const int fd = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
  if (fd < 0) return LockState::Free;  // the lock was not used yet
  LockState state = LockState::Written;
  if (::flock(fd, LOCK_EX | LOCK_NB) == 0) {
    state = LockState::Free;
  } else if (::flock(fd, LOCK_SH | LOCK_NB) == 0) {
    state = LockState::Read;
  }
  ::close(fd);
  return state;
}

}  // namespace test

#endif
