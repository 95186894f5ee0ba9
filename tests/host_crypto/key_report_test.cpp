#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <cerrno>
#include <string>
#include <vector>

#include "host/common/base64.h"
#include "host/crypto/key_span.h"
#include "host/crypto/sealed_value.h"
#include "tests/host_crypto/encryption_object.h"
#include "tests/support/faulty_file_system.h"
#include "tests/support/test_agent.h"

// What is logged when passwords and keys do not fit.
namespace {

using korvel_com::ZQ::crypto::KeptKeys;
using test::ENCRYPTION_TYPE_PASSWORD;
using test::ENCRYPTION_TYPE_SERVER_BUFFER;
using test::EncryptionObject;
using testing::ElementsAre;
using testing::IsEmpty;

class KeyReport : public testing::Test {
 protected:
  std::wstring encrypted(const std::wstring& clear) {
    std::wstring out;
    const EncryptionObject object(ENCRYPTION_TYPE_PASSWORD);
    EXPECT_TRUE(object && object->encrypt_string(clear, out));
    return out;
  }
  bool opens(const std::wstring& text) {
    std::wstring out;
    const EncryptionObject object(ENCRYPTION_TYPE_PASSWORD);
    return object && object->decrypt_string(text, out);
  }
  bool opensAsServers(const std::string& bytes) {
    test::CryptoBuffer out = test::bufferOf("");
    const EncryptionObject object(ENCRYPTION_TYPE_SERVER_BUFFER);
    return object && object->decrypt_buffer(test::bufferOf(bytes), out);
  }
  std::wstring serverPath() { return test::wide(test::serverKeyPath(m_agent.dataDirectory())); }

  test::TestAgent m_agent;
  const std::string m_file = test::passwordKeyPath(m_agent.dataDirectory());
  const std::wstring m_path = test::wide(m_file);
};

TEST_F(KeyReport, WarnsThatAMissingKeyWasMadeAnew) {
  const std::vector<test::LogLine> warning = {{LogLevel::Info, L"Crypto",
                                               L"WARNING: Key file " + m_path +
                                                   L": it was missing, so a new key was created. "
                                                   L"Passwords that were encrypted with another "
                                                   L"key cannot be decrypted"}};
  const std::wstring text = encrypted(L"secret");
  EXPECT_EQ(m_agent.messages(), warning);
  EXPECT_TRUE(opens(text));
  EXPECT_EQ(m_agent.messages(), warning) << "logged again";
  ASSERT_EQ(::unlink(m_file.c_str()), 0);
  m_agent.clearLog();
  encrypted(L"secret");
  EXPECT_EQ(m_agent.messages(), warning);
}

TEST_F(KeyReport, TellsOfEachPasswordThatDoesNotOpen) {
  const std::wstring text = encrypted(L"secret");
  test::writeFile(m_file, std::string(32, 'o'), 0600);
  m_agent.clearLog();
  EXPECT_FALSE(opens(text));
  EXPECT_THAT(m_agent.texts(LogLevel::Error),
              ElementsAre(L"1 protected password cannot be decrypted with the key file " + m_path +
                          L" and is read as empty. Restore the key file that protected it, or set "
                          L"the password again."));
  EXPECT_FALSE(opens(L"no base64"));
  EXPECT_EQ(m_agent.messages().size(), 2U);
}

TEST_F(KeyReport, TellsOnceForAListHowManyPasswordsDoNotOpen) {
  const std::wstring text = encrypted(L"secret");
  test::writeFile(m_file, std::string(32, 'o'), 0600);
  const std::wstring good = encrypted(L"secret");
  m_agent.clearLog();
  {
    const KeptKeys outer;
    {
      const KeptKeys inner;
      EXPECT_FALSE(opens(text));
      EXPECT_TRUE(opens(good));
      EXPECT_FALSE(opens(L"no base64"));
      EXPECT_FALSE(opens(L""));
    }
    EXPECT_FALSE(opens(text));
    EXPECT_TRUE(m_agent.messages().empty());
  }
  EXPECT_THAT(
      m_agent.texts(LogLevel::Error),
      ElementsAre(L"3 protected passwords cannot be decrypted with the key file " + m_path +
                  L" and are read as empty. Restore the key file that protected them, or set "
                  L"the passwords again."));
  EXPECT_EQ(m_agent.messages().size(), 1U);
  { const KeptKeys next; }
  EXPECT_EQ(m_agent.messages().size(), 1U) << "logged again";
}

TEST_F(KeyReport, TellsOfAPasswordThatIsNoText) {
  encrypted(L"so that there is a key");
  const std::string key = test::readFile(m_file);
  std::vector<unsigned char> sealed;
  const unsigned char notUtf8 = 0xFF;
  ASSERT_TRUE(host::Sealer(host::SecretBytes(key.begin(), key.end())).seal(&notUtf8, 1, sealed));
  m_agent.clearLog();
  EXPECT_FALSE(opens(test::wide(host::toBase64(sealed))));
  EXPECT_EQ(m_agent.texts(LogLevel::Error).size(), 1U);
}

TEST_F(KeyReport, SaysNothingOfAnEmptyProtectedText) {
  encrypted(L"so that there is a key");
  test::writeFile(test::serverKeyPath(m_agent.dataDirectory()), std::string(32, 's'), 0600);
  m_agent.clearLog();
  EXPECT_FALSE(opens(L""));
  EXPECT_FALSE(opensAsServers(""));
  EXPECT_THAT(m_agent.messages(), IsEmpty());
}

TEST_F(KeyReport, TellsOfPasswordsOfTheServerByTheirOwnKey) {
  test::writeFile(test::serverKeyPath(m_agent.dataDirectory()), std::string(32, 's'), 0600);
  {
    const KeptKeys kept;
    EXPECT_FALSE(opensAsServers("garbage"));
    EXPECT_FALSE(opensAsServers(std::string(40, '\1')));
  }
  EXPECT_THAT(
      m_agent.texts(LogLevel::Error),
      ElementsAre(L"2 protected passwords cannot be decrypted with the key file " + serverPath() +
                  L" and are read as empty. The server must send them under the key in that "
                  L"file."));
}

TEST_F(KeyReport, TellsOnceForAListWhyAKeyCannotBeHad) {
  {
    const KeptKeys kept;
    for (int i = 0; i < 3; ++i) EXPECT_FALSE(opensAsServers("garbage"));
  }
  EXPECT_THAT(
      m_agent.texts(LogLevel::Error),
      ElementsAre(L"Key file " + serverPath() + L": cannot be opened: No such file or directory"));
  m_agent.clearLog();
  test::writeFile(m_file, "short", 0600);
  {
    const KeptKeys kept;
    for (int i = 0; i < 3; ++i) EXPECT_FALSE(opens(L"garbage"));
  }
  EXPECT_THAT(
      m_agent.texts(LogLevel::Error),
      ElementsAre(L"Key file " + m_path +
                  L": the file has 5 bytes, but a key has 32; next: restore the agent's key file"));
  EXPECT_FALSE(opens(L"garbage"));
  EXPECT_EQ(m_agent.messages().size(), 2U) << "the next list logs the error again";
}

TEST_F(KeyReport, TellsOnceForAListThatAKeyCannotBeRead) {
  test::writeFile(m_file, std::string(32, 'k'), 0600);
  test::FaultyFileSystem files;
  files.failEvery(test::FileCall::Open, EACCES);
  {
    const KeptKeys kept;
    for (int i = 0; i < 3; ++i) EXPECT_FALSE(opens(L"garbage"));
  }
  EXPECT_THAT(m_agent.texts(LogLevel::Error),
              ElementsAre(L"Key file " + m_path + L": cannot be opened: Permission denied"));
}

TEST_F(KeyReport, TellsOnceForAListThatTheKeyIsAnotherAgents) {
  const std::wstring text = encrypted(L"secret");
  const test::TestAgent other;
  test::writeFile(test::passwordKeyPath(other.dataDirectory()), std::string(32, 'o'), 0600);
  {
    const KeptKeys kept;
    for (int i = 0; i < 3; ++i) EXPECT_FALSE(opens(text));
  }
  EXPECT_EQ(other.messages().size(), 1U);
  EXPECT_THAT(other.texts(LogLevel::Error),
              ElementsAre(testing::StartsWith(L"3 protected passwords cannot be decrypted with ")));
}

// The list of logged errors has a fixed size.
TEST_F(KeyReport, TellsEachOfEightErrorsOnceForAListAndFurtherOnesEachTime) {
  std::vector<std::wstring> expected;
  {
    const KeptKeys kept;
    for (int turn = 0; turn < 2; ++turn) {
      for (int i = 0; i < 10; ++i) {
        const std::wstring text = L"error " + std::to_wstring(i);
        host::logErrorOnce(AString(text));
        if (turn == 0 || i >= 8) expected.push_back(text);
      }
    }
  }
  EXPECT_EQ(m_agent.texts(LogLevel::Error), expected);
  m_agent.clearLog();
  const KeptKeys next;
  host::logErrorOnce(AString(L"error 0"));
  EXPECT_EQ(m_agent.texts(LogLevel::Error).size(), 1U) << "the next list logs the error again";
}

}  // namespace
