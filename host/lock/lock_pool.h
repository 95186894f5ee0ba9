#ifndef HOST_LOCK_LOCK_POOL_H
#define HOST_LOCK_LOCK_POOL_H

#include <memory>
#include <string>
#include <vector>

#include "host/lock/lock_files.h"
#include "host/process/fork_lock.h"

namespace host {

// Keeps lock files open from one use to the next, since opening costs more than locking. Any
// thread. In the child of a fork every file is closed: one that stayed open would keep the parent's
// lock after the parent's death.
class LockPool {
 public:
  static LockPool& instance();
  // For the child of a fork, while the mutex of the pool is held.
  static void closeFilesOfParent() HOST_REQUIRES(c_lockFilesMutex);

  // Files for the lock `name` of the present agent that nobody else uses. Results and `failure` as
  // of openLockFiles. Throws std::bad_alloc, and then nothing is taken.
  int take(const std::string& name, LockFiles*& files, LockFailure& failure);
  // Takes back files that are not locked.
  void giveBack(LockFiles* files) noexcept;
  // Closes files, which unlocks them.
  void discard(LockFiles* files) noexcept;
  // Closes what nobody uses now, and what is in use as soon as it is given back.
  void dropIdle();

 private:
  struct Entry {
    LockFiles files;
    bool idle = false;
    bool outdated = false;
    ~Entry();
  };

  void eraseIdle() HOST_REQUIRES(c_lockFilesMutex);
  void erase(const LockFiles* files) HOST_REQUIRES(c_lockFilesMutex);

  std::vector<std::unique_ptr<Entry>> m_entries HOST_GUARDED_BY(c_lockFilesMutex);
};

}  // namespace host

#endif
