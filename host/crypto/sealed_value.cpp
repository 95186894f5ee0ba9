#include "host/crypto/sealed_value.h"

#include <openssl/err.h>

#include <algorithm>
#include <climits>
#include <new>
#include <utility>

#include "host/crypto/cipher.h"
#include "host/crypto/key_span.h"
#include "host/crypto/libcrypto.h"

namespace host {
namespace {

constexpr unsigned char c_version = 1;
constexpr std::size_t c_versionSize = 1;
constexpr std::size_t c_tagSize = 16;
constexpr std::size_t c_headSize = c_versionSize + c_nonceSize;
constexpr std::size_t c_overhead = c_headSize + c_tagSize;
constexpr std::size_t c_longest = INT_MAX - c_overhead;  // the cipher counts bytes in int

bool refuse(const std::string& reason) {
  logErrorOnce(AString(
      ("A password cannot be encrypted: " + reason + "; the list is written with an empty password")
          .c_str()));
  return false;
}

}  // namespace

Sealer::Sealer(const SecretBytes& key) {
  const LibcryptoUse use;
  const EVP_CIPHER* const found = sharedCipher(m_refusal);
  if (!found) return;
  if (key.size() != c_keySize) {
    m_refusal = "the key has a wrong size";
    return;
  }
  m_context.reset(EVP_CIPHER_CTX_new());
  if (!m_context) throw std::bad_alloc();
  ERR_clear_error();
  if (EVP_CipherInit_ex2(m_context.get(), found, key.data(), nullptr, 1, nullptr) != 1) {
    m_context.reset();
    m_refusal = takeLibcryptoError();
  }
}

Sealer::~Sealer() {
  const LibcryptoUse use;
  m_context.reset();
}

bool Sealer::seal(const unsigned char* clear, std::size_t length,
                  std::vector<unsigned char>& sealed) {
  if (!m_context) return false;
  if (length > c_longest) return refuse("it is too long");
  std::vector<unsigned char> result(c_overhead + length);
  result[0] = c_version;
  unsigned char* const nonce = result.data() + c_versionSize;
  unsigned char* const body = result.data() + c_headSize;
  EVP_CIPHER_CTX* const context = m_context.get();
  if (!m_nonces.next(nonce)) return refuse("there are no random numbers");
  const LibcryptoUse use;
  ERR_clear_error();
  int done = 0;
  if (EVP_CipherInit_ex2(context, nullptr, nullptr, nonce, 1, nullptr) != 1 ||
      EVP_CipherUpdate(context, nullptr, &done, result.data(), c_versionSize) != 1 ||
      (length > 0 &&
       EVP_CipherUpdate(context, body, &done, clear, static_cast<int>(length)) != 1) ||
      EVP_CipherFinal_ex(context, body + length, &done) != 1 ||
      EVP_CIPHER_CTX_ctrl(context, EVP_CTRL_AEAD_GET_TAG, c_tagSize, body + length) != 1) {
    return refuse(takeLibcryptoError());
  }
  sealed = std::move(result);
  return true;
}

bool Sealer::open(const unsigned char* sealed, std::size_t length, SecretBytes& clear) {
  if (!m_context || length < c_overhead || length - c_overhead > c_longest ||
      sealed[0] != c_version) {
    return false;
  }
  const std::size_t bodySize = length - c_overhead;
  const unsigned char* const body = sealed + c_headSize;
  unsigned char tag[c_tagSize];
  std::copy(body + bodySize, body + bodySize + c_tagSize, tag);
  // One byte more than the value, so that the buffer of an empty value is not empty.
  SecretBytes result(bodySize + 1);
  EVP_CIPHER_CTX* const context = m_context.get();
  const LibcryptoUse use;
  int done = 0;
  if (EVP_CipherInit_ex2(context, nullptr, nullptr, sealed + c_versionSize, 0, nullptr) != 1 ||
      EVP_CIPHER_CTX_ctrl(context, EVP_CTRL_AEAD_SET_TAG, c_tagSize, tag) != 1 ||
      EVP_CipherUpdate(context, nullptr, &done, sealed, c_versionSize) != 1 ||
      (bodySize > 0 &&
       EVP_CipherUpdate(context, result.data(), &done, body, static_cast<int>(bodySize)) != 1) ||
      EVP_CipherFinal_ex(context, result.data() + bodySize, &done) != 1) {
    return false;
  }
  result.resize(bodySize);
  clear = std::move(result);
  return true;
}

bool reportRefusal(const Sealer& sealer) {
  if (sealer.refusal().empty()) return false;
  const std::string text = "AES-256-GCM is not available from libcrypto: " + sealer.refusal() +
                           "; passwords cannot be encrypted or decrypted";
  logErrorOnce(AString(text.c_str()));
  return true;
}

}  // namespace host
