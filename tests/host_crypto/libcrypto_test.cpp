#include "host/crypto/libcrypto.h"

#include <gtest/gtest.h>
#include <openssl/err.h>
#include <openssl/evp.h>
#include <openssl/rand.h>
#include <pthread.h>

#include <algorithm>
#include <new>
#include <string>
#include <thread>
#include <vector>

#include "host/crypto/sealed_value.h"
#include "tests/support/child_process.h"

// The error texts of libcrypto, and processes and threads that use it.
namespace {

std::string takeError() {
  const host::LibcryptoUse use;
  return host::takeLibcryptoError();
}

void failForWantOfMemory() { ERR_raise(ERR_LIB_EVP, ERR_R_MALLOC_FAILURE); }

class LibcryptoError : public testing::Test {
 protected:
  LibcryptoError() { ERR_clear_error(); }
  ~LibcryptoError() override { ERR_clear_error(); }
};

TEST_F(LibcryptoError, IsTheLastReasonAndIsForgotten) {
  ERR_raise(ERR_LIB_EVP, EVP_R_NO_KEY_SET);
  ERR_raise(ERR_LIB_EVP, EVP_R_UNSUPPORTED_CIPHER);
  EXPECT_EQ(takeError(), "unsupported cipher");
  EXPECT_EQ(takeError(), "no reason given");
}

TEST_F(LibcryptoError, HasTheDetailsThatThereAre) {
  ERR_raise_data(ERR_LIB_EVP, EVP_R_UNSUPPORTED_CIPHER, "%s", "AES-256-GCM");
  EXPECT_EQ(takeError(), "unsupported cipher (AES-256-GCM)");
  ERR_raise_data(ERR_LIB_EVP, EVP_R_UNSUPPORTED_CIPHER, "%s", "");
  EXPECT_EQ(takeError(), "unsupported cipher");
}

TEST_F(LibcryptoError, WithoutAReasonIsItsNumber) {
  ERR_raise(ERR_LIB_USER, 77);
  const std::string number = std::to_string(ERR_peek_error());
  EXPECT_EQ(takeError(), "error " + number);
  ERR_raise_data(ERR_LIB_USER, 77, "%s", "details");
  EXPECT_EQ(takeError(), "error " + number + " (details)");
}

TEST_F(LibcryptoError, ForWantOfMemoryIsThrownWhateverComesBeforeAndBehindIt) {
  for (const int before : {0, 1}) {
    for (const int behind : {0, 1, 2}) {
      if (before) ERR_raise(ERR_LIB_EVP, EVP_R_NO_KEY_SET);
      failForWantOfMemory();
      if (behind == 1) ERR_raise(ERR_LIB_EVP, EVP_R_UNSUPPORTED_CIPHER);
      if (behind == 2) failForWantOfMemory();
      EXPECT_THROW(takeError(), std::bad_alloc) << before << behind;
      EXPECT_EQ(takeError(), "no reason given") << "the error remains in the queue";
    }
  }
}

bool sealsAndOpens() {
  const unsigned char clear[] = "secret";
  host::Sealer sealer(host::SecretBytes(host::c_keySize, 'k'));
  std::vector<unsigned char> sealed;
  host::SecretBytes opened;
  return sealer.seal(clear, sizeof clear, sealed) &&
         sealer.open(sealed.data(), sealed.size(), opened) &&
         std::equal(opened.begin(), opened.end(), clear, clear + sizeof clear);
}

// The process already uses libcrypto, and other code has created all thread-specific keys.
CHILD_PROCESS(sealWithoutThreadKeys) {
  unsigned char byte = 0;
  if (RAND_bytes(&byte, 1) != 1 || RAND_priv_bytes(&byte, 1) != 1) return 2;
  pthread_key_t key;
  int taken = 0;
  while (::pthread_key_create(&key, nullptr) == 0) ++taken;
  bool isGood = sealsAndOpens();
  std::thread([&] { isGood = sealsAndOpens() && isGood; }).join();
  channel.send(std::to_string(taken));
  return isGood ? 0 : 1;
}

TEST(LibcryptoUse, NeedsNoThreadKeyOfItsOwn) {
  test::ChildProcess child("sealWithoutThreadKeys", {});
  EXPECT_GT(std::stoi("0" + child.receive()), 0);
  EXPECT_EQ(child.wait(), 0);
}

}  // namespace
