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

// Fetches AES-256-GCM from the provider that the configuration of libcrypto determines. Returns
// null, with the reason in `reason`, if there is none. Throws std::bad_alloc. The caller must hold
// a LibcryptoUse.
CipherPtr findCipher(std::string& reason) HOST_REQUIRES(c_libcryptoMutex);

// Returns the cipher, which the first call in a process fetches, because a fetch takes longer than
// any other step. Has the contract of findCipher.
const EVP_CIPHER* sharedCipher(std::string& reason) HOST_REQUIRES(c_libcryptoMutex);

// Returns whether sharedCipher has fetched the cipher. Any thread; needs no lock.
bool isCipherFetched() noexcept;

}  // namespace host

#endif
