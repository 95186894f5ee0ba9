#ifndef HOST_CRYPTO_CIPHER_H
#define HOST_CRYPTO_CIPHER_H

#include <openssl/evp.h>

#include <memory>

namespace host {

struct FreeCipher {
  void operator()(EVP_CIPHER* cipher) const;
};
using CipherPtr = std::unique_ptr<EVP_CIPHER, FreeCipher>;

// AES-256-GCM as the configuration of libcrypto wants it; null when that has none.
CipherPtr findCipher();

}  // namespace host

#endif
