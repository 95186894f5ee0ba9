#include <gtest/gtest.h>

#include <atomic>
#include <cerrno>
#include <cstdio>
#include <string>
#include <thread>
#include <vector>

#include "host/log_sink.h"
#include "host/process/failure_text.h"
#include "host/process/fork_generation.h"
#include "platform/config/configuration.h"
#include "platform/crypto/crypt_shim.h"
#include "platform/lock/interprocess_lock.h"
#include "tests/host_process/in_child.h"
#include "tests/support/child_process.h"
#include "tests/support/sanitizer.h"
#include "tests/support/test_agent.h"

// Processes that fork while their threads are at work. Builds with a sanitizer run no threads. The
// allocators of the sanitizers have no fork handlers, so a child may hang in the allocator.
namespace {

using test::inChild;

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

// Returns the functions that threads run during the forks. Returns none with a sanitizer.
std::vector<bool (*)()> besideForks(std::vector<bool (*)()> work) {
  if (!TESTS_SANITIZED) return work;
  std::printf("No threads run beside the forks with a sanitizer\n");
  return {};
}

TEST(Fork, LeavesTheChildAllThatTheHostDoes) {
  const test::TestAgent agent;
  host::setLogSink([](LogLevel, const std::wstring&, const std::wstring&) {});  // keeps no lines
  std::atomic<bool> done{false};
  std::vector<std::thread> threads;
  for (bool (*work)() : besideForks({protectOne, logOne, lockOne, readSettings})) {
    threads.emplace_back([&done, work] {
      while (!done) work();
    });
  }
  for (int i = 0; i < 100; ++i) EXPECT_EQ(inChild(doAll), 0);
  done = true;
  for (std::thread& thread : threads) thread.join();
}

// The process has not used the library before.
CHILD_PROCESS(forkAtFirstUse) {
  host::AgentSettings settings;
  settings.dataDirectory = args.at(0);
  host::setAgent(settings);
  host::setLogSink([](LogLevel, const std::wstring&, const std::wstring&) {});
  std::atomic<bool> go{false};
  std::atomic<bool> done{false};
  std::vector<std::thread> threads;
  for (bool (*work)() : besideForks({protectOne, logOne, lockOne, protectOne})) {
    threads.emplace_back([&go, &done, work] {
      while (!go) std::this_thread::yield();
      while (!done) work();
    });
  }
  go = true;
  int status = 0;
  for (int i = 0; i < 4 && status == 0; ++i) status = inChild(doAll);
  done = true;
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
