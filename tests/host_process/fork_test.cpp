#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <functional>
#include <string>
#include <thread>
#include <vector>

#include "host/common/failure_text.h"
#include "host/log_sink.h"
#include "host/process/fork_generation.h"
#include "host/process/fork_lock.h"
#include "platform/config/configuration.h"
#include "platform/crypto/crypt_shim.h"
#include "platform/lock/interprocess_lock.h"
#include "tests/support/child_process.h"
#include "tests/support/test_agent.h"

// Processes that fork while their threads are at work.
namespace {

using host::ForkLock;
using host::Guarded;

constexpr Guarded c_all[] = {Guarded::Settings,  Guarded::LockFiles, Guarded::PasswordKey,
                             Guarded::ServerKey, Guarded::Libcrypto, Guarded::Log,
                             Guarded::ErrorText};

// The exit status of a child that does the work; a signal when it is not done in time.
int inChild(const std::function<bool()>& work) {
  const pid_t child = ::fork();
  if (child == 0) {
    ::alarm(60);
    ::_exit(work() ? 0 : 1);
  }
  int status = 0;
  while (::waitpid(child, &status, 0) < 0) {
  }
  return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

bool protectOne() {
  auto* const service = korvel_com::ZQ::crypto::CryptShim::instance();
  auto* const object =
      service->create_encryption_object(korvel_com::ZQ::crypto::ENCRYPTION_TYPE_PASSWORD);
  if (!object) return false;
  std::wstring text;
  std::wstring clear;
  const bool isDone = object->encrypt_string(L"secret", text) &&
                      object->decrypt_string(text, clear) && clear == L"secret";
  service->destroy_encryption_object(object);
  return isDone;
}

bool logOne() {
  logError(L"Test", AString(host::errorText(ENOENT).c_str()));
  return true;
}

bool lockOne() { return korvel_com::orb::lock::InterProcessReadLock("TestLock").lock(10000); }

bool readSettings() {
  return IConfiguration::GetConfiguration()->GetMaxRecordBytes() > 0 &&
         !IConfiguration::GetConfiguration()->GetFrameworkDataDirectory().empty();
}

bool doAll() {
  return readSettings() && protectOne() && logOne() && lockOne() && host::forkGeneration() != 0;
}

TEST(ForkLock, IsFreeInTheChildWhateverOtherThreadsHold) {
  for (const Guarded what : c_all) {
    std::atomic<bool> done{false};
    std::thread holder([&] {
      while (!done) const ForkLock lock(what);
    });
    for (int i = 0; i < 20; ++i) {
      EXPECT_EQ(inChild([&] {
                  for (const Guarded each : c_all) const ForkLock lock(each);
                  return true;
                }),
                0);
    }
    done = true;
    holder.join();
  }
}

TEST(ForkLock, IsFreeInTheParentAfterAFork) {
  EXPECT_EQ(inChild([] { return true; }), 0);
  for (const Guarded what : c_all) const ForkLock lock(what);
}

TEST(ForkLock, KeepsOtherThreadsOut) {
  int count = 0;
  std::vector<std::thread> threads;
  for (int i = 0; i < 4; ++i) {
    threads.emplace_back([&] {
      for (int turn = 0; turn < 10000; ++turn) {
        const ForkLock lock(Guarded::Log);
        ++count;
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(count, 40000);
}

#ifndef NDEBUG
TEST(ForkLockDeathTest, IsTakenInItsOrder) {
  testing::FLAGS_gtest_death_test_style = "threadsafe";
  EXPECT_DEATH(
      {
        const ForkLock later(Guarded::Log);
        const ForkLock earlier(Guarded::Settings);
      },
      "order");
}
#endif

TEST(Fork, LeavesTheChildAllThatTheHostDoes) {
  const test::TestAgent agent;
  host::setLogSink([](LogLevel, const std::wstring&, const std::wstring&) {});  // keeps no lines
  std::atomic<bool> done{false};
  std::vector<std::thread> threads;
  for (bool (*work)() : {protectOne, logOne, lockOne, readSettings}) {
    threads.emplace_back([&done, work] {
      while (!done) work();
    });
  }
  for (int i = 0; i < 100; ++i) EXPECT_EQ(inChild(doAll), 0);
  done = true;
  for (std::thread& thread : threads) thread.join();
}

// Nothing was used before in this process.
CHILD_PROCESS(forkAtFirstUse) {
  host::AgentSettings settings;
  settings.dataDirectory = args.at(0);
  host::setAgent(settings);
  host::setLogSink([](LogLevel, const std::wstring&, const std::wstring&) {});
  std::atomic<bool> go{false};
  std::vector<std::thread> threads;
  for (bool (*work)() : {protectOne, logOne, lockOne, protectOne}) {
    threads.emplace_back([&go, work] {
      while (!go) std::this_thread::yield();
      work();
    });
  }
  go = true;
  int status = 0;
  for (int i = 0; i < 4 && status == 0; ++i) status = inChild(doAll);
  for (std::thread& thread : threads) thread.join();
  return status;
}

TEST(Fork, AtTheFirstUseOfEverythingLeavesTheChildAllOfIt) {
  const test::TestAgent agent;
  for (int round = 0; round < 30; ++round) {
    test::ChildProcess process("forkAtFirstUse", {agent.dataDirectory()});
    EXPECT_EQ(process.wait(), 0) << round;
  }
}

}  // namespace
