#ifndef HOST_PROCESS_FORK_LOCK_H
#define HOST_PROCESS_FORK_LOCK_H

#include <cstddef>

#include "host/process/thread_safety.h"

namespace host {

// A mutex that is taken around every fork.
class HOST_MUTEX ForkMutex {
 public:
  explicit constexpr ForkMutex(std::size_t place) : m_place(place) {}
  ForkMutex(const ForkMutex&) = delete;
  ForkMutex& operator=(const ForkMutex&) = delete;

  constexpr std::size_t place() const { return m_place; }

 private:
  std::size_t m_place;
};

// All mutexes, each with the data that it guards. A thread that holds one may take only later ones.
inline constexpr ForkMutex c_settingsMutex(0);     // the agent of the process, until it is known
inline constexpr ForkMutex c_lockFilesMutex(1);    // the open lock files
inline constexpr ForkMutex c_passwordKeyMutex(2);  // the agent's password key and its idle objects
inline constexpr ForkMutex c_serverKeyMutex(3);    // the server key and its idle objects
inline constexpr ForkMutex c_libcryptoMutex(4);    // every call that may take a lock in libcrypto
inline constexpr ForkMutex c_logMutex(5);          // the sink
inline constexpr ForkMutex c_errorTextMutex(6);    // the system's table of error texts
inline constexpr ForkMutex c_passedDocumentsMutex(7);  // documents that were checked
constexpr std::size_t c_forkMutexCount = 8;

// Holds a mutex from its construction to its destruction. All of them are taken around every fork.
// In a child all are free and the guarded data is consistent. A thread that holds one must not
// fork.
class HOST_SCOPED_LOCK ForkLock {
 public:
  explicit ForkLock(const ForkMutex& mutex) noexcept HOST_ACQUIRES(mutex);
  ~ForkLock() HOST_RELEASES();
  ForkLock(const ForkLock&) = delete;
  ForkLock& operator=(const ForkLock&) = delete;

 private:
  const std::size_t m_place;
};

// Registers a function for the child of a fork. The child calls it while it holds all mutexes. An
// object must be static and must be made while the library is loaded.
class ForkChildHandler {
 public:
  explicit ForkChildHandler(void (*function)()) noexcept;
  ForkChildHandler(const ForkChildHandler&) = delete;
  ForkChildHandler& operator=(const ForkChildHandler&) = delete;

  // Calls all registered functions.
  static void callAll();

 private:
  void (*const m_function)();
  const ForkChildHandler* const m_next;
};

}  // namespace host

#endif
