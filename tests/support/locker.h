#ifndef TESTS_SUPPORT_LOCKER_H
#define TESTS_SUPPORT_LOCKER_H

#include <string>

#include "tests/support/child_process.h"

namespace test {

constexpr unsigned int c_forEver = 0x7FFFFFFF;

// Another process of the same agent that takes and gives back one read and one write lock of the
// name "SiteListLock" as it is told.
class Locker {
 public:
  enum class Mode { Read, Write };

  explicit Locker(const std::string& dataDirectory) : m_process("locker", {dataDirectory}) {}

  bool lock(Mode mode, unsigned int waitMilliseconds = c_forEver) {
    beginLock(mode, waitMilliseconds);
    return finishLock();
  }
  void unlock(Mode mode);

  // For a lock that will have to wait.
  void beginLock(Mode mode, unsigned int waitMilliseconds = c_forEver);
  bool finishLock() { return m_process.receive() == "yes"; }

  // Forks. The process answers nothing from then on, its child takes all orders.
  void fork();

  ChildProcess& process() { return m_process; }

 private:
  ChildProcess m_process;
};

}  // namespace test

#endif
