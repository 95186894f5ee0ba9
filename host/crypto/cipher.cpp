#include "host/crypto/cipher.h"

#include <openssl/err.h>

#include <atomic>

#include "host/crypto/libcrypto.h"

namespace host {
namespace {

// Never released, because a thread may use it while the process ends.
std::atomic<const EVP_CIPHER*> g_cipher{nullptr};

}  // namespace

CipherPtr findCipher(std::string& reason) {
  ERR_clear_error();
  CipherPtr found(EVP_CIPHER_fetch(nullptr, "AES-256-GCM", nullptr));
  if (!found) reason = takeLibcryptoError();
  return found;
}

const EVP_CIPHER* sharedCipher(std::string& reason) {
  if (!isCipherFetched()) g_cipher = findCipher(reason).release();
  return g_cipher;
}

bool isCipherFetched() noexcept { return g_cipher != nullptr; }

}  // namespace host
