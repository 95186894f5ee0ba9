// Compiles host/fs/flush.cpp as for a system with F_FULLFSYNC, such as macOS. Both calls are
// replaced.
#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <cerrno>
#include <string>
#include <vector>

namespace {

constexpr int c_fd = 7;
std::vector<std::string> g_calls;
int g_fullSyncError = 0;
int g_syncError = 0;

int answer(const char* call, int error) {
  g_calls.emplace_back(call);
  errno = error;
  return error == 0 ? 0 : -1;
}

}  // namespace

#ifndef F_FULLFSYNC
#define F_FULLFSYNC 51
#endif

static int replacedFcntl(int fd, int command) {
  return answer("F_FULLFSYNC", fd == c_fd && command == F_FULLFSYNC ? g_fullSyncError : EBADF);
}
static int replacedFsync(int fd) { return answer("fsync", fd == c_fd ? g_syncError : EBADF); }

#define fcntl replacedFcntl
#define fsync replacedFsync
#define flush flushWithFullSync
#include "host/fs/flush.cpp"
#undef fcntl
#undef fsync
#undef flush

namespace {

using testing::ElementsAre;

class FullSync : public testing::Test {
 protected:
  static int errorWith(int fullSyncError, int syncError) {
    g_calls.clear();
    g_fullSyncError = fullSyncError;
    g_syncError = syncError;
    return host::flushWithFullSync(c_fd) == 0 ? 0 : errno;
  }
};

TEST_F(FullSync, IsEnough) {
  EXPECT_EQ(errorWith(0, EIO), 0);
  EXPECT_THAT(g_calls, ElementsAre("F_FULLFSYNC"));
}

TEST_F(FullSync, IsReplacedByAPlainOneOnlyWhereItIsUnsupported) {
  for (const int error : {ENOTSUP, EOPNOTSUPP, ENOTTY, EINVAL, ENOSYS}) {
    EXPECT_EQ(errorWith(error, 0), 0) << error;
    EXPECT_THAT(g_calls, ElementsAre("F_FULLFSYNC", "fsync")) << error;
    EXPECT_EQ(errorWith(error, EIO), EIO) << error;
  }
}

// With a plain sync after such a failure, the caller would take lost bytes for written ones.
TEST_F(FullSync, ThatFailsIsAFailure) {
  for (const int error : {EIO, EINTR, ENOSPC, EDQUOT, EBADF}) {
    EXPECT_EQ(errorWith(error, 0), error) << error;
    EXPECT_THAT(g_calls, ElementsAre("F_FULLFSYNC")) << error;
  }
}

}  // namespace
