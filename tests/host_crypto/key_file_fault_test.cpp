#include <gtest/gtest.h>
#include <signal.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <functional>
#include <string>
#include <vector>

#include "host/crypto/key_file.h"
#include "tests/host_crypto/encryption_object.h"
#include "tests/support/child_process.h"
#include "tests/support/faulty_file_system.h"
#include "tests/support/forwarding_file_system.h"
#include "tests/support/test_agent.h"

namespace {

using test::ENCRYPTION_TYPE_PASSWORD;
using test::EncryptionObject;
using test::FaultyFileSystem;
using test::FileCall;
using test::ForwardingFileSystem;

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
      FaultyFileSystem files;
      files.failCall(static_cast<std::size_t>(number), EIO);
      made = static_cast<bool>(EncryptionObject(ENCRYPTION_TYPE_PASSWORD));
      faulted = !files.failed().empty();
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
  int left = std::stoi(args.at(1));
  FaultyFileSystem files;
  files.beforeEach([&left](FileCall) {
    if (left-- == 0) ::raise(SIGKILL);
  });
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
    }
    EXPECT_EQ(test::snapshot(agent.dataDirectory() + "/keystore").size(), 1u)
        << "what was left behind at call " << number << " is still there";
  }
  EXPECT_EQ(status, 0);
  EXPECT_GE(deaths, 10);
}

TEST(KeyFileFault, ThatSplitsReadsAndWritesDoesNoHarm) {
  const test::TestAgent agent;
  FaultyFileSystem files;
  files.limitTransfers(1);
  EXPECT_TRUE(roundTrips());
  EXPECT_EQ(test::readFile(test::passwordKeyPath(agent.dataDirectory())).size(), 32u);
}

// Every open file belongs to that user.
class OwnedFileSystem : public ForwardingFileSystem {
 public:
  explicit OwnedFileSystem(uid_t owner) : m_owner(owner) {}
  int statOpen(int fd, struct stat& out) override {
    const int result = ForwardingFileSystem::statOpen(fd, out);
    out.st_uid = m_owner;
    return result;
  }

 private:
  uid_t m_owner;
};

TEST(KeyFileFault, OpenKeyFileOfAnotherUserIsUsedAsItIsAndReported) {
  const test::TestAgent agent;
  const std::string path = test::passwordKeyPath(agent.dataDirectory());
  test::writeFile(path, std::string(32, 'k'), 0640);
  const OwnedFileSystem files(::geteuid() + 1);
  EXPECT_TRUE(roundTrips());
  struct stat info;
  ASSERT_EQ(::stat(path.c_str(), &info), 0);
  EXPECT_EQ(info.st_mode & 07777, 0640u);
  ASSERT_FALSE(agent.texts(LogLevel::Info).empty());
  EXPECT_NE(agent.texts(LogLevel::Info)[0].find(L"its mode was not changed"), std::wstring::npos);
}

TEST(KeyFileFault, OpenKeyFileThatCannotBeClosedIsUsedAndReported) {
  const test::TestAgent agent;
  test::writeFile(test::passwordKeyPath(agent.dataDirectory()), std::string(32, 'k'), 0640);
  FaultyFileSystem files;
  files.failEvery(FileCall::Chmod, EPERM);
  EXPECT_TRUE(roundTrips());
  EXPECT_FALSE(files.failed().empty());
  ASSERT_FALSE(agent.texts(LogLevel::Info).empty());
  EXPECT_NE(agent.texts(LogLevel::Info)[0].find(L"its mode cannot be changed"), std::wstring::npos);
}

// A key file that is open to others, and what happens to it while it is read.
class OpenKeyFile : public testing::Test {
 protected:
  OpenKeyFile() { test::writeFile(m_path, std::string(32, 'k'), 0640); }

  bool read() {
    host::SecretBytes key;
    host::KeyFileState state;
    return host::readKeyFile(m_path, key, state);
  }
  // Reads the key. Runs the action immediately after the file is opened.
  bool readWhile(const std::function<void()>& action) {
    FaultyFileSystem files;
    bool isDone = false;
    files.beforeEach([&](FileCall call) {
      if (call == FileCall::StatOpen && !isDone) {
        isDone = true;
        action();
      }
    });
    const bool hasKey = read();
    EXPECT_TRUE(isDone);
    return hasKey;
  }
  void expectLeftAlone(const std::string& file) {
    struct stat info;
    ASSERT_EQ(::stat(file.c_str(), &info), 0);
    EXPECT_EQ(info.st_mode & 07777, 0640u);
    EXPECT_EQ(m_agent.texts(LogLevel::Info),
              std::vector<std::wstring>{L"Key file " + test::wide(m_path) +
                                        L": other users can open it, and its mode was not changed; "
                                        L"next: set its mode to 0600"});
    m_agent.clearLog();
  }

  test::TestAgent m_agent;
  const std::string m_keystore = m_agent.dataDirectory() + "/keystore";
  const std::string m_aside = m_agent.dataDirectory() + "/aside";
  const std::string m_path = test::passwordKeyPath(m_agent.dataDirectory());
};

TEST_F(OpenKeyFile, ThatLosesItsNameMeanwhileIsUsedAndLeftAlone) {
  EXPECT_TRUE(readWhile([&] { std::filesystem::rename(m_path, m_aside); }));
  expectLeftAlone(m_aside);
}

TEST_F(OpenKeyFile, ThatIsReplacedMeanwhileIsUsedAndLeftAlone) {
  EXPECT_TRUE(readWhile([&] {
    std::filesystem::rename(m_path, m_aside);
    test::writeFile(m_path, std::string(32, 'n'), 0640);
  }));
  expectLeftAlone(m_aside);
  struct stat info;
  ASSERT_EQ(::stat(m_path.c_str(), &info), 0);
  EXPECT_EQ(info.st_mode & 07777, 0640u) << "the mode of the new file was changed";
}

TEST_F(OpenKeyFile, WhoseDirectoryIsMovedAwayMeanwhileIsUsedAndLeftAlone) {
  EXPECT_TRUE(readWhile([&] { std::filesystem::rename(m_keystore, m_aside); }));
  expectLeftAlone(m_aside + "/password.key");
}

// Reports one wrong property: the device of the file found by name, or the owner of the open
// directory.
class OddPlace : public FaultyFileSystem {
 public:
  enum class Point { Device, DirectoryOwner };
  explicit OddPlace(Point point) : m_point(point) {}
  int statOpen(int fd, struct stat& out) override {
    const int result = FaultyFileSystem::statOpen(fd, out);
    if (m_point == Point::DirectoryOwner && S_ISDIR(out.st_mode)) ++out.st_uid;
    return result;
  }
  int stat(int directory, const std::string& path, bool follow, struct stat& out) override {
    const int result = FaultyFileSystem::stat(directory, path, follow, out);
    if (m_point == Point::Device) ++out.st_dev;
    return result;
  }

 private:
  Point m_point;
};

TEST_F(OpenKeyFile, WhoseNameLeadsToAnotherFileSystemIsUsedAndLeftAlone) {
  const OddPlace files(OddPlace::Point::Device);
  EXPECT_TRUE(read());
  expectLeftAlone(m_path);
}

TEST_F(OpenKeyFile, InADirectoryOfAnotherUserIsUsedAndLeftAlone) {
  const OddPlace files(OddPlace::Point::DirectoryOwner);
  EXPECT_TRUE(read());
  expectLeftAlone(m_path);
}

TEST_F(OpenKeyFile, IsClosedOrReportedWhateverCallFails) {
  int reports = 0;
  for (std::size_t number = 0;; ++number) {
    ASSERT_EQ(::chmod(m_path.c_str(), 0640), 0);
    m_agent.clearLog();
    FaultyFileSystem files;
    files.failCall(number, EIO);
    const bool hasKey = read();
    if (files.failed().empty()) break;
    SCOPED_TRACE(testing::Message() << "call " << number << ": " << files.failed()[0]);
    EXPECT_EQ(m_agent.texts(LogLevel::Error).size(), hasKey ? 0u : 1u);
    struct stat info;
    ASSERT_EQ(::stat(m_path.c_str(), &info), 0);
    const bool isOpen = (info.st_mode & 07777) == 0640u;
    if (!hasKey || !isOpen) continue;
    ++reports;
    EXPECT_EQ(m_agent.texts(LogLevel::Info).size(), 1u);
  }
  EXPECT_GT(reports, 2) << "a failure of each call that examines the owner is reported";
}

}  // namespace
