// The functions that replace the source of random numbers are deprecated.
#define OPENSSL_SUPPRESS_DEPRECATED

#include <gtest/gtest.h>
#include <openssl/rand.h>

#include <climits>
#include <string>
#include <vector>

#include "host/agent.h"
#include "host/crypto/key_file.h"
#include "host/crypto/sealed_value.h"
#include "host/detached_agent.h"
#include "tests/host_crypto/encryption_object.h"
#include "tests/support/faulty_file_system.h"
#include "tests/support/server_password.h"
#include "tests/support/test_agent.h"

namespace {

using host::SecretBytes;
using test::EncryptionObject;
using Bytes = std::vector<unsigned char>;

// For the life of the object, the system gives no random numbers.
class NoRandomNumbers {
 public:
  NoRandomNumbers() : m_before(RAND_get_rand_method()) {
    m_none.bytes = [](unsigned char*, int) { return 0; };
    EXPECT_EQ(RAND_set_rand_method(&m_none), 1);
  }
  ~NoRandomNumbers() { EXPECT_EQ(RAND_set_rand_method(m_before), 1); }
  NoRandomNumbers(const NoRandomNumbers&) = delete;
  NoRandomNumbers& operator=(const NoRandomNumbers&) = delete;

 private:
  const RAND_METHOD* m_before;
  RAND_METHOD m_none{};
};

TEST(WithoutRandomNumbers, NothingIsSealedAndTheOutputStays) {
  host::Sealer sealer(SecretBytes(host::c_keySize, 'k'));
  const Bytes old = {'o', 'l', 'd'};
  Bytes sealed = old;
  {
    const NoRandomNumbers none;
    EXPECT_FALSE(sealer.seal(old.data(), old.size(), sealed));
  }
  EXPECT_EQ(sealed, old);
  EXPECT_TRUE(sealer.seal(old.data(), old.size(), sealed)) << "random numbers are available again";
  EXPECT_NE(sealed, old);
}

TEST(WithoutRandomNumbers, APasswordIsNotProtectedAndTheOutputStays) {
  const test::TestAgent agent;
  const EncryptionObject object(test::ENCRYPTION_TYPE_PASSWORD);
  ASSERT_TRUE(object);
  std::wstring text = L"old";
  {
    const NoRandomNumbers none;
    EXPECT_EQ(object->encrypt_string(L"secret", text), 0);
  }
  EXPECT_EQ(text, L"old");
  EXPECT_NE(object->encrypt_string(L"secret", text), 0);
}

TEST(WithoutRandomNumbers, NoKeyIsMadeAndTheReasonIsLogged) {
  const test::TestAgent agent;
  const std::string path = test::passwordKeyPath(agent.dataDirectory());
  {
    const NoRandomNumbers none;
    EXPECT_FALSE(EncryptionObject(test::ENCRYPTION_TYPE_PASSWORD));
  }
  EXPECT_EQ(agent.texts(LogLevel::Error),
            (std::vector<std::wstring>{L"Key file " + test::wide(path) +
                                       L": no random numbers are available to create it"}));
  EXPECT_TRUE(test::snapshot(agent.dataDirectory() + "/keystore").empty());
  EXPECT_TRUE(EncryptionObject(test::ENCRYPTION_TYPE_PASSWORD))
      << "random numbers are available again";
}

TEST(WithoutRandomNumbers, ADetachedAgentWithoutAKeyFileHasNoKey) {
  const test::TestAgent agent;
  host::setDetachedAgent(host::agent());
  {
    const NoRandomNumbers none;
    EXPECT_FALSE(EncryptionObject(test::ENCRYPTION_TYPE_PASSWORD));
  }
  EXPECT_TRUE(EncryptionObject(test::ENCRYPTION_TYPE_PASSWORD))
      << "random numbers are available again";
  EXPECT_FALSE(test::exists(test::passwordKeyPath(agent.dataDirectory())));
}

TEST(WithoutRandomNumbers, AServerPasswordIsEmpty) {
  const test::TestAgent agent;
  test::writeFile(test::serverKeyPath(agent.dataDirectory()), std::string(32, 'k'), 0600);
  {
    const NoRandomNumbers none;
    EXPECT_EQ(test::sealServerPassword("secret"), "");
  }
  EXPECT_NE(test::sealServerPassword("secret"), "");
}

TEST(SealedValueLength, OverWhatTheCipherTakesIsRefusedBeforeAnyByteIsLookedAt) {
  host::Sealer sealer(SecretBytes(host::c_keySize, 'k'));
  const unsigned char byte = 1;
  Bytes sealed = {'o', 'l', 'd'};
  EXPECT_FALSE(sealer.seal(&byte, std::size_t{INT_MAX}, sealed));
  EXPECT_EQ(sealed, (Bytes{'o', 'l', 'd'}));
  SecretBytes clear = {'o', 'l', 'd'};
  EXPECT_FALSE(sealer.open(&byte, std::size_t{INT_MAX} + 1, clear));
  EXPECT_EQ(clear, (SecretBytes{'o', 'l', 'd'}));
}

TEST(KeyMaking, LeavesAKeyAloneThatAnotherProcessMadeAMomentBefore) {
  const test::TestAgent agent;
  const std::string path = test::passwordKeyPath(agent.dataDirectory());
  const std::string other(32, 'o');
  test::FaultyFileSystem files;
  files.beforeEach([&](test::FileCall call) {
    if (call == test::FileCall::Link) test::writeFile(path, other, 0600);
  });
  EXPECT_TRUE(EncryptionObject(test::ENCRYPTION_TYPE_PASSWORD));
  EXPECT_EQ(test::readFile(path), other);
  EXPECT_EQ(test::snapshot(agent.dataDirectory() + "/keystore").size(), 1U);
  EXPECT_TRUE(agent.texts(LogLevel::Error).empty());
}

TEST(SealerKey, OfAnotherSizeSealsAndOpensNothing) {
  const unsigned char clear[] = "clear";
  Bytes sealed;
  ASSERT_TRUE(host::Sealer(SecretBytes(host::c_keySize, 'k')).seal(clear, sizeof clear, sealed));
  for (const std::size_t size : {std::size_t{0}, host::c_keySize - 1, host::c_keySize + 1}) {
    host::Sealer sealer(SecretBytes(size, 'k'));
    EXPECT_EQ(sealer.refusal(), "the key has a wrong size") << size;
    Bytes none;
    SecretBytes opened;
    EXPECT_FALSE(sealer.seal(clear, sizeof clear, none)) << size;
    EXPECT_FALSE(sealer.open(sealed.data(), sealed.size(), opened)) << size;
  }
}

TEST(KeyFileState, IsThatOfTheSameFileOnlyWhenNothingDiffers) {
  host::KeyFileState state;
  state.device = 1;
  state.inode = 2;
  state.size = 3;
  state.changedNs = 4;
  host::KeyFileState other = state;
  other.settled = true;
  EXPECT_TRUE(state.sameFile(other)) << "the time of the read is not part of the comparison";
  ++(other = state).device;
  EXPECT_FALSE(state.sameFile(other));
  ++(other = state).inode;
  EXPECT_FALSE(state.sameFile(other));
  ++(other = state).size;
  EXPECT_FALSE(state.sameFile(other));
  ++(other = state).changedNs;
  EXPECT_FALSE(state.sameFile(other));
}

}  // namespace
