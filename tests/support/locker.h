#ifndef TESTS_SUPPORT_LOCKER_H
#define TESTS_SUPPORT_LOCKER_H

#include <string>

#include "tests/support/child_process.h"

namespace test {

constexpr unsigned int c_forEver = 0x7FFFFFFF;

// Another process of the same agent. On demand it takes and releases one read lock and one write
// lock with the name "SiteListLock".
class Locker {
 public:
  enum class Mode { Read, Write };

  explicit Locker(const std::string& dataDirectory) : m_process("locker", {dataDirectory}) {}

  bool lock(Mode mode, unsigned int waitMilliseconds = c_forEver) {
    beginLock(mode, waitMilliseconds);
    return finishLock();
  }
  void unlock(Mode mode);

  // Begins a lock operation that has to wait. finishLock returns its result.
  void beginLock(Mode mode, unsigned int waitMilliseconds = c_forEver);
  bool finishLock() { return m_process.receive() == "yes"; }

  // Forks. Afterwards only the child does what this object demands.
  void fork();

  ChildProcess& process() { return m_process; }

 private:
  ChildProcess m_process;
};

}  // namespace test

#endif
