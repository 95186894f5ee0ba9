#ifndef HOST_LOCK_LOCK_POOL_H
#define HOST_LOCK_LOCK_POOL_H

#include <memory>
#include <string>
#include <vector>

#include "host/lock/lock_files.h"
#include "host/process/fork_lock.h"

namespace host {

// Keeps lock files open between uses, because opening takes longer than locking. Any thread. The
// child of a fork closes all files. An open one would keep the parent's lock after the end of the
// parent.
class LockPool {
 public:
  static LockPool& instance();
  // Returns files of the lock `name` of the current agent that no other holder uses. The result and
  // `failure` are those of openLockFiles. Throws std::bad_alloc, and then takes nothing.
  int take(const std::string& name, LockFiles*& files, LockFailure& failure);
  // Takes back files, which must not be locked.
  void giveBack(LockFiles* files) noexcept;
  // Closes files, which unlocks them.
  void discard(LockFiles* files) noexcept;
  // Closes the idle files. Files in use are closed when they are given back.
  void dropIdle();

 private:
  struct Entry {
    LockFiles files;
    bool idle = false;
    bool outdated = false;
    ~Entry();
  };

  static void closeFilesOfParent() HOST_NOT_CHECKED;
  void eraseIdle() HOST_REQUIRES(c_lockFilesMutex);
  void erase(const LockFiles* files) HOST_REQUIRES(c_lockFilesMutex);

  static const ForkChildHandler m_forkHandler;
  std::vector<std::unique_ptr<Entry>> m_entries HOST_GUARDED_BY(c_lockFilesMutex);
};

}  // namespace host

#endif
