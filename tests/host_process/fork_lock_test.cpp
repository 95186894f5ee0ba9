#include "host/process/fork_lock.h"

#include <gtest/gtest.h>

#include <atomic>
#include <thread>
#include <vector>

#include "tests/host_process/in_child.h"

namespace {

using host::ForkLock;
using host::ForkMutex;
using test::inChild;

const ForkMutex* const c_all[] = {&host::c_settingsMutex,    &host::c_lockFilesMutex,
                                  &host::c_passwordKeyMutex, &host::c_serverKeyMutex,
                                  &host::c_libcryptoMutex,   &host::c_logMutex,
                                  &host::c_errorTextMutex,   &host::c_passedDocumentsMutex};
static_assert(sizeof c_all / sizeof *c_all == host::c_forkMutexCount);

TEST(ForkLock, IsFreeInTheChildWhateverOtherThreadsHold) {
  for (const ForkMutex* const mutex : c_all) {
    std::atomic<bool> done{false};
    std::thread holder([&] {
      while (!done) const ForkLock lock(*mutex);
    });
    for (int i = 0; i < 20; ++i) {
      EXPECT_EQ(inChild([&] {
                  for (const ForkMutex* const each : c_all) const ForkLock lock(*each);
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
  for (const ForkMutex* const mutex : c_all) const ForkLock lock(*mutex);
}

TEST(ForkLock, KeepsOtherThreadsOut) {
  int count = 0;
  std::vector<std::thread> threads;
  for (int i = 0; i < 4; ++i) {
    threads.emplace_back([&] {
      for (int turn = 0; turn < 10000; ++turn) {
        const ForkLock lock(host::c_logMutex);
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
        const ForkLock later(host::c_logMutex);
        const ForkLock earlier(host::c_settingsMutex);
      },
      "order");
}
#endif

}  // namespace
