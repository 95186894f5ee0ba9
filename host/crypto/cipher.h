#ifndef HOST_CRYPTO_CIPHER_H
#define HOST_CRYPTO_CIPHER_H

#include <openssl/evp.h>

#include <memory>
#include <string>

#include "host/process/fork_lock.h"

namespace host {

struct FreeCipher {
  void operator()(EVP_CIPHER* cipher) const { EVP_CIPHER_free(cipher); }
};
using CipherPtr = std::unique_ptr<EVP_CIPHER, FreeCipher>;

// AES-256-GCM by its name, as the configuration of libcrypto has it. Null when that has none; then
// `reason` says why. Throws std::bad_alloc. The caller must hold a LibcryptoUse.
CipherPtr findCipher(std::string& reason) HOST_REQUIRES(c_libcryptoMutex);

}  // namespace host

#endif
