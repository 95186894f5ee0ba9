#ifndef PLATFORM_LOCK_INTERPROCESS_LOCK_H
#define PLATFORM_LOCK_INTERPROCESS_LOCK_H

#include <memory>

#include "platform/export.h"

// Named reader/writer locks between all processes of one agent: many readers or one writer per
// name. Two locks of one process, of the same or of different threads, exclude each other in the
// same way. A lock that its process holds when it dies, however it dies, is released by the system.
// A waiting writer is not overtaken for ever by readers that keep coming.
//
// One object is used by one thread at a time. An object that goes out of scope unlocks. Locking a
// locked object, or unlocking one that is not locked, does nothing. After a fork the child holds
// none of its parent's locks.
namespace korvel_com {
namespace orb {
namespace lock {

struct LockImpl;

// A reader's part of a lock.
class PLATFORM_API InterProcessReadLock {
 public:
  // The lock of that name, not locked. The name is copied. May throw std::bad_alloc.
  explicit InterProcessReadLock(const char* name);
  ~InterProcessReadLock();
  InterProcessReadLock(const InterProcessReadLock&) = delete;
  InterProcessReadLock& operator=(const InterProcessReadLock&) = delete;

  // Locks. Waits `waitMilliseconds` at most, whatever happens to the lock files meanwhile; 0 only
  // tries, 0x7FFFFFFF waits for ever. Returns whether the lock is held afterwards. Returns false
  // without a log line when the time ran out. Returns false with one error line, without waiting,
  // when the lock cannot be opened:
  // - the lock's directory or its files cannot be made or opened,
  // - a lock file is a symbolic link or not a regular file,
  // - a symbolic link on the way to them belongs neither to the effective user nor to root,
  // - the name is empty or holds a "/".
  // Nothing is protected then. It is the caller's decision to go on all the same. The operations of
  // the site list library do: files are replaced whole, so that a reader sees one whole list, but
  // one of two writers at the same time may lose its change.
  bool lock(unsigned int waitMilliseconds);
  // Lets the lock go. Never fails.
  void unlock() noexcept;

 private:
  std::unique_ptr<LockImpl> m_impl;
};

// A writer's part of a lock.
class PLATFORM_API InterProcessWriteLock {
 public:
  // As InterProcessReadLock.
  explicit InterProcessWriteLock(const char* name);
  ~InterProcessWriteLock();
  InterProcessWriteLock(const InterProcessWriteLock&) = delete;
  InterProcessWriteLock& operator=(const InterProcessWriteLock&) = delete;

  // As InterProcessReadLock::lock, a lock that cannot be had included.
  bool lock(unsigned int waitMilliseconds);
  // Lets the lock go. Never fails.
  void unlock() noexcept;

 private:
  std::unique_ptr<LockImpl> m_impl;
};

}  // namespace lock
}  // namespace orb
}  // namespace korvel_com

#endif
