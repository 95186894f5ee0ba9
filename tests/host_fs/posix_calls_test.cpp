#include <fcntl.h>
#include <signal.h>
#include <sys/file.h>
#include <sys/time.h>
#include <unistd.h>

#include <cerrno>

#include "host/fs/file_system.h"
#include "tests/host_fs/file_fixture.h"

namespace {

using testing::UnorderedElementsAre;

class PosixCalls : public test::FileTest {
 protected:
  host::FileSystem& files = host::posixFileSystem();
};

TEST_F(PosixCalls, GiveTheNegatedErrnoOfAFailure) {
  char byte = 0;
  struct stat info {};
  std::string target;
  std::vector<std::string> entries;
  EXPECT_EQ(files.read(-1, &byte, 1), -EBADF);
  EXPECT_EQ(files.write(-1, &byte, 1), -EBADF);
  EXPECT_EQ(files.sync(-1), -EBADF);
  EXPECT_EQ(files.close(-1), -EBADF);
  EXPECT_EQ(files.lock(-1, LOCK_EX), -EBADF);
  EXPECT_EQ(files.chmod(-1, 0600), -EBADF);
  EXPECT_EQ(files.chown(-1, ::geteuid(), ::getegid()), -EBADF);
  EXPECT_EQ(files.statOpen(-1, info), -EBADF);
  EXPECT_EQ(files.list(-1, entries), -EBADF);

  const std::string missing = path("missing");
  EXPECT_EQ(files.open(AT_FDCWD, missing, O_RDONLY, 0), -ENOENT);
  EXPECT_EQ(files.stat(AT_FDCWD, missing, true, info), -ENOENT);
  EXPECT_EQ(files.readLink(AT_FDCWD, missing, target, info), -ENOENT);
  EXPECT_EQ(files.rename(AT_FDCWD, missing, path("new")), -ENOENT);
  EXPECT_EQ(files.link(AT_FDCWD, missing, path("new")), -ENOENT);
  EXPECT_EQ(files.unlink(AT_FDCWD, missing), -ENOENT);
  EXPECT_EQ(files.makeDirectory(AT_FDCWD, missing + "/below", 0700), -ENOENT);
  EXPECT_EQ(files.access(missing, R_OK), -ENOENT);
  EXPECT_THAT(names(), testing::IsEmpty());
}

TEST_F(PosixCalls, RefuseAPathWithAZeroByte) {
  test::writeFile(path("a"), "x");
  const std::string bad = path(std::string("a\0b", 3));
  struct stat info {};
  std::string target;
  EXPECT_EQ(files.open(AT_FDCWD, bad, O_RDONLY, 0), -EINVAL);
  EXPECT_EQ(files.stat(AT_FDCWD, bad, true, info), -EINVAL);
  EXPECT_EQ(files.readLink(AT_FDCWD, bad, target, info), -EINVAL);
  EXPECT_EQ(files.rename(AT_FDCWD, bad, path("new")), -EINVAL);
  EXPECT_EQ(files.rename(AT_FDCWD, path("a"), bad), -EINVAL);
  EXPECT_EQ(files.link(AT_FDCWD, bad, path("new")), -EINVAL);
  EXPECT_EQ(files.link(AT_FDCWD, path("a"), bad), -EINVAL);
  EXPECT_EQ(files.unlink(AT_FDCWD, bad), -EINVAL);
  EXPECT_EQ(files.makeDirectory(AT_FDCWD, bad, 0700), -EINVAL);
  EXPECT_EQ(files.access(bad, R_OK), -EINVAL);
  EXPECT_THAT(names(), UnorderedElementsAre("a"));
  EXPECT_EQ(test::readFile(path("a")), "x");
}

TEST_F(PosixCalls, TellWhatALinkSaysInWhole) {
  for (const std::size_t length : {1U, 255U, 256U, 257U, 511U, 512U, 1000U}) {
    const std::string says(length, 'x');
    const std::string link = path("link" + std::to_string(length));
    std::filesystem::create_symlink(says, link);
    std::string target;
    struct stat info {};
    EXPECT_EQ(files.readLink(AT_FDCWD, link, target, info), 0);
    EXPECT_EQ(target, says);
    EXPECT_TRUE(S_ISLNK(info.st_mode));
    EXPECT_EQ(info.st_uid, ::geteuid());
  }
}

TEST_F(PosixCalls, GiveAFileToAnOwner) {
  test::writeFile(path("f"), "x");
  const int fd = files.open(AT_FDCWD, path("f"), O_RDONLY, 0);
  struct stat info {};
  ASSERT_EQ(files.statOpen(fd, info), 0);
  EXPECT_EQ(files.chown(fd, info.st_uid, info.st_gid), 0);
  EXPECT_EQ(files.close(fd), 0);
}

int g_signalsLeft = 0;
void (*g_atLastSignal)() = nullptr;

void countSignal(int) {
  if (g_signalsLeft > 0 && --g_signalsLeft == 0) g_atLastSignal();
}

// A timer interrupts this process 20 times. The last interruption calls `atLast`.
class Interruptions {
 public:
  explicit Interruptions(void (*atLast)()) {
    g_atLastSignal = atLast;
    g_signalsLeft = 20;
    struct sigaction action {};
    action.sa_handler = countSignal;  // without SA_RESTART: calls are interrupted
    ::sigaction(SIGALRM, &action, &m_before);
    setTimer(1000);
  }
  ~Interruptions() {
    setTimer(0);
    ::sigaction(SIGALRM, &m_before, nullptr);
  }
  Interruptions(const Interruptions&) = delete;
  Interruptions& operator=(const Interruptions&) = delete;

 private:
  static void setTimer(suseconds_t microseconds) {
    itimerval timer{};
    timer.it_interval.tv_usec = microseconds;
    timer.it_value.tv_usec = microseconds;
    ::setitimer(ITIMER_REAL, &timer, nullptr);
  }

  struct sigaction m_before {};
};

int g_pipeEnd = -1;
int g_heldLock = -1;

TEST_F(PosixCalls, AreNotEndedByASignal) {
  int ends[2];
  ASSERT_EQ(::pipe(ends), 0);
  g_pipeEnd = ends[1];
  char byte = 0;
  {
    const Interruptions interruptions([] {
      if (::write(g_pipeEnd, "x", 1) != 1) ::abort();
    });
    EXPECT_EQ(files.read(ends[0], &byte, 1), 1);
  }
  EXPECT_EQ(byte, 'x');
  EXPECT_EQ(g_signalsLeft, 0);
  ::close(ends[0]);
  ::close(ends[1]);

  test::writeFile(path("f"), "");
  g_heldLock = ::open(path("f").c_str(), O_RDONLY | O_CLOEXEC);
  ASSERT_EQ(::flock(g_heldLock, LOCK_EX), 0);
  const int fd = files.open(AT_FDCWD, path("f"), O_RDONLY, 0);
  {
    const Interruptions interruptions([] { ::flock(g_heldLock, LOCK_UN); });
    EXPECT_EQ(files.lock(fd, LOCK_EX), 0);
  }
  EXPECT_EQ(g_signalsLeft, 0);
  EXPECT_EQ(::flock(g_heldLock, LOCK_EX | LOCK_NB), -1);
  EXPECT_EQ(files.close(fd), 0);
  ::close(g_heldLock);
}

}  // namespace
