#include <atomic>
#include <cstdlib>
#include <new>

#include "tests/host_lock/lock_fixture.h"

// Makes one allocation fail: the one after `g_before` others. With c_none no allocation fails.
namespace {

constexpr int c_none = -1;
std::atomic<int> g_before{c_none};

void* allocate(std::size_t size) {
  if (g_before >= 0 && g_before-- == 0) throw std::bad_alloc();
  if (void* const memory = std::malloc(size)) return memory;
  throw std::bad_alloc();
}

}  // namespace

void* operator new(std::size_t size) { return allocate(size); }
void* operator new[](std::size_t size) { return allocate(size); }
void operator delete(void* memory) noexcept { std::free(memory); }
void operator delete[](void* memory) noexcept { std::free(memory); }
void operator delete(void* memory, std::size_t) noexcept { std::free(memory); }
void operator delete[](void* memory, std::size_t) noexcept { std::free(memory); }

namespace {

using test::InterProcessWriteLock;

class LockMemory : public test::LockTest {
 protected:
  // Locks while the allocation after `before` others fails. Returns whether the lock was taken.
  static bool lockAfter(int before) {
    InterProcessWriteLock lock(test::c_lockName);
    g_before = before;
    bool locked = false;
    try {
      locked = lock.lock(0);
    } catch (const std::bad_alloc&) {
    }
    g_before = c_none;
    return locked;
  }

  // Fails the first allocation, the second, and so on, until locking succeeds.
  static int failuresUntilLocked() {
    int failures = 0;
    while (!lockAfter(failures)) ++failures;
    return failures;
  }
};

TEST_F(LockMemory, ShortageWhileFilesAreOpenedLeavesNoneOpen) {
  const std::ptrdiff_t before = openDescriptors();
  EXPECT_GT(failuresUntilLocked(), 0);
  EXPECT_EQ(openDescriptors(), before + 2) << "only the two files of the last lock are open";
}

TEST_F(LockMemory, ShortageWhileFilesAreReusedTakesNoneOutOfUse) {
  ASSERT_TRUE(canWrite());
  const std::ptrdiff_t before = openDescriptors();
  EXPECT_GT(failuresUntilLocked(), 0);
  EXPECT_EQ(openDescriptors(), before);
}

}  // namespace
