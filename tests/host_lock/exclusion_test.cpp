#include <signal.h>

#include "tests/host_lock/lock_fixture.h"

namespace {

using test::c_forEver;
using test::c_lockName;
using test::InterProcessReadLock;
using test::InterProcessWriteLock;
using test::Locker;
using Mode = test::Locker::Mode;

class Exclusion : public test::LockTest {};

TEST_F(Exclusion, ReadersOfSeveralProcessesShare) {
  Locker first(agent.dataDirectory());
  Locker second(agent.dataDirectory());
  EXPECT_TRUE(first.lock(Mode::Read));
  EXPECT_TRUE(second.lock(Mode::Read));
  EXPECT_TRUE(canRead());
}

TEST_F(Exclusion, AReaderKeepsWritersOut) {
  Locker other(agent.dataDirectory());
  ASSERT_TRUE(other.lock(Mode::Read));
  EXPECT_FALSE(canWrite());
  other.unlock(Mode::Read);
  EXPECT_TRUE(canWrite());
}

TEST_F(Exclusion, AWriterKeepsReadersAndWritersOut) {
  Locker other(agent.dataDirectory());
  ASSERT_TRUE(other.lock(Mode::Write));
  EXPECT_FALSE(canRead());
  EXPECT_FALSE(canWrite());
  other.unlock(Mode::Write);
  EXPECT_TRUE(canRead());
  EXPECT_TRUE(canWrite());
}

TEST_F(Exclusion, TheLastOfSeveralReadersLetsAWriterIn) {
  Locker first(agent.dataDirectory());
  Locker second(agent.dataDirectory());
  ASSERT_TRUE(first.lock(Mode::Read));
  ASSERT_TRUE(second.lock(Mode::Read));
  first.unlock(Mode::Read);
  EXPECT_FALSE(canWrite());
  second.unlock(Mode::Read);
  EXPECT_TRUE(canWrite());
}

TEST_F(Exclusion, LocksOfOneProcessExcludeEachOther) {
  InterProcessReadLock reader(c_lockName);
  InterProcessReadLock secondReader(c_lockName);
  InterProcessWriteLock writer(c_lockName);
  InterProcessWriteLock secondWriter(c_lockName);
  EXPECT_TRUE(reader.lock(0));
  EXPECT_TRUE(secondReader.lock(0));
  EXPECT_FALSE(writer.lock(0));
  reader.unlock();
  EXPECT_FALSE(writer.lock(0));
  secondReader.unlock();
  EXPECT_TRUE(writer.lock(0));
  EXPECT_FALSE(secondWriter.lock(0));
  EXPECT_FALSE(reader.lock(0));
  writer.unlock();
  EXPECT_TRUE(secondWriter.lock(0));
}

TEST_F(Exclusion, OtherNamesAreOtherLocks) {
  InterProcessWriteLock other("SmartSiteListLock");
  ASSERT_TRUE(other.lock(c_forEver));
  EXPECT_TRUE(canWrite());
}

TEST_F(Exclusion, AScopeThatEndsUnlocks) {
  {
    InterProcessWriteLock writer(c_lockName);
    ASSERT_TRUE(writer.lock(c_forEver));
    EXPECT_FALSE(canRead());
  }
  EXPECT_TRUE(canWrite());
}

TEST_F(Exclusion, LockingALockedObjectAndUnlockingAnUnlockedOneDoNothing) {
  InterProcessWriteLock writer(c_lockName);
  writer.unlock();
  EXPECT_TRUE(writer.lock(0));
  EXPECT_TRUE(writer.lock(0));
  EXPECT_TRUE(writer.lock(c_forEver));
  writer.unlock();
  EXPECT_TRUE(canWrite());
  writer.unlock();
  EXPECT_TRUE(writer.lock(0));
}

TEST_F(Exclusion, AKilledWriterHoldsNothing) {
  Locker other(agent.dataDirectory());
  ASSERT_TRUE(other.lock(Mode::Write));
  ASSERT_FALSE(canRead());
  other.process().kill(SIGKILL);
  EXPECT_EQ(other.process().wait(), 128 + SIGKILL);
  EXPECT_TRUE(canWrite());
}

TEST_F(Exclusion, AKilledReaderHoldsNothing) {
  Locker other(agent.dataDirectory());
  ASSERT_TRUE(other.lock(Mode::Read));
  ASSERT_FALSE(canWrite());
  other.process().kill(SIGKILL);
  other.process().wait();
  EXPECT_TRUE(canWrite());
}

TEST_F(Exclusion, AWriterThatIsKilledWhileItWaitsKeepsNobodyOut) {
  InterProcessReadLock reader(c_lockName);
  ASSERT_TRUE(reader.lock(c_forEver));
  Locker other(agent.dataDirectory());
  other.beginLock(Mode::Write);
  awaitWaitingWriter();
  other.process().kill(SIGKILL);
  other.process().wait();
  EXPECT_TRUE(canRead());
  reader.unlock();
  EXPECT_TRUE(canWrite());
}

}  // namespace
