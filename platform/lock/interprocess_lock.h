#ifndef PLATFORM_LOCK_INTERPROCESS_LOCK_H
#define PLATFORM_LOCK_INTERPROCESS_LOCK_H

#include <memory>

#include "platform/export.h"

// Named reader/writer locks between all processes of one agent: many readers or one writer per
// name. Locks of one process exclude each other in the same way, in one thread or in several. When
// a process ends, for whatever reason, the system releases its locks. Readers cannot starve a
// waiting writer.
//
// One object must not be used by two threads at the same time. The destructor unlocks. Locking a
// locked object has no effect. Unlocking an unlocked object has no effect. After a fork the child
// holds none of its parent's locks.
namespace korvel_com {
namespace orb {
namespace lock {

struct LockImpl;

// A wait without a limit.
constexpr unsigned int c_waitForEver = 0x7FFFFFFF;

// A lock held as a reader.
class PLATFORM_API InterProcessReadLock {
 public:
  // Names the lock but does not lock it. The name is copied. May throw std::bad_alloc.
  explicit InterProcessReadLock(const char* name);
  ~InterProcessReadLock();
  InterProcessReadLock(const InterProcessReadLock&) = delete;
  InterProcessReadLock& operator=(const InterProcessReadLock&) = delete;

  // Locks. Waits at most `waitMilliseconds`; 0 does not wait, c_waitForEver waits without limit.
  // Changes to the lock files do not make the wait longer. Returns whether the lock is held
  // afterwards. Returns false without a log line when the time has run out. Returns false with one
  // error line, and without waiting, when the lock cannot be opened:
  // - the lock's directory or its files cannot be made or opened,
  // - a lock file is a symbolic link or not a regular file,
  // - a symbolic link in their path belongs neither to the effective user nor to root,
  // - the name is empty or has a "/".
  // Nothing is protected then, and the caller decides whether to continue. The operations of the
  // site list library continue. Files are replaced atomically, so a reader still sees one whole
  // list. Two writers at the same time may lose one of the two changes.
  bool lock(unsigned int waitMilliseconds);
  // Releases the lock. Never fails.
  void unlock() noexcept;

 private:
  std::unique_ptr<LockImpl> m_impl;
};

// A lock held as a writer.
class PLATFORM_API InterProcessWriteLock {
 public:
  // As InterProcessReadLock.
  explicit InterProcessWriteLock(const char* name);
  ~InterProcessWriteLock();
  InterProcessWriteLock(const InterProcessWriteLock&) = delete;
  InterProcessWriteLock& operator=(const InterProcessWriteLock&) = delete;

  // As InterProcessReadLock::lock, including its failures.
  bool lock(unsigned int waitMilliseconds);
  // Releases the lock. Never fails.
  void unlock() noexcept;

 private:
  std::unique_ptr<LockImpl> m_impl;
};

}  // namespace lock
}  // namespace orb
}  // namespace korvel_com

#endif
