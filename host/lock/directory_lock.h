#ifndef HOST_LOCK_DIRECTORY_LOCK_H
#define HOST_LOCK_DIRECTORY_LOCK_H

#include <string>

#include "host/fs/descriptor.h"
#include "platform/export.h"

namespace host {

// The write lock of a directory, for programs that replace its files. It is a kernel lock on the
// directory itself, so there is no lock file, and the lock remains when a file is replaced. It
// excludes only programs that take it. Some network file systems do not support such locks.
class PLATFORM_API DirectoryLock {
 public:
  DirectoryLock() : m_directory(-1) {}
  // Releases the lock. Must not run in the child of a fork, because the child shares the lock.
  ~DirectoryLock();
  DirectoryLock(const DirectoryLock&) = delete;
  DirectoryLock& operator=(const DirectoryLock&) = delete;

  // Takes the lock when no other process holds it. Waits as the locks of the agent do. Returns 0,
  // EWOULDBLOCK when the time has run out, or another errno.
  int lock(const std::string& directory, unsigned int waitMilliseconds);

 private:
  Descriptor m_directory;
};

}  // namespace host

#endif
