#include "host/lock/lock_hold.h"

#include <sys/wait.h>
#include <unistd.h>

#include <future>

#include "host/lock/directory_lock.h"
#include "platform/config/mesh_service.h"
#include "tests/host_lock/lock_fixture.h"

namespace {

using host::LockHold;
using host::LockMode;
using test::c_lockName;
using test::InterProcessReadLock;
using test::InterProcessWriteLock;
using test::Locker;

class Hold : public test::LockTest {};

bool canWriteInAnotherThread() {
  return std::async(std::launch::async, [] { return InterProcessWriteLock(c_lockName).lock(0); })
      .get();
}

TEST_F(Hold, LetsTheLocksOfItsThreadInAndKeepsEveryOtherOut) {
  Locker other(agent.dataDirectory());
  LockHold hold(c_lockName, LockMode::Write);
  ASSERT_TRUE(hold.lock(0));
  for (int time = 0; time < 2; ++time) {
    InterProcessWriteLock writer(c_lockName);
    InterProcessReadLock reader(c_lockName);
    EXPECT_TRUE(writer.lock(0));
    EXPECT_TRUE(reader.lock(0));
    writer.unlock();
    reader.unlock();
    EXPECT_FALSE(canWriteInAnotherThread());
    EXPECT_FALSE(other.lock(Locker::Mode::Read, 0)) << "the operations inside release nothing";
  }
  hold.unlock();
  EXPECT_TRUE(other.lock(Locker::Mode::Write, 0));
  EXPECT_FALSE(canWrite());
}

TEST_F(Hold, EndsInAnyOrderAndLeavesTheOtherHeld) {
  LockHold first(c_lockName, LockMode::Write);
  LockHold second("AnotherLock", LockMode::Write);
  ASSERT_TRUE(first.lock(0));
  ASSERT_TRUE(second.lock(0));
  first.unlock();
  EXPECT_FALSE(host::isHeldByThread(c_lockName, LockMode::Read));
  EXPECT_TRUE(host::isHeldByThread("AnotherLock", LockMode::Write));
  EXPECT_TRUE(canWriteInAnotherThread());
}

TEST_F(Hold, OfAReaderLetsReadersIn) {
  Locker other(agent.dataDirectory());
  LockHold hold(c_lockName, LockMode::Read);
  ASSERT_TRUE(hold.lock(0));
  EXPECT_TRUE(canRead());
  EXPECT_FALSE(canWrite());
  EXPECT_FALSE(other.lock(Locker::Mode::Write, 0));
  EXPECT_TRUE(other.lock(Locker::Mode::Read, 0));
  Locker writer(agent.dataDirectory());
  writer.beginLock(Locker::Mode::Write);
  while (other.lock(Locker::Mode::Read, 0)) other.unlock(Locker::Mode::Read);
  EXPECT_TRUE(canRead()) << "the thread that holds it does not queue behind a writer";
  hold.unlock();
  EXPECT_TRUE(writer.finishLock());
}

TEST_F(Hold, IsRefusedWhileAnotherProcessHasTheLock) {
  Locker other(agent.dataDirectory());
  ASSERT_TRUE(other.lock(Locker::Mode::Write));
  LockHold hold(c_lockName, LockMode::Write);
  EXPECT_FALSE(hold.lock(0));
  EXPECT_FALSE(canRead()) << "a hold without the lock does not let a reader in";
  other.unlock(Locker::Mode::Write);
  EXPECT_TRUE(hold.lock(0));
}

TEST_F(Hold, IsOfOneNameAndOneAgent) {
  LockHold hold(c_lockName, LockMode::Write);
  ASSERT_TRUE(hold.lock(0));
  Locker other(agent.dataDirectory());
  {
    const test::TestAgent second;
    Locker ofSecond(second.dataDirectory());
    ASSERT_TRUE(ofSecond.lock(Locker::Mode::Write));
    EXPECT_FALSE(canRead()) << "the other agent has its own lock";
    host::releaseHolds();
    EXPECT_FALSE(other.lock(Locker::Mode::Write, 0)) << "the other agent has its own holds";
  }
  agent.apply();
  InterProcessWriteLock otherName("SmartSiteListLock");
  EXPECT_TRUE(otherName.lock(0));
  EXPECT_FALSE(InterProcessWriteLock("SmartSiteListLock").lock(0));
  EXPECT_TRUE(canWrite());
}

TEST_F(Hold, SaysWhetherItIsHeld) {
  LockHold hold(c_lockName, LockMode::Write);
  LockHold other("AnotherLock", LockMode::Write);
  ASSERT_TRUE(other.lock(0));
  EXPECT_FALSE(hold.isHeld());
  ASSERT_TRUE(hold.lock(0));
  EXPECT_TRUE(hold.isHeld());
  host::releaseHolds();
  EXPECT_FALSE(hold.isHeld());
  ASSERT_TRUE(hold.lock(0));
  EXPECT_TRUE(hold.isHeld());
  hold.unlock();
  EXPECT_FALSE(hold.isHeld());
}

TEST_F(Hold, IsNotThatOfAChild) {
  LockHold hold(c_lockName, LockMode::Write);
  ASSERT_TRUE(hold.lock(0));
  const pid_t child = ::fork();
  if (child == 0) ::_exit(canRead() ? 1 : 0);
  int status = -1;
  ASSERT_EQ(::waitpid(child, &status, 0), child);
  EXPECT_EQ(status, 0) << "the child got the lock of its parent";
  EXPECT_TRUE(canWrite()) << "the parent still holds it";
  Locker other(agent.dataDirectory());
  EXPECT_FALSE(other.lock(Locker::Mode::Read, 0));
}

TEST_F(Hold, IsReleasedBeforeTheLoadCommandOfTheMeshService) {
  agent.settings.meshLoadCommand = {"/bin/sh", "-c", "exit 0"};
  agent.apply();
  Locker other(agent.dataDirectory());
  LockHold hold(c_lockName, LockMode::Write);
  ASSERT_TRUE(hold.lock(0));
  EXPECT_EQ(
      MeshServiceStartupControl::GetInstance(nullptr, nullptr)->RunMeshServiceLoadSiteListCmd(), 1);
  EXPECT_TRUE(other.lock(Locker::Mode::Write, 0));
  EXPECT_FALSE(canRead());
}

TEST_F(Hold, OfADirectoryKeepsOthersOutAndLeavesNothingThere) {
  const test::TempDir directory;
  host::DirectoryLock first;
  EXPECT_EQ(first.lock(directory.path(), 0), 0);
  host::DirectoryLock second;
  EXPECT_EQ(second.lock(directory.path(), 0), EWOULDBLOCK);
  EXPECT_EQ(second.lock(directory.path(), 20), EWOULDBLOCK);
  {
    const host::DirectoryLock unused;
    host::DirectoryLock other;
    EXPECT_EQ(other.lock(directory.file("none"), 0), ENOENT);
  }
  EXPECT_TRUE(test::snapshot(directory.path()).empty());
}

TEST_F(Hold, OfADirectoryEndsWithTheObjectAlsoWhenAChildHasItsDescriptor) {
  const test::TempDir directory;
  int ends[2];
  ASSERT_EQ(::pipe(ends), 0);
  pid_t child = -1;
  {
    host::DirectoryLock lock;
    ASSERT_EQ(lock.lock(directory.path(), 0), 0);
    child = ::fork();
    if (child == 0) {
      char byte = 0;
      ::close(ends[1]);
      ::_exit(::read(ends[0], &byte, 1) == 0 ? 0 : 1);
    }
  }
  host::DirectoryLock next;
  EXPECT_EQ(next.lock(directory.path(), 0), 0);
  ::close(ends[1]);
  ::waitpid(child, nullptr, 0);
  ::close(ends[0]);
}

}  // namespace
