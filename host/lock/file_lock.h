#ifndef HOST_LOCK_FILE_LOCK_H
#define HOST_LOCK_FILE_LOCK_H

#include <chrono>

#include "host/lock/lock_files.h"

namespace host {

enum class LockMode { Read, Write };

// The longest wait of one locking operation, from the creation of the object. It covers all steps
// and attempts.
class Patience {
 public:
  // `milliseconds`: see InterProcessReadLock::lock.
  explicit Patience(unsigned int milliseconds);

  // Returns whether the operation does not wait.
  bool isNone() const { return m_isNone; }
  // flock(2) that waits until the time has run out. Returns 0, EWOULDBLOCK when the time has run
  // out, or another errno.
  int lock(int fd, int operation) const;

 private:
  bool m_isNone;
  bool m_forEver;
  std::chrono::steady_clock::time_point m_end;
};

// Locks open lock files. Returns 0, EWOULDBLOCK when the time has run out, or another errno. After
// a failure nothing is locked.
int lockFiles(const LockFiles& files, LockMode mode, const Patience& patience);

// Returns 0 or an errno.
int unlockFiles(const LockFiles& files);

}  // namespace host

#endif
