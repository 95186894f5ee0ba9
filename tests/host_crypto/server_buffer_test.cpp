#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <string>
#include <vector>

#include "host/common/base64.h"
#include "tests/host_crypto/encryption_object.h"
#include "tests/support/server_password.h"
#include "tests/support/test_agent.h"

namespace {

using test::bufferOf;
using test::CryptoBuffer;
using test::ENCRYPTION_TYPE_SERVER_BUFFER;
using test::EncryptionObject;

class ServerBuffer : public testing::Test {
 protected:
  ServerBuffer() { putKey('k'); }

  void putKey(char letter) {
    test::writeFile(test::serverKeyPath(m_agent.dataDirectory()), std::string(32, letter), 0600);
  }

  // The bytes that a management server would send.
  static std::string sealed(const std::string& clear) {
    std::vector<unsigned char> bytes;
    EXPECT_TRUE(host::fromBase64(test::sealServerPassword(clear), bytes));
    return std::string(bytes.begin(), bytes.end());
  }

  void expectRefused(const std::string& bytes, const std::string& what) {
    const EncryptionObject object(ENCRYPTION_TYPE_SERVER_BUFFER);
    ASSERT_TRUE(object);
    CryptoBuffer out = bufferOf("former content");
    EXPECT_EQ(object->decrypt_buffer(bufferOf(bytes), out), 0) << what;
    EXPECT_EQ(out.cpp_str(), "former content") << what;
  }

  test::TestAgent m_agent;
};

TEST_F(ServerBuffer, ComesBackAsTheServerSealedIt) {
  for (const std::string& clear :
       {std::string(), std::string("x"), std::string("a password"), std::string("a\0b", 3),
        std::string("\xFF\xFE not text"), std::string(100000, 'l')}) {
    const EncryptionObject object(ENCRYPTION_TYPE_SERVER_BUFFER);
    ASSERT_TRUE(object);
    CryptoBuffer out = bufferOf("former content");
    EXPECT_NE(object->decrypt_buffer(bufferOf(sealed(clear)), out), 0);
    EXPECT_EQ(out.cpp_str(), clear);
  }
}

TEST_F(ServerBuffer, WithAnyBitFlippedIsRefused) {
  const std::string bytes = sealed("a password");
  for (std::size_t bit = 0; bit < 8 * bytes.size(); ++bit) {
    std::string flipped = bytes;
    flipped[bit / 8] = static_cast<char>(flipped[bit / 8] ^ (1 << (bit % 8)));
    expectRefused(flipped, "bit " + std::to_string(bit));
  }
}

TEST_F(ServerBuffer, CutAnywhereIsRefused) {
  const std::string bytes = sealed("a password");
  for (std::size_t length = 0; length < bytes.size(); ++length) {
    expectRefused(bytes.substr(0, length), "first " + std::to_string(length));
    expectRefused(bytes.substr(bytes.size() - length), "last " + std::to_string(length));
  }
}

TEST_F(ServerBuffer, SealedUnderAnotherKeyIsRefused) {
  const std::string bytes = sealed("a password");
  putKey('o');
  expectRefused(bytes, "another key");
}

TEST_F(ServerBuffer, CannotBeHadWithoutTheServersKey) {
  ASSERT_EQ(::unlink(test::serverKeyPath(m_agent.dataDirectory()).c_str()), 0);
  EXPECT_FALSE(EncryptionObject(ENCRYPTION_TYPE_SERVER_BUFFER));
  EXPECT_FALSE(test::exists(test::serverKeyPath(m_agent.dataDirectory())));
  EXPECT_EQ(test::sealServerPassword("a password"), "");
  const std::vector<std::wstring> errors = m_agent.texts(LogLevel::Error);
  ASSERT_EQ(errors.size(), 2u);
  EXPECT_NE(errors[0].find(test::wide(test::serverKeyPath(m_agent.dataDirectory()))),
            std::wstring::npos);
}

// Shows: server-key
TEST_F(ServerBuffer, CannotBeHadWithAKeyOfAnotherSize) {
  const std::string path = test::serverKeyPath(m_agent.dataDirectory());
  for (const std::string& key :
       {std::string(31, 'k'), std::string(32, 'k') + "\n", std::string(64, 'k'), std::string()}) {
    test::writeFile(path, key, 0600);
    EXPECT_FALSE(EncryptionObject(ENCRYPTION_TYPE_SERVER_BUFFER)) << key.size();
    EXPECT_EQ(test::readFile(path), key);
  }
}

// Shows: server-key
TEST_F(ServerBuffer, KeyThatOthersMayReadIsClosedToThem) {
  const std::string path = test::serverKeyPath(m_agent.dataDirectory());
  test::writeFile(path, std::string(32, 'k'), 0644);
  EXPECT_TRUE(EncryptionObject(ENCRYPTION_TYPE_SERVER_BUFFER));
  struct stat info;
  ASSERT_EQ(::stat(path.c_str(), &info), 0);
  EXPECT_EQ(info.st_mode & 07777, 0600u);
}

TEST_F(ServerBuffer, ObjectDoesNotDoStrings) {
  const EncryptionObject object(ENCRYPTION_TYPE_SERVER_BUFFER);
  ASSERT_TRUE(object);
  std::wstring out = L"former content";
  EXPECT_EQ(object->encrypt_string(L"a password", out), 0);
  EXPECT_EQ(object->decrypt_string(test::wide(test::sealServerPassword("a password")), out), 0);
  EXPECT_EQ(out, L"former content");
}

TEST_F(ServerBuffer, IsDecryptedWithoutAWordInTheLog) {
  const EncryptionObject object(ENCRYPTION_TYPE_SERVER_BUFFER);
  ASSERT_TRUE(object);
  CryptoBuffer out = bufferOf("");
  EXPECT_NE(object->decrypt_buffer(bufferOf(sealed("a password")), out), 0);
  EXPECT_TRUE(m_agent.log().empty());
}

}  // namespace
