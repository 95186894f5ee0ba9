#ifndef HOST_PROCESS_FORK_LOCK_H
#define HOST_PROCESS_FORK_LOCK_H

namespace host {

// What the mutexes of this library guard, one mutex each. A thread that holds one takes only later
// ones.
enum class Guarded {
  Settings,     // which agent the process serves, until it is known
  LockFiles,    // the open lock files
  PasswordKey,  // the agent's password key and the idle objects that use it
  ServerKey,    // the same of the server key
  Libcrypto,    // every call that may take a lock inside libcrypto
  Log,          // the sink
  ErrorText,    // the system's table of error texts
};

// Holds a mutex from its construction to its destruction. All of them are taken around every fork.
// In a child all are free and the guarded data is consistent. A thread that holds one must not
// fork.
class ForkLock {
 public:
  explicit ForkLock(Guarded what) noexcept;
  ~ForkLock();
  ForkLock(const ForkLock&) = delete;
  ForkLock& operator=(const ForkLock&) = delete;

 private:
  Guarded m_what;
};

}  // namespace host

#endif
