#ifndef HOST_LOCK_LOCK_HOLD_H
#define HOST_LOCK_LOCK_HOLD_H

#include <string>

#include "host/lock/file_lock.h"
#include "platform/export.h"
#include "platform/lock/interprocess_lock.h"

namespace host {

// A named lock that one thread holds during several operations that take the same lock. While the
// thread holds it, InterProcessReadLock and InterProcessWriteLock of that name and agent do not
// wait in this thread. Other threads and processes wait as for any other lock.
//
// A thread that holds a lock as a reader must not take it as a writer, because it would wait for
// itself. After a fork the child holds no lock. One object must not be used by two threads.
class PLATFORM_API LockHold {
 public:
  // Names the lock but does not take it.
  LockHold(const char* name, LockMode mode);
  // Releases the lock.
  ~LockHold();
  LockHold(const LockHold&) = delete;
  LockHold& operator=(const LockHold&) = delete;

  // Waits and fails as InterProcessReadLock::lock does.
  bool lock(unsigned int waitMilliseconds);
  void unlock() noexcept;
  // Returns whether the lock has been taken and not released since, not even by releaseHolds().
  bool isHeld() const noexcept;

 private:
  friend bool isHeldByThread(const std::string& name, LockMode mode);
  friend void releaseHolds() noexcept;

  const std::string m_name;
  const LockMode m_mode;
  std::string m_dataDirectory;  // of the agent of this lock
  korvel_com::orb::lock::InterProcessReadLock m_reader;
  korvel_com::orb::lock::InterProcessWriteLock m_writer;
  LockHold* m_next = nullptr;
};

// Returns whether this thread holds the lock of the current agent, in that mode or as a writer.
bool isHeldByThread(const std::string& name, LockMode mode);

// Releases all holds of this thread on locks of the current agent. For operations that must not run
// under a lock.
void releaseHolds() noexcept;

}  // namespace host

#endif
