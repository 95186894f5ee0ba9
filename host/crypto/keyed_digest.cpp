#include "host/crypto/keyed_digest.h"

#include <openssl/err.h>
#include <openssl/evp.h>

#include <memory>
#include <new>
#include <string>

#include "host/crypto/cipher.h"
#include "host/crypto/libcrypto.h"
#include "host/process/random_bytes.h"
#include "host/process/secret.h"

namespace host {
namespace {

constexpr std::size_t c_keyBytes = 32;
// The same for every digest. This is safe because digests stay in the process.
constexpr unsigned char c_nonce[12] = {};

// The object with the key. Never destroyed, because a thread may use it while the process ends.
EVP_CIPHER_CTX* g_context HOST_GUARDED_BY(c_libcryptoMutex) = nullptr;
bool g_hasNoCipher HOST_GUARDED_BY(c_libcryptoMutex) = false;

struct FreeContext {
  void operator()(EVP_CIPHER_CTX* context) const { EVP_CIPHER_CTX_free(context); }
};

bool prepare() HOST_REQUIRES(c_libcryptoMutex) {
  if (g_context) return true;
  if (g_hasNoCipher) return false;
  std::string reason;
  const EVP_CIPHER* const cipher = sharedCipher(reason);
  g_hasNoCipher = !cipher;
  if (!cipher) return false;
  std::unique_ptr<EVP_CIPHER_CTX, FreeContext> context(EVP_CIPHER_CTX_new());
  if (!context) throw std::bad_alloc();
  SecretBytes key(c_keyBytes);
  if (drawRandomBytes(key.data(), key.size()) != 0 ||
      EVP_EncryptInit_ex2(context.get(), cipher, key.data(), c_nonce, nullptr) != 1) {
    return false;
  }
  g_context = context.release();
  return true;
}

bool digest(const std::array<unsigned char, 2>& head, const unsigned char* bytes, int size,
            KeyedDigest& result) HOST_REQUIRES(c_libcryptoMutex) {
  int done = 0;
  unsigned char nothing = 0;
  // The bytes are authenticated and not encrypted.
  return EVP_EncryptInit_ex2(g_context, nullptr, nullptr, c_nonce, nullptr) == 1 &&
         EVP_EncryptUpdate(g_context, nullptr, &done, head.data(), static_cast<int>(head.size())) ==
             1 &&
         EVP_EncryptUpdate(g_context, nullptr, &done, bytes, size) == 1 &&
         EVP_EncryptFinal_ex(g_context, &nothing, &done) == 1 &&
         EVP_CIPHER_CTX_ctrl(g_context, EVP_CTRL_AEAD_GET_TAG, static_cast<int>(result.size()),
                             result.data()) == 1;
}

}  // namespace

std::optional<KeyedDigest> keyedDigest(const std::array<unsigned char, 2>& head, const char* bytes,
                                       std::size_t size) {
  if (size > c_longestDigested) return std::nullopt;
  const LibcryptoUse use;
  KeyedDigest result;
  if (prepare() &&
      digest(head, reinterpret_cast<const unsigned char*>(bytes), static_cast<int>(size), result)) {
    return result;
  }
  ERR_clear_error();
  return std::nullopt;
}

}  // namespace host
