#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <ctime>
#include <string>
#include <thread>
#include <vector>

#include "tests/host_crypto/encryption_object.h"
#include "tests/support/faulty_file_system.h"
#include "tests/support/file_times.h"
#include "tests/support/test_agent.h"

namespace {

using test::ENCRYPTION_TYPE_PASSWORD;
using test::ENCRYPTION_TYPE_SERVER_BUFFER;
using test::EncryptionObject;

mode_t modeOf(const std::string& path) {
  struct stat info;
  EXPECT_EQ(::lstat(path.c_str(), &info), 0) << path;
  return info.st_mode & 07777;
}

class KeyFile : public testing::Test {
 protected:
  bool canEncrypt() {
    std::wstring out;
    const EncryptionObject object(ENCRYPTION_TYPE_PASSWORD);
    return object && object->encrypt_string(L"secret", out);
  }
  std::wstring encrypted(const std::wstring& clear) {
    std::wstring out;
    const EncryptionObject object(ENCRYPTION_TYPE_PASSWORD);
    EXPECT_TRUE(object && object->encrypt_string(clear, out));
    return out;
  }
  bool decrypts(const std::wstring& text) {
    std::wstring out;
    const EncryptionObject object(ENCRYPTION_TYPE_PASSWORD);
    return object && object->decrypt_string(text, out) && out == L"secret";
  }
  // The one error of this test so far names the file and gives this reason.
  void expectOneError(const std::wstring& reason) {
    const std::vector<std::wstring> errors = m_agent.texts(LogLevel::Error);
    ASSERT_EQ(errors.size(), 1u);
    EXPECT_EQ(errors[0], L"Key file " + test::wide(m_path) + L": " + reason);
    m_agent.clearLog();
  }

  test::TestAgent m_agent;
  std::string m_path = test::passwordKeyPath(m_agent.dataDirectory());
};

TEST_F(KeyFile, IsMadeWithTheFirstObjectAndReadableByItsOwnerAlone) {
  EXPECT_FALSE(test::exists(m_path));
  EXPECT_TRUE(EncryptionObject(ENCRYPTION_TYPE_PASSWORD));
  EXPECT_EQ(test::readFile(m_path).size(), 32u);
  EXPECT_EQ(modeOf(m_path), 0600u);
  EXPECT_EQ(modeOf(m_agent.dataDirectory() + "/keystore"), 0700u);
}

TEST_F(KeyFile, IsNotOpenedToOthersByAGenerousFileModeMask) {
  const mode_t mask = ::umask(0);
  EXPECT_TRUE(canEncrypt());
  ::umask(mask);
  EXPECT_EQ(modeOf(m_path), 0600u);
  EXPECT_EQ(modeOf(m_agent.dataDirectory() + "/keystore"), 0700u);
}

TEST_F(KeyFile, IsTheOnlyFileLeftInItsDirectory) {
  EXPECT_TRUE(canEncrypt());
  const auto files = test::snapshot(m_agent.dataDirectory() + "/keystore");
  ASSERT_EQ(files.size(), 1u);
  EXPECT_EQ(files.begin()->first, "password.key");
}

// Shows: password-machine
TEST_F(KeyFile, DiffersFromAgentToAgent) {
  const test::TempDir other;
  EXPECT_TRUE(canEncrypt());
  m_agent.settings.dataDirectory = other.path();
  m_agent.apply();
  EXPECT_TRUE(canEncrypt());
  EXPECT_NE(test::readFile(m_path), test::readFile(test::passwordKeyPath(other.path())));
}

// Shows: password-cipher
TEST_F(KeyFile, ThatIsThereIsUsedAndNeverChanged) {
  const std::string key = "this key has 32 bytes, no more,.";
  ASSERT_EQ(key.size(), 32u);
  test::writeFile(m_path, key, 0600);
  EXPECT_TRUE(canEncrypt());
  EXPECT_EQ(test::readFile(m_path), key);
}

TEST_F(KeyFile, OpenToOthersIsClosedAndSaidSo) {
  for (const mode_t mode : {0640, 0604, 0660, 0622, 0601, 0777}) {
    test::writeFile(m_path, std::string(32, 'k'), mode);
    m_agent.clearLog();
    EXPECT_TRUE(canEncrypt());
    EXPECT_EQ(modeOf(m_path), 0600u);
    ASSERT_EQ(m_agent.messages().size(), 1u);
    EXPECT_EQ(m_agent.messages()[0],
              (test::LogLine{LogLevel::Info, L"Crypto",
                             L"Key file " + test::wide(m_path) +
                                 L": was open to other users; its mode is 0600 now"}));
    EXPECT_TRUE(canEncrypt());
    EXPECT_EQ(m_agent.messages().size(), 1u) << "logged again";
  }
}

TEST_F(KeyFile, OpenToOthersIsNotTouchedWhereItMayBeAnotherFileOfOurs) {
  const std::string keystore = m_agent.dataDirectory() + "/keystore";
  const std::string other = m_agent.dataDirectory() + "/other";
  const auto expectUntouched = [&] {
    m_agent.clearLog();
    EXPECT_TRUE(canEncrypt());
    EXPECT_EQ(modeOf(m_path), 0644u);
    ASSERT_EQ(m_agent.messages().size(), 1u);
    EXPECT_NE(m_agent.messages()[0].text.find(
                  L": other users can open it, and its mode was not changed; next: set its mode"),
              std::wstring::npos);
  };
  test::writeFile(m_path, std::string(32, 'k'), 0644);
  for (const mode_t mode : {0770, 0702}) {
    ASSERT_EQ(::chmod(keystore.c_str(), mode), 0);
    const std::string key(32, static_cast<char>(mode & 0x7f));
    test::writeFile(m_path, key, 0644);  // a key that was not looked at yet
    expectUntouched();
  }
  ASSERT_EQ(::chmod(keystore.c_str(), 0700), 0);
  test::writeFile(other, std::string(32, 'o'), 0644);
  ASSERT_EQ(::unlink(m_path.c_str()), 0);
  ASSERT_EQ(::link(other.c_str(), m_path.c_str()), 0);
  expectUntouched();
}

TEST_F(KeyFile, ThatOnlyItsOwnerMayReadIsNotTouched) {
  test::writeFile(m_path, std::string(32, 'k'), 0400);
  EXPECT_TRUE(canEncrypt());
  EXPECT_EQ(modeOf(m_path), 0400u);
  EXPECT_TRUE(m_agent.messages().empty());
}

// Shows: password-cipher
TEST_F(KeyFile, OfAnotherSizeIsRefusedWithoutShowingIt) {
  for (const std::size_t size : {0, 1, 16, 31, 33, 64, 4096}) {
    test::writeFile(m_path, std::string(size, 'k'), 0600);
    EXPECT_FALSE(EncryptionObject(ENCRYPTION_TYPE_PASSWORD)) << size;
    expectOneError(L"the file has " + (size < 32 ? std::to_wstring(size) : L"more than 32") +
                   L" bytes, but a key has 32; next: restore the agent's key file");
    EXPECT_EQ(test::readFile(m_path), std::string(size, 'k'));
  }
}

TEST_F(KeyFile, ThatIsASymbolicLinkIsRefused) {
  const std::string target = m_agent.dataDirectory() + "/target";
  test::writeFile(target, std::string(32, 'k'), 0644);
  ASSERT_EQ(::mkdir((m_agent.dataDirectory() + "/keystore").c_str(), 0700), 0);
  ASSERT_EQ(::symlink(target.c_str(), m_path.c_str()), 0);
  EXPECT_FALSE(EncryptionObject(ENCRYPTION_TYPE_PASSWORD));
  expectOneError(L"refused, it is a symbolic link; next: replace the link by the key file");
  EXPECT_EQ(modeOf(target), 0644u);

  ASSERT_EQ(::unlink(target.c_str()), 0);
  EXPECT_FALSE(EncryptionObject(ENCRYPTION_TYPE_PASSWORD));
  expectOneError(L"refused, it is a symbolic link; next: replace the link by the key file");
  EXPECT_FALSE(test::exists(target));
}

TEST_F(KeyFile, ThatIsADirectoryOrAPipeIsRefused) {
  ASSERT_EQ(::mkdir((m_agent.dataDirectory() + "/keystore").c_str(), 0700), 0);
  ASSERT_EQ(::mkdir(m_path.c_str(), 0700), 0);
  EXPECT_FALSE(EncryptionObject(ENCRYPTION_TYPE_PASSWORD));
  expectOneError(L"refused, it is not a regular file; next: restore the agent's key file");
  ASSERT_EQ(::rmdir(m_path.c_str()), 0);
  ASSERT_EQ(::mkfifo(m_path.c_str(), 0600), 0);
  EXPECT_FALSE(EncryptionObject(ENCRYPTION_TYPE_PASSWORD));
  expectOneError(L"refused, it is not a regular file; next: restore the agent's key file");
}

TEST_F(KeyFile, CannotBeMadeWhereItsDirectoryIsAFile) {
  test::writeFile(m_agent.dataDirectory() + "/keystore", "in the way");
  EXPECT_FALSE(EncryptionObject(ENCRYPTION_TYPE_PASSWORD));
  EXPECT_EQ(m_agent.texts(LogLevel::Error).size(), 1u);
  EXPECT_EQ(test::readFile(m_agent.dataDirectory() + "/keystore"), "in the way");
}

TEST_F(KeyFile, CannotBeMadeWithoutTheAgentsDirectory) {
  m_agent.settings.dataDirectory += "/missing";
  m_agent.apply();
  EXPECT_FALSE(EncryptionObject(ENCRYPTION_TYPE_PASSWORD));
  EXPECT_EQ(m_agent.texts(LogLevel::Error).size(), 1u);
  EXPECT_FALSE(test::exists(m_agent.settings.dataDirectory));
}

TEST_F(KeyFile, ReplacedWhileRunningIsNoticedAtOnce) {
  test::writeFile(m_path, std::string(32, 'a'), 0600);
  const std::wstring underA = encrypted(L"secret");
  ASSERT_TRUE(decrypts(underA));
  for (int i = 0; i < 20; ++i) {
    // Overwrites the file; inode and size stay the same.
    test::writeFile(m_path, std::string(32, 'b'), 0600);
    const std::wstring underB = encrypted(L"secret");
    EXPECT_FALSE(decrypts(underA));
    EXPECT_TRUE(decrypts(underB));
    // Replaces the file with a new one.
    test::writeFile(m_path + ".new", std::string(32, 'a'), 0600);
    ASSERT_EQ(::rename((m_path + ".new").c_str(), m_path.c_str()), 0);
    EXPECT_TRUE(decrypts(underA));
    EXPECT_FALSE(decrypts(underB));
  }
}

// Reports the same time of the last change for every file: `fromNow` seconds after now.
class FixedTimeFileSystem : public test::FaultyFileSystem {
 public:
  explicit FixedTimeFileSystem(std::time_t fromNow) : m_time(std::time(nullptr) + fromNow) {}
  int statOpen(int fd, struct stat& out) override {
    return fixed(FaultyFileSystem::statOpen(fd, out), out);
  }
  int stat(int directory, const std::string& path, bool follow, struct stat& out) override {
    return fixed(FaultyFileSystem::stat(directory, path, follow, out), out);
  }

 private:
  int fixed(int result, struct stat& info) const {
    test::changedAt(info) = {m_time, 0};
    return result;
  }

  std::time_t m_time;
};

TEST_F(KeyFile, ThatIsOldIsReadOnceAndStillNoticedWhenReplaced) {
  test::writeFile(m_path, std::string(32, 'a'), 0600);
  const FixedTimeFileSystem files(-3600);
  const std::wstring underA = encrypted(L"secret");
  const std::size_t callsToRead = files.calls().size();
  for (int i = 0; i < 100; ++i) ASSERT_TRUE(decrypts(underA));
  EXPECT_EQ(files.calls().size(), callsToRead + 100) << "more than one call for each password";
  for (const char key : {'b', 'c', 'd'}) {
    test::writeFile(m_path + ".new", std::string(32, key), 0600);
    ASSERT_EQ(::rename((m_path + ".new").c_str(), m_path.c_str()), 0);
    EXPECT_FALSE(decrypts(underA)) << key;
  }
}

TEST_F(KeyFile, ReplacedWithinOneStepOfTheFileSystemsClockIsNoticed) {
  // A time in the future, so that the file counts as recently changed during the whole test.
  const FixedTimeFileSystem files(3600);
  test::writeFile(m_path, std::string(32, 'a'), 0600);
  const std::wstring underA = encrypted(L"secret");
  test::writeFile(m_path, std::string(32, 'b'), 0600);
  EXPECT_FALSE(decrypts(underA));
}

TEST_F(KeyFile, IsLookedAtOnceWhileKeysAreKept) {
  test::writeFile(m_path, std::string(32, 'a'), 0600);
  const test::FaultyFileSystem files;
  {
    const korvel_com::ZQ::crypto::KeptKeys kept;
    const std::wstring underA = encrypted(L"secret");
    const std::size_t callsToRead = files.calls().size();
    for (int i = 0; i < 100; ++i) ASSERT_TRUE(decrypts(underA));
    EXPECT_EQ(files.calls().size(), callsToRead);
  }
  const std::size_t callsToRead = files.calls().size();
  EXPECT_TRUE(canEncrypt());
  EXPECT_GT(files.calls().size(), callsToRead) << "still kept";
}

TEST_F(KeyFile, ReplacedWhileKeysAreKeptIsNoticedAfterwards) {
  test::writeFile(m_path, std::string(32, 'a'), 0600);
  std::wstring underA;
  {
    const korvel_com::ZQ::crypto::KeptKeys outer;
    {
      const korvel_com::ZQ::crypto::KeptKeys inner;
      underA = encrypted(L"secret");
    }
    test::writeFile(m_path, std::string(32, 'b'), 0600);
    EXPECT_TRUE(decrypts(underA));
    bool elsewhere = true;
    std::thread([&] { elsewhere = decrypts(underA); }).join();
    EXPECT_FALSE(elsewhere) << "kept for another thread";
  }
  EXPECT_FALSE(decrypts(underA));
  test::writeFile(m_path, std::string(32, 'a'), 0600);
  const korvel_com::ZQ::crypto::KeptKeys later;
  EXPECT_TRUE(decrypts(underA)) << "kept from before";
}

TEST_F(KeyFile, OfAnotherAgentIsNotTheOneThatIsKept) {
  const korvel_com::ZQ::crypto::KeptKeys kept;
  const std::wstring text = encrypted(L"secret");
  const test::TestAgent other;
  EXPECT_FALSE(decrypts(text));
}

TEST_F(KeyFile, ThatCannotBeHadIsLookedForAgainWhileKeysAreKept) {
  test::writeFile(m_path, "short", 0600);
  const korvel_com::ZQ::crypto::KeptKeys kept;
  EXPECT_FALSE(canEncrypt());
  EXPECT_FALSE(canEncrypt());
  expectOneError(L"the file has 5 bytes, but a key has 32; next: restore the agent's key file");
  test::writeFile(m_path, std::string(32, 'a'), 0600);
  EXPECT_TRUE(canEncrypt());
}

TEST_F(KeyFile, RemovedWhileRunningIsNoLongerUsed) {
  const std::wstring text = encrypted(L"secret");
  const std::string key = test::readFile(m_path);
  ASSERT_EQ(::unlink(m_path.c_str()), 0);
  EXPECT_FALSE(decrypts(text));
  EXPECT_NE(test::readFile(m_path), key);
}

TEST_F(KeyFile, BrokenWhileRunningIsNoLongerUsed) {
  EXPECT_TRUE(canEncrypt());
  const std::string key = test::readFile(m_path);
  test::writeFile(m_path, "short", 0600);
  EXPECT_FALSE(EncryptionObject(ENCRYPTION_TYPE_PASSWORD));
  expectOneError(L"the file has 5 bytes, but a key has 32; next: restore the agent's key file");
  test::writeFile(m_path, key, 0600);
  EXPECT_TRUE(canEncrypt());
}

TEST_F(KeyFile, ReplacedWhileAnObjectIsOutLeavesThatObjectItsKeyButNobodyElse) {
  test::writeFile(m_path, std::string(32, 'a'), 0600);
  const std::wstring underA = encrypted(L"secret");
  {
    const EncryptionObject early(ENCRYPTION_TYPE_PASSWORD);
    ASSERT_TRUE(early);
    test::writeFile(m_path, std::string(32, 'b'), 0600);
    EXPECT_FALSE(decrypts(underA));
    std::wstring out;
    EXPECT_TRUE(early->decrypt_string(underA, out));
  }
  EXPECT_FALSE(decrypts(underA)) << "an object with the former key was handed out again";
}

TEST(CryptShim, HasNoObjectForAnotherType) {
  const test::TestAgent agent;
  for (const int type : {0, 1, 2, 4, 5, 7}) {
    EXPECT_FALSE(EncryptionObject(static_cast<korvel_com::ZQ::crypto::EncryptionType>(type)));
  }
  EXPECT_EQ(agent.texts(LogLevel::InternalError).size(), 6u);
}

TEST(CryptShim, TakesBackNothing) {
  const test::TestAgent agent;
  const auto before = test::snapshot(agent.dataDirectory());
  test::CryptShim::instance()->destroy_encryption_object(nullptr);
  EXPECT_EQ(agent.log(), std::vector<test::LogLine>());
  EXPECT_EQ(test::snapshot(agent.dataDirectory()), before);
  // The next object must not be the null object.
  const EncryptionObject object(ENCRYPTION_TYPE_PASSWORD);
  ASSERT_TRUE(object);
  std::wstring text;
  EXPECT_TRUE(object->encrypt_string(L"secret", text));
}

TEST(CryptShim, IsOneForTheWholeProcess) {
  ASSERT_NE(test::CryptShim::instance(), nullptr);
  EXPECT_EQ(test::CryptShim::instance(), test::CryptShim::instance());
}

TEST(CryptShim, GivesObjectsThatAreUsedAtTheSameTimeIndependently) {
  const test::TestAgent agent;
  const EncryptionObject first(ENCRYPTION_TYPE_PASSWORD);
  const EncryptionObject second(ENCRYPTION_TYPE_PASSWORD);
  ASSERT_TRUE(first && second);
  EXPECT_NE(first.get(), second.get());
  std::wstring text;
  std::wstring clear;
  EXPECT_TRUE(first->encrypt_string(L"secret", text));
  EXPECT_TRUE(second->decrypt_string(text, clear));
  EXPECT_EQ(clear, L"secret");
}

}  // namespace
