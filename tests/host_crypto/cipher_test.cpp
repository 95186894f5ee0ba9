#include "host/crypto/cipher.h"

#include <gtest/gtest.h>
#include <openssl/crypto.h>
#include <openssl/provider.h>

#include <cstdlib>
#include <new>
#include <string>

#include "host/crypto/libcrypto.h"
#include "tests/support/child_process.h"

namespace {

using host::CipherPtr;
using Bytes = std::basic_string<unsigned char>;

// Ciphertext and tag.
Bytes sealed(const EVP_CIPHER* cipher, const Bytes& clear) {
  const Bytes key(32, 7);
  const Bytes nonce(12, 9);
  Bytes out(clear.size() + 16, 0);
  int done = 0;
  EVP_CIPHER_CTX* const context = EVP_CIPHER_CTX_new();
  EXPECT_EQ(EVP_CipherInit_ex2(context, cipher, key.data(), nonce.data(), 1, nullptr), 1);
  EXPECT_EQ(EVP_CipherUpdate(context, nullptr, &done, key.data(), 1), 1);
  EXPECT_EQ(
      EVP_CipherUpdate(context, out.data(), &done, clear.data(), static_cast<int>(clear.size())),
      1);
  EXPECT_EQ(EVP_CipherFinal_ex(context, out.data() + clear.size(), &done), 1);
  EXPECT_EQ(EVP_CIPHER_CTX_ctrl(context, EVP_CTRL_AEAD_GET_TAG, 16, out.data() + clear.size()), 1);
  EVP_CIPHER_CTX_free(context);
  return out;
}

CipherPtr find() {
  const host::LibcryptoUse use;
  std::string reason;
  CipherPtr found = host::findCipher(reason);
  EXPECT_EQ(reason.empty(), found != nullptr) << reason;
  return found;
}

bool isOfFipsProvider(const EVP_CIPHER* cipher) {
  const OSSL_PROVIDER* const provider = EVP_CIPHER_get0_provider(cipher);
  return provider && std::string(OSSL_PROVIDER_get0_name(provider)) == "fips";
}

TEST(Cipher, MakesWhatLibcryptosOwnMakes) {
  const CipherPtr found = find();
  ASSERT_TRUE(found);
  for (const std::size_t size : {1, 15, 16, 17, 4096}) {
    const Bytes clear(size, 'x');
    EXPECT_EQ(sealed(found.get(), clear), sealed(EVP_aes_256_gcm(), clear)) << size;
  }
}

// Most machines have no FIPS provider. The cipher must then be missing and must not come from
// another provider.
TEST(Cipher, IsTheOneOfTheFipsProviderOrNoneWhenTheConfigurationAsksForFips) {
  ASSERT_EQ(EVP_default_properties_enable_fips(nullptr, 1), 1);
  const CipherPtr found = find();
  EXPECT_TRUE(!found || isOfFipsProvider(found.get()));
  ASSERT_EQ(EVP_default_properties_enable_fips(nullptr, 0), 1);
  EXPECT_TRUE(find());
}

TEST(CipherDeathTest, IsNoneWhenTheConfigurationLeavesTheDefaultProviderOut) {
  testing::FLAGS_gtest_death_test_style = "threadsafe";
  EXPECT_EXIT(
      {
        const bool isAlone = OSSL_PROVIDER_load(nullptr, "null") != nullptr;
        std::_Exit(isAlone && !find() ? 0 : 1);
      },
      testing::ExitedWithCode(0), "");
}

// The number of the first allocation of libcrypto that fails. At 0 all fail; below 0 none fails.
long g_allocationsLeft = -1;

bool isOutOfMemory() {
  if (g_allocationsLeft > 0) --g_allocationsLeft;
  return g_allocationsLeft == 0;
}
void* allocate(std::size_t size, const char*, int) {
  return isOutOfMemory() ? nullptr : std::malloc(size);
}
void* reallocate(void* memory, std::size_t size, const char*, int) {
  return isOutOfMemory() ? nullptr : std::realloc(memory, size);
}
void release(void* memory, const char*, int) { std::free(memory); }

// Fetches the cipher until an attempt succeeds. Sends the number of attempts that failed for lack
// of memory.
CHILD_PROCESS(findCipherWithoutMemory) {
  if (CRYPTO_set_mem_functions(allocate, reallocate, release) != 1) return 2;
  const host::LibcryptoUse use;
  EVP_CIPHER_free(EVP_CIPHER_fetch(nullptr, "AES-128-CBC", nullptr));
  std::string reason;
  CipherPtr found;
  int refusals = 0;
  for (long count = 1; !found && reason.empty(); ++count) {
    g_allocationsLeft = count;
    try {
      found = host::findCipher(reason);
    } catch (const std::bad_alloc&) {
      ++refusals;
    }
    g_allocationsLeft = -1;
  }
  channel.send(std::to_string(refusals));
  channel.send(found ? "found" : "none: " + reason);
  return 0;
}

TEST(Cipher, IsNotCalledMissingForWantOfMemory) {
  test::ChildProcess child("findCipherWithoutMemory", {});
  EXPECT_GT(std::stoi("0" + child.receive()), 0);
  EXPECT_EQ(child.receive(), "found");
  EXPECT_EQ(child.wait(), 0);
}

}  // namespace
