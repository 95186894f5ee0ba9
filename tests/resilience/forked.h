#ifndef TESTS_RESILIENCE_FORKED_H
#define TESTS_RESILIENCE_FORKED_H

#include <sys/types.h>

#include <functional>

namespace test {

// A copy of this process that runs a function and ends with its result, without cleaning up. It
// costs much less than a ChildProcess. It has only the thread that forked, so the function must not
// need other threads.
class Forked {
 public:
  explicit Forked(const std::function<int()>& body);
  // Kills the process if it is running.
  ~Forked();
  Forked(const Forked&) = delete;
  Forked& operator=(const Forked&) = delete;

  void kill();
  // Waits for the process. Returns the exit status, or 128 + the number of the signal that ended
  // it.
  int wait();
  pid_t pid() const { return m_pid; }

 private:
  pid_t m_pid;
};

}  // namespace test

#endif
