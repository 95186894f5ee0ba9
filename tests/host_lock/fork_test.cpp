#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <fstream>

#include "tests/host_lock/lock_fixture.h"

namespace {

using test::c_forEver;
using test::c_lockName;
using test::InterProcessReadLock;
using test::InterProcessWriteLock;
using test::Locker;
using Mode = test::Locker::Mode;

class Fork : public test::LockTest {};

// Runs the action in a forked child and gives its exit status.
template <typename Action>
int inChild(Action action) {
  const pid_t pid = ::fork();
  if (pid == 0) ::_exit(action());
  int status = 0;
  while (::waitpid(pid, &status, 0) < 0) {
  }
  return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

TEST_F(Fork, TheParentsLockDiesWithTheParentAlthoughTheChildLives) {
  Locker other(agent.dataDirectory());
  ASSERT_TRUE(other.lock(Mode::Write));
  other.fork();
  EXPECT_FALSE(other.lock(Mode::Write, 0)) << "the parent holds it, the child does not";
  other.process().kill(SIGKILL);
  EXPECT_EQ(other.process().wait(), 128 + SIGKILL);
  EXPECT_TRUE(canWrite());
  EXPECT_TRUE(other.lock(Mode::Write)) << "the child still answers";
  EXPECT_FALSE(canRead());
}

TEST_F(Fork, NothingThatTheChildDoesLetsGoOfTheParentsLock) {
  InterProcessWriteLock writer(c_lockName);
  ASSERT_TRUE(writer.lock(c_forEver));
  EXPECT_EQ(inChild([&] {
              writer.unlock();
              const bool taken = writer.lock(0);
              writer.unlock();
              return taken ? 1 : 0;
            }),
            0);
  Locker other(agent.dataDirectory());
  EXPECT_FALSE(other.lock(Mode::Read, 0));
  writer.unlock();
  EXPECT_TRUE(other.lock(Mode::Write, 0));
}

TEST_F(Fork, AnObjectThatTheParentLockedCanBeLockedInTheChild) {
  InterProcessReadLock reader(c_lockName);
  ASSERT_TRUE(reader.lock(c_forEver));
  EXPECT_EQ(inChild([&] {
              if (!reader.lock(0)) return 1;
              Locker other(agent.dataDirectory());
              return other.lock(Mode::Write, 0) ? 2 : 0;
            }),
            0);
}

TEST_F(Fork, TheChildSharesNoIdleFilesWithItsParent) {
  { InterProcessWriteLock(c_lockName).lock(c_forEver); }
  int toParent[2];
  int toChild[2];
  ASSERT_EQ(::pipe(toParent), 0);
  ASSERT_EQ(::pipe(toChild), 0);
  char byte = 'x';
  const pid_t pid = ::fork();
  if (pid == 0) {
    InterProcessWriteLock writer(c_lockName);
    byte = writer.lock(0) ? 'y' : 'n';
    if (::write(toParent[1], &byte, 1) != 1) ::_exit(1);
    ::_exit(::read(toChild[0], &byte, 1) == 1 ? 0 : 1);
  }
  ASSERT_EQ(::read(toParent[0], &byte, 1), 1);
  EXPECT_EQ(byte, 'y');
  EXPECT_FALSE(canWrite());
  ASSERT_EQ(::write(toChild[1], &byte, 1), 1);
  int status = -1;
  EXPECT_EQ(::waitpid(pid, &status, 0), pid);
  EXPECT_EQ(status, 0);
  EXPECT_TRUE(canWrite());
  for (const int fd : {toParent[0], toParent[1], toChild[0], toChild[1]}) ::close(fd);
}

TEST_F(Fork, TheChildClosesEveryLockFile) {
  InterProcessReadLock held(c_lockName);
  const auto without = openDescriptors();
  ASSERT_TRUE(held.lock(c_forEver));
  { InterProcessReadLock(c_lockName).lock(c_forEver); }
  ASSERT_EQ(openDescriptors(), without + 4);
  EXPECT_EQ(inChild([&] { return openDescriptors() == without ? 0 : 1; }), 0);
}

TEST_F(Fork, AProgramThatIsStartedInheritsNoLockFile) {
  InterProcessWriteLock writer(c_lockName);
  ASSERT_TRUE(writer.lock(c_forEver));
  EXPECT_EQ(inChild([] {
              return ::execl(
                  "/bin/sh", "sh", "-c",
                  "for f in /dev/fd/*; do case `readlink $f` in *SiteListLock*) exit 1;; "
                  "esac; done",
                  static_cast<char*>(nullptr));
            }),
            0);
}

}  // namespace
