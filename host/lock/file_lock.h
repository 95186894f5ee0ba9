#ifndef HOST_LOCK_FILE_LOCK_H
#define HOST_LOCK_FILE_LOCK_H

#include "host/lock/lock_pool.h"

namespace host {

enum class LockMode { Read, Write };

// The wait that never ends.
constexpr unsigned int c_waitForEver = 0x7FFFFFFF;

// Locks open lock files. 0, EWOULDBLOCK when the time ran out, or the errno of what failed; nothing
// is locked then.
int lockFiles(const LockFiles& files, LockMode mode, unsigned int waitMilliseconds);

// 0 or an errno.
int unlockFiles(const LockFiles& files);

}  // namespace host

#endif
