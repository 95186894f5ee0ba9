#ifndef HOST_LOCK_FILE_LOCK_H
#define HOST_LOCK_FILE_LOCK_H

#include <chrono>

#include "host/lock/lock_files.h"

namespace host {

enum class LockMode { Read, Write };

// The wait that never ends.
constexpr unsigned int c_waitForEver = 0x7FFFFFFF;

// How long one locking may wait in all, from now on, however many steps and attempts it takes.
class Patience {
 public:
  explicit Patience(unsigned int milliseconds);

  // Whether it only tries.
  bool isNone() const { return m_isNone; }
  // flock(2) that waits as long as there is patience. 0, EWOULDBLOCK when the time ran out, or
  // another errno.
  int lock(int fd, int operation) const;

 private:
  bool m_isNone;
  bool m_forEver;
  std::chrono::steady_clock::time_point m_end;
};

// Locks open lock files. 0, EWOULDBLOCK when the time ran out, or the errno of what failed; nothing
// is locked then.
int lockFiles(const LockFiles& files, LockMode mode, const Patience& patience);

// 0 or an errno.
int unlockFiles(const LockFiles& files);

}  // namespace host

#endif
