#include <gtest/gtest.h>

#include <atomic>
#include <cstdio>
#include <functional>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "tests/host_crypto/encryption_object.h"
#include "tests/support/child_process.h"
#include "tests/support/test_agent.h"

namespace {

using test::ENCRYPTION_TYPE_PASSWORD;
using test::ENCRYPTION_TYPE_SERVER_BUFFER;
using test::EncryptionObject;

// Waits for the start message, creates the key if it is missing, and sends a password that is
// encrypted with it.
CHILD_PROCESS(encryptAtOnce) {
  host::AgentSettings settings;
  settings.dataDirectory = args.at(0);
  host::setAgent(settings);
  channel.send("ready");
  if (channel.receive() != "go") return 2;
  std::wstring text;
  const EncryptionObject object(ENCRYPTION_TYPE_PASSWORD);
  if (!object || !object->encrypt_string(L"secret", text)) return 1;
  channel.send(test::narrow(text));
  return 0;
}

TEST(CryptoProcesses, ThatStartTogetherAgreeOnOneKey) {
  for (int round = 0; round < 5; ++round) {
    const test::TestAgent agent;
    std::vector<std::unique_ptr<test::ChildProcess>> children;
    for (int i = 0; i < 12; ++i) {
      children.push_back(std::make_unique<test::ChildProcess>(
          "encryptAtOnce", std::vector<std::string>{agent.dataDirectory()}));
    }
    for (const auto& child : children) ASSERT_EQ(child->receive(), "ready");
    for (const auto& child : children) child->send("go");
    for (const auto& child : children) {
      const std::wstring text = test::wide(child->receive());
      EXPECT_EQ(child->wait(), 0);
      std::wstring clear;
      const EncryptionObject object(ENCRYPTION_TYPE_PASSWORD);
      ASSERT_TRUE(object);
      EXPECT_NE(object->decrypt_string(text, clear), 0);
      EXPECT_EQ(clear, L"secret");
    }
    EXPECT_EQ(test::snapshot(agent.dataDirectory() + "/keystore").size(), 1u);
  }
}

void runThreads(int count, const std::function<void(int)>& work) {
  std::vector<std::thread> threads;
  for (int i = 0; i < count; ++i) threads.emplace_back(work, i);
  for (std::thread& thread : threads) thread.join();
}

TEST(CryptoThreads, EncryptAndDecryptEachOthersPasswords) {
  const test::TestAgent agent;
  std::atomic<int> failures{0};
  std::vector<std::wstring> texts(8);
  runThreads(8, [&](int i) {
    for (int turn = 0; turn < 300; ++turn) {
      const std::wstring secret = L"secret " + std::to_wstring(i * 1000 + turn);
      std::wstring clear;
      {
        const EncryptionObject object(ENCRYPTION_TYPE_PASSWORD);
        failures += !object || !object->encrypt_string(secret, texts[i]);
      }
      const EncryptionObject object(ENCRYPTION_TYPE_PASSWORD);
      failures += !object || !object->decrypt_string(texts[i], clear) || clear != secret;
    }
  });
  runThreads(8, [&](int i) {
    std::wstring clear;
    const EncryptionObject object(ENCRYPTION_TYPE_PASSWORD);
    const int other = (i + 1) % 8;
    failures += !object || !object->decrypt_string(texts[other], clear) ||
                clear != L"secret " + std::to_wstring(other * 1000 + 299);
  });
  EXPECT_EQ(failures, 0);
}

TEST(CryptoThreads, HoldMoreObjectsThanAreKept) {
  const test::TestAgent agent;
  std::atomic<int> failures{0};
  runThreads(8, [&](int) {
    for (int turn = 0; turn < 20; ++turn) {
      std::vector<std::unique_ptr<EncryptionObject>> objects;
      for (int i = 0; i < 10; ++i) {
        objects.push_back(std::make_unique<EncryptionObject>(ENCRYPTION_TYPE_PASSWORD));
      }
      for (const auto& object : objects) {
        std::wstring text;
        failures += !*object || !(*object)->encrypt_string(L"secret", text);
      }
    }
  });
  EXPECT_EQ(failures, 0);
}

TEST(CryptoThreads, SurviveKeysBeingReplaced) {
  const test::TestAgent agent;
  const std::string path = test::serverKeyPath(agent.dataDirectory());
  test::writeFile(path, std::string(32, 'a'), 0600);
  std::atomic<bool> done{false};
  std::atomic<int> missing{0};
  std::thread replacer([&] {
    for (int i = 0; i < 200; ++i) {
      test::writeFile(path + ".new", std::string(32, static_cast<char>('a' + i % 20)), 0600);
      missing += ::rename((path + ".new").c_str(), path.c_str()) != 0;
    }
    done = true;
  });
  runThreads(8, [&](int) {
    while (!done) {
      const EncryptionObject object(ENCRYPTION_TYPE_SERVER_BUFFER);
      missing += !object;
    }
  });
  replacer.join();
  EXPECT_EQ(missing, 0);
}

}  // namespace
