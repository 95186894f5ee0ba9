#ifndef HOST_LOCK_DIRECTORY_LOCK_H
#define HOST_LOCK_DIRECTORY_LOCK_H

#include <string>

#include "host/fs/descriptor.h"
#include "platform/export.h"

namespace host {

// The write lock of a directory, for those who replace its files. It is a kernel lock on the
// directory itself: no lock file is left there, and it survives the replacement of a file. Only
// those who take it are kept out. Not every network file system has it.
class PLATFORM_API DirectoryLock {
 public:
  DirectoryLock() : m_directory(-1) {}
  // Releases the lock. Must not run in the child of a fork, which shares the lock.
  ~DirectoryLock();
  DirectoryLock(const DirectoryLock&) = delete;
  DirectoryLock& operator=(const DirectoryLock&) = delete;

  // Takes the lock when none is held; waits as the locks of the agent do. 0, EWOULDBLOCK when the
  // time ran out, or the errno of what failed.
  int lock(const std::string& directory, unsigned int waitMilliseconds);

 private:
  Descriptor m_directory;
};

}  // namespace host

#endif
