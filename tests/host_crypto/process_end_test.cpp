#include <gtest/gtest.h>
#include <unistd.h>

#include <atomic>
#include <cstdio>
#include <string>
#include <thread>
#include <vector>

#include "host/crypto/nonces.h"
#include "host/crypto/sealed_value.h"
#include "tests/host_crypto/encryption_object.h"
#include "tests/support/child_process.h"
#include "tests/support/sanitizer.h"
#include "tests/support/test_agent.h"

// Processes that end while their threads use the crypto service.
namespace {

using host::SecretBytes;

constexpr int c_threads = 4;

void sealAndOpen() {
  const unsigned char clear[] = "secret";
  const SecretBytes key(host::c_keySize, 'k');
  std::vector<unsigned char> sealed;
  SecretBytes opened;
  host::Sealer sealer(key);
  sealer.seal(clear, sizeof clear, sealed);
  sealer.open(sealed.data(), sealed.size(), opened);
}

void protectPassword() {
  const test::EncryptionObject object(test::ENCRYPTION_TYPE_PASSWORD);
  std::wstring text;
  if (object) object->encrypt_string(L"secret", text);
}

void drawNonces() {
  host::Nonces nonces;
  unsigned char nonce[host::c_nonceSize];
  nonces.next(nonce);
}

// The threads use this until the process ends.
std::atomic<int> g_begun{0};

CHILD_PROCESS(endWhileThreadsWork) {
  host::AgentSettings settings;
  settings.dataDirectory = args.at(0);
  host::setAgent(settings);
  for (int i = 0; i < c_threads; ++i) {
    std::thread([i] {
      for (bool isFirst = true;; isFirst = false) {
        if (i % 2 == 0) sealAndOpen();
        i % 2 == 0 ? drawNonces() : protectPassword();
        if (isFirst) ++g_begun;
      }
    }).detach();
  }
  while (g_begun < c_threads) std::this_thread::yield();
  return 0;
}

// The number of processes that did not end with status 0.
int crashes(int processes) {
  const test::TestAgent agent;
  int count = 0;
  for (int i = 0; i < processes; ++i) {
    count += test::ChildProcess("endWhileThreadsWork", {agent.dataDirectory()}).wait() != 0;
  }
  return count;
}

TEST(ProcessEnd, IsOrderlyWhileThreadsUseTheCryptoService) {
  // With ThreadSanitizer a process takes fifty times as long to start.
  constexpr int c_times = TESTS_THREAD_SANITIZED ? 20 : 200;
  EXPECT_EQ(crashes(c_times), 0);
}

// The long form: --child countCrashes NUMBER
CHILD_PROCESS(countCrashes) {
  const int count = crashes(std::stoi(args.at(0)));
  std::printf("%d of %s crash\n", count, args.at(0).c_str());
  return count == 0 ? 0 : 1;
}

}  // namespace
