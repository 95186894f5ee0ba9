#include "host/process/fork_lock.h"

#include <gtest/gtest.h>

#include <atomic>
#include <thread>
#include <vector>

#include "tests/host_process/in_child.h"

namespace {

using host::ForkLock;
using host::Guarded;
using test::inChild;

constexpr Guarded c_all[] = {Guarded::Settings,  Guarded::LockFiles, Guarded::PasswordKey,
                             Guarded::ServerKey, Guarded::Libcrypto, Guarded::Log,
                             Guarded::ErrorText};

TEST(ForkLock, IsFreeInTheChildWhateverOtherThreadsHold) {
  for (const Guarded what : c_all) {
    std::atomic<bool> done{false};
    std::thread holder([&] {
      while (!done) const ForkLock lock(what);
    });
    for (int i = 0; i < 20; ++i) {
      EXPECT_EQ(inChild([&] {
                  for (const Guarded each : c_all) const ForkLock lock(each);
                  return true;
                }),
                0);
    }
    done = true;
    holder.join();
  }
}

TEST(ForkLock, IsFreeInTheParentAfterAFork) {
  EXPECT_EQ(inChild([] { return true; }), 0);
  for (const Guarded what : c_all) const ForkLock lock(what);
}

TEST(ForkLock, KeepsOtherThreadsOut) {
  int count = 0;
  std::vector<std::thread> threads;
  for (int i = 0; i < 4; ++i) {
    threads.emplace_back([&] {
      for (int turn = 0; turn < 10000; ++turn) {
        const ForkLock lock(Guarded::Log);
        ++count;
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(count, 40000);
}

#ifndef NDEBUG
TEST(ForkLockDeathTest, IsTakenInItsOrder) {
  testing::FLAGS_gtest_death_test_style = "threadsafe";
  EXPECT_DEATH(
      {
        const ForkLock later(Guarded::Log);
        const ForkLock earlier(Guarded::Settings);
      },
      "order");
}
#endif

}  // namespace
