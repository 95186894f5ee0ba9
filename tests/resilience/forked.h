#ifndef TESTS_RESILIENCE_FORKED_H
#define TESTS_RESILIENCE_FORKED_H

#include <sys/types.h>

#include <functional>

namespace test {

// A copy of this process that runs a function and ends with its result, without cleaning up. Many
// times as cheap as a ChildProcess. Of the threads there is only the one that forked: the function
// must not need what belongs to another.
class Forked {
 public:
  explicit Forked(const std::function<int()>& body);
  // Kills one that still runs.
  ~Forked();
  Forked(const Forked&) = delete;
  Forked& operator=(const Forked&) = delete;

  void kill();
  // The exit status, or 128 + the number of the signal that ended it.
  int wait();
  pid_t pid() const { return m_pid; }

 private:
  pid_t m_pid;
};

}  // namespace test

#endif
