#include <atomic>
#include <thread>
#include <vector>

#include "tests/host_lock/lock_fixture.h"

namespace {

using test::c_forEver;
using test::c_lockName;
using test::InterProcessReadLock;
using test::InterProcessWriteLock;

constexpr int c_threads = 6;
constexpr int c_rounds = 2000;

class Threads : public test::LockTest {
 protected:
  // Runs the action in several threads that begin together.
  template <typename Action>
  static void run(int count, Action action) {
    std::atomic<int> missing{count};
    std::vector<std::thread> threads;
    for (int i = 0; i < count; ++i) {
      threads.emplace_back([&missing, &action, i] {
        --missing;
        while (missing > 0) std::this_thread::yield();
        action(i);
      });
    }
    for (std::thread& thread : threads) thread.join();
  }
};

// The variables are not atomic, because only the lock must order the accesses.
TEST_F(Threads, WritersTakeTurns) {
  long counter = 0;
  run(c_threads, [&](int) {
    for (int i = 0; i < c_rounds; ++i) {
      InterProcessWriteLock lock(c_lockName);
      EXPECT_TRUE(lock.lock(c_forEver));
      counter = counter + 1;
    }
  });
  EXPECT_EQ(counter, c_threads * c_rounds);
}

TEST_F(Threads, ReadersSeeNothingHalfWritten) {
  long first = 0;
  long second = 0;
  run(c_threads, [&](int number) {
    for (int i = 0; i < c_rounds; ++i) {
      if (number % 3 == 0) {
        InterProcessWriteLock lock(c_lockName);
        EXPECT_TRUE(lock.lock(test::c_longWait));
        ++first;
        ++second;
      } else {
        InterProcessReadLock lock(c_lockName);
        EXPECT_TRUE(lock.lock(number % 2 == 0 ? c_forEver : test::c_longWait));
        EXPECT_EQ(first, second);
      }
    }
  });
  EXPECT_EQ(first, c_threads / 3 * c_rounds);
}

TEST_F(Threads, ReadersNeverTurnEachOtherAway) {
  run(c_threads, [](int) {
    for (int i = 0; i < c_rounds; ++i) EXPECT_TRUE(canRead());
  });
}

TEST_F(Threads, UseNoMoreFilesThanLocksHeldAtOnce) {
  const auto before = openDescriptors();
  run(c_threads, [](int) {
    for (int i = 0; i < c_rounds; ++i)
      EXPECT_TRUE(InterProcessReadLock(c_lockName).lock(c_forEver));
  });
  EXPECT_LE(openDescriptors(), before + 2 * c_threads);
}

}  // namespace
