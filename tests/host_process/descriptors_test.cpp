// Tests both variants of host/process/descriptors.cpp: that of this system, and that of a system
// without closefrom.
#include "host/process/descriptors.h"

#include <dirent.h>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <limits>

#include "tests/host_process/in_child.h"

#undef __GLIBC__
#define descriptorLimit descriptorLimitWithoutCloseFrom
#define closeDescriptors closeDescriptorsWithoutCloseFrom
#include "host/process/descriptors.cpp"
#undef descriptorLimit
#undef closeDescriptors

namespace {

constexpr int c_first = 100;
constexpr int c_high = 700;

bool isOpen(int fd) { return ::fcntl(fd, F_GETFD) >= 0; }

// Returns whether a child keeps exactly the descriptors below c_first.
template <typename Limit, typename Close>
bool closesTheOthers(Limit limitOf, Close close) {
  const int limit = limitOf();
  return test::inChild([&] {
           close(c_first, limit);
           bool isRight = isOpen(0) && isOpen(c_first - 1);
           for (int fd = c_first; fd <= c_high; ++fd) isRight = isRight && !isOpen(fd);
           return isRight;
         }) == 0;
}

class Descriptors : public testing::Test {
 protected:
  void SetUp() override {
    rlimit most{};
    ASSERT_EQ(::getrlimit(RLIMIT_NOFILE, &most), 0);
    most.rlim_cur = std::max<rlim_t>(most.rlim_cur, c_high + 1);  // some systems allow 256
    ASSERT_EQ(::setrlimit(RLIMIT_NOFILE, &most), 0);
    for (const int fd : {c_first - 1, c_first, 300, c_high}) {
      ASSERT_EQ(::dup2(0, fd), fd);
    }
  }
  void TearDown() override {
    for (const int fd : {c_first - 1, c_first, 300, c_high}) ::close(fd);
  }
};

TEST_F(Descriptors, AreClosedFromANumberOn) {
  EXPECT_TRUE(closesTheOthers(host::descriptorLimit, host::closeDescriptors));
}

TEST_F(Descriptors, AreClosedWhereTheSystemHasNoCallForThat) {
  EXPECT_GT(host::descriptorLimitWithoutCloseFrom(), c_high);
  EXPECT_TRUE(closesTheOthers(host::descriptorLimitWithoutCloseFrom,
                              host::closeDescriptorsWithoutCloseFrom));
}

}  // namespace
