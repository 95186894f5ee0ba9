#ifndef TESTS_HOST_LOCK_LOCK_FIXTURE_H
#define TESTS_HOST_LOCK_LOCK_FIXTURE_H

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstddef>
#include <filesystem>
#include <iterator>
#include <string>

#include "platform/lock/interprocess_lock.h"
#include "tests/support/locker.h"
#include "tests/support/test_agent.h"

namespace test {

using korvel_com::orb::lock::InterProcessReadLock;
using korvel_com::orb::lock::InterProcessWriteLock;

constexpr const char* c_lockName = "SiteListLock";
// Longer than any expected wait, so that a fault makes a test fail instead of hang.
constexpr unsigned int c_longWait = 60000;

class LockTest : public testing::Test {
 protected:
  TestAgent agent;

  std::string locks() const { return agent.dataDirectory() + "/locks"; }
  std::string mainFile() const { return locks() + "/SiteListLock.lock"; }
  std::string gateFile() const { return locks() + "/SiteListLock.gate"; }

  static bool canRead() { return InterProcessReadLock(c_lockName).lock(0); }
  static bool canWrite() { return InterProcessWriteLock(c_lockName).lock(0); }

  // Returns when a writer of another process or thread is waiting. From then on no new reader gets
  // the lock.
  static void awaitWaitingWriter() {
    while (canRead()) {
    }
  }

  static std::ptrdiff_t openDescriptors() {
    const std::filesystem::directory_iterator all("/dev/fd");
    return std::distance(begin(all), end(all));
  }
};

}  // namespace test

#endif
