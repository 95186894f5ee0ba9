#ifndef HOST_CRYPTO_SEALED_VALUE_H
#define HOST_CRYPTO_SEALED_VALUE_H

#include <openssl/evp.h>

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

#include "host/crypto/nonces.h"
#include "host/process/secret.h"

// A sealed value is a clear value that was encrypted with a 32-byte key and AES-256-GCM:
//
//   version (1 byte, value 1) | nonce (12 random bytes) | ciphertext | tag (16 bytes)
//
// The ciphertext is as long as the clear value. The version is authenticated together with the
// rest. A value with any changed, missing or additional bit cannot be decrypted.
namespace host {

constexpr std::size_t c_keySize = 32;

// Encrypts and decrypts values with one key. Creating an object takes about as long as encrypting
// three short values, so callers should keep it. One object must not be used by two threads at the
// same time. The destructor wipes the key.
class Sealer {
 public:
  // `key` must have c_keySize bytes. Throws std::bad_alloc.
  explicit Sealer(const SecretBytes& key);
  ~Sealer();
  Sealer(const Sealer&) = delete;
  Sealer& operator=(const Sealer&) = delete;

  // Returns why this object cannot encrypt or decrypt: libcrypto does not offer the cipher, or the
  // key is not valid. Returns an empty text if the object can be used.
  const std::string& refusal() const { return m_refusal; }

  // Encrypts a value. Returns false and leaves `sealed` unchanged when the system has no random
  // numbers or the value is too long for the cipher (2 GiB).
  bool seal(const unsigned char* clear, std::size_t length, std::vector<unsigned char>& sealed);

  // Decrypts a value. Returns false and leaves `clear` unchanged if the value was not encrypted
  // with this key.
  bool open(const unsigned char* sealed, std::size_t length, SecretBytes& clear);

 private:
  struct Free {
    void operator()(EVP_CIPHER_CTX* context) const { EVP_CIPHER_CTX_free(context); }
  };
  std::string m_refusal;
  std::unique_ptr<EVP_CIPHER_CTX, Free> m_context;  // null if refusal() is not empty
  Nonces m_nonces;
};

// Returns whether the sealer cannot encrypt or decrypt. The reason is logged, once in a span.
bool reportRefusal(const Sealer& sealer);

}  // namespace host

#endif
