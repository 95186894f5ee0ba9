#include <gtest/gtest.h>

#include <future>
#include <thread>

#include "sitehlp/common/process_state.h"
#include "tests/host_process/in_child.h"

namespace {

TEST(CacheGuard, IsFreeInTheChildOfAForkBesideAThreadThatHoldsIt) {
  std::promise<void> held;
  std::promise<void> released;
  std::thread holder([&] {
    const sitehlp::CacheGuard guard;
    held.set_value();
    released.get_future().wait();
  });
  held.get_future().wait();
  const int status = test::inChild([] {
    const sitehlp::CacheGuard guard;
    return true;
  });
  released.set_value();
  holder.join();
  EXPECT_EQ(status, 0);
}

}  // namespace
