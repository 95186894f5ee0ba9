#include <gtest/gtest.h>

#include <future>
#include <thread>

#include "sitehlp/common/process_state.h"
#include "tests/host_process/in_child.h"

namespace {

// Returns the exit status of a child that takes the guard. The forking thread may have held the
// guard before. Another thread holds the guard at the fork.
int guardInChild(bool hasHeldIt) {
  std::promise<void> ready;
  std::promise<void> held;
  std::promise<void> done;
  int status = -1;
  std::thread forker([&] {
    if (hasHeldIt) sitehlp::CacheGuard();
    ready.set_value();
    held.get_future().wait();
    status = test::inChild([] {
      const sitehlp::CacheGuard guard;
      return true;
    });
    done.set_value();
  });
  ready.get_future().wait();
  {
    const sitehlp::CacheGuard guard;
    held.set_value();
    done.get_future().wait();
  }
  forker.join();
  return status;
}

TEST(CacheGuard, IsFreeInTheChildOfAForkBesideAThreadThatHoldsIt) {
  EXPECT_EQ(guardInChild(false), 0);
  EXPECT_EQ(guardInChild(true), 0);
}

}  // namespace
