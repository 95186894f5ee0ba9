#include "host/crypto/cipher.h"

#include <openssl/err.h>

#include "host/crypto/libcrypto.h"

namespace host {

CipherPtr findCipher(std::string& reason) {
  ERR_clear_error();
  CipherPtr found(EVP_CIPHER_fetch(nullptr, "AES-256-GCM", nullptr));
  if (!found) reason = takeLibcryptoError();
  return found;
}

}  // namespace host
