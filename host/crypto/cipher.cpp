// A copy of a built-in cipher is what version 3 warns of; from version 4 on there is none.
#define OPENSSL_SUPPRESS_DEPRECATED
#include "host/crypto/cipher.h"

#include <openssl/opensslv.h>
#include <openssl/provider.h>

namespace host {
namespace {

#if OPENSSL_VERSION_MAJOR < 4

constexpr bool c_hasBuiltIn = true;
CipherPtr copyBuiltIn() { return CipherPtr(EVP_CIPHER_meth_dup(EVP_aes_256_gcm())); }
bool isCopy(const EVP_CIPHER* cipher) { return !EVP_CIPHER_get0_provider(cipher); }
void freeCopy(EVP_CIPHER* cipher) { EVP_CIPHER_meth_free(cipher); }

#else

constexpr bool c_hasBuiltIn = false;
CipherPtr copyBuiltIn() { return nullptr; }
bool isCopy(const EVP_CIPHER*) { return false; }
void freeCopy(EVP_CIPHER*) {}

#endif

// Whether the configuration, which is loaded for this, leaves ciphers to the default provider.
bool isDefaultInForce() {
  return !EVP_default_properties_is_fips_enabled(nullptr) &&
         OSSL_PROVIDER_available(nullptr, "default") == 1;
}

}  // namespace

void FreeCipher::operator()(EVP_CIPHER* cipher) const {
  isCopy(cipher) ? freeCopy(cipher) : EVP_CIPHER_free(cipher);
}

// Asked for by name, the first cipher of a process brings all others with it, which takes longer
// than reading a list of usual size. The default provider's own is the one that is built in.
CipherPtr findCipher() {
  if (c_hasBuiltIn && isDefaultInForce()) return copyBuiltIn();
  return CipherPtr(EVP_CIPHER_fetch(nullptr, "AES-256-GCM", nullptr));
}

}  // namespace host
