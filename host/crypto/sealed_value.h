#ifndef HOST_CRYPTO_SEALED_VALUE_H
#define HOST_CRYPTO_SEALED_VALUE_H

#include <openssl/evp.h>

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

#include "host/crypto/nonces.h"
#include "host/process/secret.h"
#include "platform/export.h"

// A sealed value is what a clear value becomes under a 32-byte key with AES-256-GCM:
//
//   version (1 byte, 1) | nonce (12 bytes, random) | ciphertext (as long as the clear) | tag (16)
//
// The version is authenticated along with the rest: a value of which any bit was changed, or that
// was cut or made longer, does not open.
namespace host {

constexpr std::size_t c_keySize = 32;

// Seals and opens values under one key. Setting up costs about as much as three short values, so an
// object is worth keeping. One object is used by one thread at a time. The key is wiped with it.
class Sealer {
 public:
  // `key` holds c_keySize bytes. Throws std::bad_alloc.
  explicit Sealer(const SecretBytes& key);
  ~Sealer();
  Sealer(const Sealer&) = delete;
  Sealer& operator=(const Sealer&) = delete;

  // Why this one neither seals nor opens anything: libcrypto does not offer the cipher, or the key
  // is not a key. Empty when it does.
  const std::string& refusal() const { return m_refusal; }

  // Returns false and leaves `sealed` unchanged when the system has no random numbers to give or
  // the value is too long for the cipher (2 GiB).
  bool seal(const unsigned char* clear, std::size_t length, std::vector<unsigned char>& sealed);

  // Returns false and leaves `clear` unchanged for anything that was not sealed with this key.
  bool open(const unsigned char* sealed, std::size_t length, SecretBytes& clear);

 private:
  struct Free {
    void operator()(EVP_CIPHER_CTX* context) const { EVP_CIPHER_CTX_free(context); }
  };
  std::string m_refusal;
  std::unique_ptr<EVP_CIPHER_CTX, Free> m_context;  // null when there is a refusal
  Nonces m_nonces;
};

// Whether the sealer refuses all; then logs why, once in a span.
bool reportRefusal(const Sealer& sealer);

// What a management server does to a password before it sends it: `clear` (UTF-8) sealed under the
// server key of the agent in force, as base64 text. Empty when the key cannot be had. Any thread.
PLATFORM_API std::string sealServerPassword(const std::string& clear);

}  // namespace host

#endif
