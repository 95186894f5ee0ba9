#include <signal.h>
#include <sys/file.h>

#include <atomic>
#include <cerrno>
#include <chrono>
#include <future>
#include <thread>
#include <vector>

#include "tests/host_lock/lock_fixture.h"
#include "tests/support/forwarding_file_system.h"

namespace {

using test::c_forEver;
using test::c_lockName;
using test::c_longWait;
using test::InterProcessReadLock;
using test::InterProcessWriteLock;
using test::Locker;
using Clock = std::chrono::steady_clock;
using Mode = test::Locker::Mode;
using std::chrono::milliseconds;

class Waiting : public test::LockTest {};

TEST_F(Waiting, AWriterWaitsForTheReader) {
  InterProcessReadLock reader(c_lockName);
  ASSERT_TRUE(reader.lock(c_forEver));
  Locker other(agent.dataDirectory());
  other.beginLock(Mode::Write);
  awaitWaitingWriter();
  reader.unlock();
  EXPECT_TRUE(other.finishLock());
  EXPECT_FALSE(canRead());
}

TEST_F(Waiting, AReaderWaitsForTheWriter) {
  InterProcessWriteLock writer(c_lockName);
  ASSERT_TRUE(writer.lock(c_forEver));
  Locker other(agent.dataDirectory());
  other.beginLock(Mode::Read);
  writer.unlock();
  EXPECT_TRUE(other.finishLock());
  EXPECT_TRUE(canRead());
  EXPECT_FALSE(canWrite());
}

TEST_F(Waiting, AWaitThatIsLongEnoughSucceeds) {
  Locker other(agent.dataDirectory());
  for (const Mode mode : {Mode::Read, Mode::Write}) {
    InterProcessWriteLock writer(c_lockName);
    ASSERT_TRUE(writer.lock(c_forEver));
    other.beginLock(mode, c_longWait);
    writer.unlock();
    EXPECT_TRUE(other.finishLock());
    other.unlock(mode);
  }
}

TEST_F(Waiting, AWaitThatIsTooShortEndsInTime) {
  Locker other(agent.dataDirectory());
  ASSERT_TRUE(other.lock(Mode::Write));
  InterProcessReadLock reader(c_lockName);
  InterProcessWriteLock writer(c_lockName);
  for (const unsigned int wait : {1U, 30U, 120U}) {
    const Clock::time_point begin = Clock::now();
    EXPECT_FALSE(reader.lock(wait));
    EXPECT_FALSE(writer.lock(wait));
    const Clock::duration waited = Clock::now() - begin;
    EXPECT_GE(waited, milliseconds(2 * wait));
    EXPECT_LT(waited, milliseconds(2 * wait + 10000));
  }
  EXPECT_TRUE(agent.log().empty()) << "a lock that is taken is no failure";
}

TEST_F(Waiting, AWriterThatGivesUpLetsReadersInAgain) {
  InterProcessReadLock reader(c_lockName);
  ASSERT_TRUE(reader.lock(c_forEver));
  EXPECT_FALSE(InterProcessWriteLock(c_lockName).lock(20));
  EXPECT_TRUE(canRead());
}

TEST_F(Waiting, SignalsInterruptNothing) {
  InterProcessReadLock reader(c_lockName);
  ASSERT_TRUE(reader.lock(c_forEver));
  Locker other(agent.dataDirectory());
  other.beginLock(Mode::Write);
  awaitWaitingWriter();
  for (int i = 0; i < 500; ++i) {
    other.process().kill(SIGUSR1);
    std::this_thread::yield();
  }
  EXPECT_FALSE(canRead()) << "it still waits";
  reader.unlock();
  EXPECT_TRUE(other.finishLock());
}

// Readers that hold the lock alternately until the object is destroyed. At least one of them holds
// it at any time.
class Readers {
 public:
  Readers(int count, int busy) {
    for (int i = 0; i < count; ++i) {
      m_threads.emplace_back([this] {
        InterProcessReadLock lock(c_lockName);
        while (!m_stop) {
          EXPECT_TRUE(lock.lock(c_forEver));
          ++m_taken;
          std::this_thread::sleep_for(milliseconds(2));
          lock.unlock();
        }
      });
    }
    while (m_taken < busy) std::this_thread::yield();
  }
  ~Readers() {
    m_stop = true;
    for (std::thread& thread : m_threads) thread.join();
  }
  int taken() const { return m_taken; }

 private:
  std::atomic<bool> m_stop{false};
  std::atomic<int> m_taken{0};
  std::vector<std::thread> m_threads;
};

TEST_F(Waiting, AWriterGetsInAmongReadersThatKeepComing) {
  Locker other(agent.dataDirectory());
  InterProcessWriteLock writer(c_lockName);
  const Readers readers(16, 16);
  for (int i = 0; i < 20; ++i) {
    const int before = readers.taken();
    ASSERT_TRUE(writer.lock(c_longWait));
    writer.unlock();
    ASSERT_TRUE(other.lock(Mode::Write));
    other.unlock(Mode::Write);
    while (readers.taken() == before) std::this_thread::yield();
  }
}

TEST_F(Waiting, ReadersGetInAmongWritersThatKeepComing) {
  std::atomic<bool> stop{false};
  std::vector<std::thread> writers;
  for (int i = 0; i < 4; ++i) {
    writers.emplace_back([&] {
      InterProcessWriteLock lock(c_lockName);
      while (!stop) {
        EXPECT_TRUE(lock.lock(c_forEver));
        lock.unlock();
      }
    });
  }
  Locker other(agent.dataDirectory());
  for (int i = 0; i < 20; ++i) {
    EXPECT_TRUE(other.lock(Mode::Read));
    other.unlock(Mode::Read);
  }
  stop = true;
  for (std::thread& thread : writers) thread.join();
}

// The first attempt gets the lock when the time is over, but the file was replaced meanwhile. All
// later attempts find the lock held.
class ExchangedAtTheEnd : public test::ForwardingFileSystem {
 public:
  ExchangedAtTheEnd(std::string gate, milliseconds wait) : m_gate(std::move(gate)), m_wait(wait) {}

  int lock(int fd, int operation) override {
    if ((operation & LOCK_NB) == 0) return ForwardingFileSystem::lock(fd, operation);
    if (m_exchanged) return ++m_lockings == 1 ? 0 : (++triesAfterwards, -EWOULDBLOCK);
    std::this_thread::sleep_for(m_wait);
    std::filesystem::rename(m_gate + ".new", m_gate);
    m_exchanged = true;
    return 0;
  }

  int triesAfterwards = 0;

 private:
  std::string m_gate;
  milliseconds m_wait;
  bool m_exchanged = false;
  int m_lockings = 0;  // attempts after the gate was taken
};

TEST_F(Waiting, IsNotBegunAnewForFilesThatWereExchanged) {
  ASSERT_TRUE(canWrite());
  test::writeFile(gateFile() + ".new", "", 0600);
  constexpr unsigned int c_wait = 50;
  ExchangedAtTheEnd files(gateFile(), milliseconds(c_wait));
  EXPECT_FALSE(InterProcessWriteLock(c_lockName).lock(c_wait));
  EXPECT_EQ(files.triesAfterwards, 1);
  EXPECT_TRUE(agent.log().empty());
}

}  // namespace
