#include <gtest/gtest.h>
#include <signal.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <functional>
#include <string>

#include "tests/host_crypto/encryption_object.h"
#include "tests/support/child_process.h"
#include "tests/support/passing_file_system.h"
#include "tests/support/test_agent.h"

namespace {

using test::ENCRYPTION_TYPE_PASSWORD;
using test::EncryptionObject;
using test::PassingFileSystem;

// Calls `strike` in place of the call with that number, counted from 0; the call then fails.
class StruckFileSystem : public PassingFileSystem {
 public:
  StruckFileSystem(int number, std::function<void()> strike)
      : m_left(number), m_strike(std::move(strike)) {}
  bool struck() const { return m_left < 0; }

  int open(int directory, const std::string& path, int flags, mode_t mode) override {
    return now() ? -EIO : PassingFileSystem::open(directory, path, flags, mode);
  }
  ssize_t read(int fd, void* data, std::size_t size) override {
    return now() ? -EIO : PassingFileSystem::read(fd, data, size);
  }
  ssize_t write(int fd, const void* data, std::size_t size) override {
    return now() ? -ENOSPC : PassingFileSystem::write(fd, data, size);
  }
  int sync(int fd) override { return now() ? -EIO : PassingFileSystem::sync(fd); }
  int lock(int fd, int operation) override {
    return now() ? -EIO : PassingFileSystem::lock(fd, operation);
  }
  int statOpen(int fd, struct stat& out) override {
    return now() ? -EIO : PassingFileSystem::statOpen(fd, out);
  }
  int stat(int directory, const std::string& path, bool follow, struct stat& out) override {
    return now() ? -EIO : PassingFileSystem::stat(directory, path, follow, out);
  }
  int link(int directory, const std::string& from, const std::string& to) override {
    return now() ? -EPERM : PassingFileSystem::link(directory, from, to);
  }
  int makeDirectory(const std::string& path, mode_t mode) override {
    return now() ? -EIO : PassingFileSystem::makeDirectory(path, mode);
  }

 private:
  bool now() {
    if (m_left < 0 || m_left-- > 0) return false;
    m_strike();
    return true;
  }

  int m_left;
  std::function<void()> m_strike;
};

bool roundTrips() {
  const EncryptionObject object(ENCRYPTION_TYPE_PASSWORD);
  std::wstring text;
  std::wstring clear;
  return object && object->encrypt_string(L"secret", text) && object->decrypt_string(text, clear) &&
         clear == L"secret";
}

TEST(KeyFileFault, AtAnyCallLeavesNoHalfKeyAndIsOvercomeByTheNextTry) {
  bool faulted = true;
  int faults = 0;
  for (int number = 0; faulted; ++number) {
    const test::TestAgent agent;
    const std::string path = test::passwordKeyPath(agent.dataDirectory());
    bool made = false;
    {
      StruckFileSystem files(number, [] {});
      made = static_cast<bool>(EncryptionObject(ENCRYPTION_TYPE_PASSWORD));
      faulted = files.struck();
    }
    faults += faulted && !made;
    EXPECT_EQ(agent.texts(LogLevel::Error).size(), made ? 0u : 1u) << "call " << number;
    std::string key;
    if (test::exists(path)) {
      key = test::readFile(path);
      EXPECT_EQ(key.size(), 32u) << "call " << number;
    } else {
      EXPECT_FALSE(made) << "call " << number;
    }
    if (test::exists(agent.dataDirectory() + "/keystore")) {
      EXPECT_EQ(test::snapshot(agent.dataDirectory() + "/keystore").size(), key.empty() ? 0u : 1u)
          << "call " << number;
    }
    EXPECT_TRUE(roundTrips()) << "call " << number;
    if (!key.empty()) {
      EXPECT_EQ(test::readFile(path), key) << "call " << number;
    }
  }
  EXPECT_GE(faults, 10);
}

CHILD_PROCESS(makeKeyUntilKilled) {
  host::AgentSettings settings;
  settings.dataDirectory = args.at(0);
  host::setAgent(settings);
  StruckFileSystem files(std::stoi(args.at(1)), [] { ::raise(SIGKILL); });
  return EncryptionObject(ENCRYPTION_TYPE_PASSWORD) ? 0 : 1;
}

TEST(KeyFileFault, DeathAtAnyCallLeavesNoHalfKeyAndIsOvercomeByTheNextTry) {
  int status = 128 + SIGKILL;
  int deaths = 0;
  for (int number = 0; status == 128 + SIGKILL; ++number) {
    const test::TestAgent agent;
    const std::string path = test::passwordKeyPath(agent.dataDirectory());
    test::ChildProcess child("makeKeyUntilKilled", {agent.dataDirectory(), std::to_string(number)});
    status = child.wait();
    deaths += status == 128 + SIGKILL;
    const std::string key = test::exists(path) ? test::readFile(path) : std::string();
    EXPECT_TRUE(key.empty() || key.size() == 32) << "call " << number;
    EXPECT_TRUE(roundTrips()) << "call " << number;
    if (!key.empty()) {
      EXPECT_EQ(test::readFile(path), key) << "call " << number;
    } else {
      EXPECT_EQ(test::snapshot(agent.dataDirectory() + "/keystore").size(), 1u)
          << "what was left behind at call " << number << " is still there";
    }
  }
  EXPECT_EQ(status, 0);
  EXPECT_GE(deaths, 10);
}

// Hands out one byte at a time.
class DribblingFileSystem : public PassingFileSystem {
 public:
  ssize_t read(int fd, void* data, std::size_t size) override {
    return PassingFileSystem::read(fd, data, size > 0 ? 1 : 0);
  }
  ssize_t write(int fd, const void* data, std::size_t size) override {
    return PassingFileSystem::write(fd, data, size > 0 ? 1 : 0);
  }
};

TEST(KeyFileFault, ThatSplitsReadsAndWritesDoesNoHarm) {
  const test::TestAgent agent;
  const DribblingFileSystem files;
  EXPECT_TRUE(roundTrips());
  EXPECT_EQ(test::readFile(test::passwordKeyPath(agent.dataDirectory())).size(), 32u);
}

class ModeFileSystem : public PassingFileSystem {
 public:
  explicit ModeFileSystem(uid_t owner) : m_owner(owner) {}
  int statOpen(int fd, struct stat& out) override {
    const int result = PassingFileSystem::statOpen(fd, out);
    out.st_uid = m_owner;
    return result;
  }
  int chmod(int, mode_t) override {
    ++chmods;
    return -EPERM;
  }

  int chmods = 0;

 private:
  uid_t m_owner;
};

TEST(KeyFileFault, OpenKeyFileOfAnotherUserIsUsedAsItIsAndReported) {
  const test::TestAgent agent;
  test::writeFile(test::passwordKeyPath(agent.dataDirectory()), std::string(32, 'k'), 0640);
  ModeFileSystem files(::geteuid() + 1);
  EXPECT_TRUE(roundTrips());
  EXPECT_EQ(files.chmods, 0);
  ASSERT_FALSE(agent.texts(LogLevel::Info).empty());
  EXPECT_NE(agent.texts(LogLevel::Info)[0].find(L"not ours to close"), std::wstring::npos);
}

TEST(KeyFileFault, OpenKeyFileThatCannotBeClosedIsUsedAndReported) {
  const test::TestAgent agent;
  test::writeFile(test::passwordKeyPath(agent.dataDirectory()), std::string(32, 'k'), 0640);
  ModeFileSystem files(::geteuid());
  EXPECT_TRUE(roundTrips());
  EXPECT_GT(files.chmods, 0);
  ASSERT_FALSE(agent.texts(LogLevel::Info).empty());
  EXPECT_NE(agent.texts(LogLevel::Info)[0].find(L"its mode cannot be changed"), std::wstring::npos);
}

}  // namespace
