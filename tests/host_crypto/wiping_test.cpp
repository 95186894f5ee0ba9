#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <new>
#include <string>
#include <vector>

#include "host/common/base64.h"
#include "host/common/encoding.h"
#include "host/crypto/sealed_value.h"
#include "tests/host_crypto/encryption_object.h"
#include "tests/support/allocation/searched_new.h"
#include "tests/support/server_password.h"
#include "tests/support/test_agent.h"

namespace {

using test::ENCRYPTION_TYPE_PASSWORD;
using test::ENCRYPTION_TYPE_SERVER_BUFFER;
using test::EncryptionObject;

// Returns how many blocks with these bytes were released during the work.
template <typename Work>
int blocksGivenBackWith(const void* needle, std::size_t size, Work work) {
  const test::SearchedDeletes deletes(needle, size);
  work();
  return deletes.found();
}

const std::string c_secret = "a quite long secret";

template <typename Work>
void expectNoTraceOfTheSecret(Work work) {
  const std::wstring wide(c_secret.begin(), c_secret.end());
  EXPECT_EQ(0, blocksGivenBackWith(c_secret.data(), c_secret.size(), work)) << "as bytes";
  // Searches for a part of the text, because a growing string releases blocks with its first
  // characters.
  EXPECT_EQ(0, blocksGivenBackWith(wide.data(), 4 * sizeof(wchar_t), work)) << "as wide text";
}

// Wipes the caller's own copy, which is not tested here.
void wipe(std::wstring& text) { std::fill(text.begin(), text.end(), L' '); }

TEST(CryptoMemory, WatchFindsWhatIsNotWiped) {
  EXPECT_EQ(1, blocksGivenBackWith(c_secret.data(), c_secret.size(), [] {
              const std::vector<char> copy(c_secret.begin(), c_secret.end());
            }));
}

TEST(CryptoMemory, HoldsNoPasswordAfterItWasEncryptedOrDecrypted) {
  const test::TestAgent agent;
  const std::wstring clear(c_secret.begin(), c_secret.end());
  std::wstring text;
  std::wstring result;
  expectNoTraceOfTheSecret([&] {
    const EncryptionObject object(ENCRYPTION_TYPE_PASSWORD);
    ASSERT_TRUE(object && object->encrypt_string(clear, text));
    ASSERT_TRUE(object->decrypt_string(text, result));
  });
  EXPECT_EQ(result, clear);
}

TEST(CryptoMemory, HoldsNoPasswordAfterAServerBufferWasDecrypted) {
  const test::TestAgent agent;
  test::writeFile(test::serverKeyPath(agent.dataDirectory()), std::string(32, 'k'), 0600);
  std::vector<unsigned char> sealed;
  ASSERT_TRUE(host::fromBase64(test::sealServerPassword(c_secret), sealed));
  int result = 0;
  expectNoTraceOfTheSecret([&] {
    const EncryptionObject object(ENCRYPTION_TYPE_SERVER_BUFFER);
    const test::CryptoBuffer in(static_cast<unsigned int>(sealed.size()), sealed.data());
    test::CryptoBuffer out(0, nullptr);
    result = object->decrypt_buffer(in, out);
    out.assign(1, reinterpret_cast<const unsigned char*>("x"));
  });
  EXPECT_NE(result, 0);
}

// A server may encrypt any bytes as a password.
TEST(CryptoMemory, HoldsNoPasswordThatWasMadeValid) {
  const std::string clear = c_secret + "\xFF\xFF\xFF" + c_secret;
  const std::wstring expected = test::wide(c_secret) + L"\uFFFD\uFFFD\uFFFD" + test::wide(c_secret);
  bool isRight = true;
  expectNoTraceOfTheSecret([&] {
    std::wstring result = host::toWide(clear.data(), clear.size());
    isRight = isRight && result == expected;
    wipe(result);
  });
  EXPECT_TRUE(isRight);
}

TEST(CryptoMemory, HoldsNoPasswordThatIsNoText) {
  const test::TestAgent agent;
  std::wstring text;
  ASSERT_TRUE(EncryptionObject(ENCRYPTION_TYPE_PASSWORD)->encrypt_string(L"", text));
  const std::string key = test::readFile(test::passwordKeyPath(agent.dataDirectory()));
  const std::string clear = c_secret + "\xFF";
  std::vector<unsigned char> sealed;
  ASSERT_TRUE(
      host::Sealer(host::SecretBytes(key.begin(), key.end()))
          .seal(reinterpret_cast<const unsigned char*>(clear.data()), clear.size(), sealed));
  const std::wstring in = test::wide(host::toBase64(sealed));
  expectNoTraceOfTheSecret(
      [&] { EXPECT_FALSE(EncryptionObject(ENCRYPTION_TYPE_PASSWORD)->decrypt_string(in, text)); });
}

TEST(CryptoMemory, HoldsNoPasswordThatTheOutputHasNoRoomFor) {
  const test::TestAgent agent;
  const std::wstring clear = test::wide(c_secret);
  std::wstring text;
  ASSERT_TRUE(EncryptionObject(ENCRYPTION_TYPE_PASSWORD)->encrypt_string(clear, text));
  const EncryptionObject object(ENCRYPTION_TYPE_PASSWORD);
  std::wstring again;
  ASSERT_TRUE(object->decrypt_string(text, again));
  int refused = 0;
  bool done = false;
  expectNoTraceOfTheSecret([&] {
    for (int before = 0; !done; ++before) {
      std::wstring out;
      try {
        const test::FailingNew failing(before);
        done = object->decrypt_string(text, out) != 0;
      } catch (const std::bad_alloc&) {
        ++refused;
      }
      wipe(out);
    }
    done = false;
  });
  EXPECT_GT(refused, 3);
}

TEST(CryptoMemory, HoldsNoSecretThatABufferHeld) {
  expectNoTraceOfTheSecret([] {
    test::CryptoBuffer buffer = test::bufferOf(c_secret);
    buffer.assign(static_cast<unsigned int>(c_secret.size()),
                  reinterpret_cast<const unsigned char*>(c_secret.data()));
  });
}

TEST(CryptoMemory, HoldsNoKeyAfterTheKeyWasMadeOrReplaced) {
  const test::TestAgent agent;
  const std::string path = test::passwordKeyPath(agent.dataDirectory());
  const std::string key = "this key has 32 bytes, no more,.";
  test::writeFile(path, key, 0600);
  EXPECT_EQ(0, blocksGivenBackWith(key.data(), key.size(), [&] {
              EXPECT_TRUE(EncryptionObject(ENCRYPTION_TYPE_PASSWORD));
              EXPECT_EQ(::unlink(path.c_str()), 0);
              EXPECT_TRUE(EncryptionObject(ENCRYPTION_TYPE_PASSWORD));
            }));
}

TEST(CryptoMemory, IsNotNeededToGiveAnObjectBack) {
  const test::TestAgent agent;
  auto* const service = korvel_com::ZQ::crypto::CryptShim::instance();
  std::vector<korvel_com::ZQ::crypto::IEncryption*> objects(20);
  for (auto*& object : objects) {
    object = service->create_encryption_object(ENCRYPTION_TYPE_PASSWORD);
    ASSERT_NE(object, nullptr);
  }
  std::size_t givenBack = 0;
  try {
    const test::FailingNew failing(0);
    for (auto* object : objects) {
      service->destroy_encryption_object(object);
      ++givenBack;
    }
  } catch (const std::bad_alloc&) {
  }
  EXPECT_EQ(givenBack, objects.size());
}

}  // namespace
