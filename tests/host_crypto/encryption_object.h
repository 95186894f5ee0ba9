#ifndef TESTS_HOST_CRYPTO_ENCRYPTION_OBJECT_H
#define TESTS_HOST_CRYPTO_ENCRYPTION_OBJECT_H

#include <string>

#include "host/agent.h"
#include "platform/crypto/crypt_shim.h"

namespace test {

using korvel_com::ZQ::crypto::CryptShim;
using korvel_com::ZQ::crypto::ENCRYPTION_TYPE_PASSWORD;
using korvel_com::ZQ::crypto::ENCRYPTION_TYPE_SERVER_BUFFER;
using korvel_com::ZQ::crypto::IEncryption;
using CryptoBuffer = korvel_com::ZQ::crypto::AnObjectBuffer<unsigned char>;

// An object of the crypto service. It is returned to the service at the end of the scope.
class EncryptionObject {
 public:
  explicit EncryptionObject(korvel_com::ZQ::crypto::EncryptionType type)
      : m_object(CryptShim::instance()->create_encryption_object(type)) {}
  ~EncryptionObject() { CryptShim::instance()->destroy_encryption_object(m_object); }
  EncryptionObject(const EncryptionObject&) = delete;
  EncryptionObject& operator=(const EncryptionObject&) = delete;

  explicit operator bool() const { return m_object != nullptr; }
  IEncryption* get() const { return m_object; }
  IEncryption* operator->() const { return m_object; }

 private:
  IEncryption* m_object;
};

inline CryptoBuffer bufferOf(const std::string& bytes) {
  return CryptoBuffer(static_cast<unsigned int>(bytes.size()),
                      reinterpret_cast<const unsigned char*>(bytes.data()));
}

inline std::string passwordKeyPath(const std::string& dataDirectory) {
  return dataDirectory + "/keystore/password.key";
}
inline std::string serverKeyPath(const std::string& dataDirectory) {
  return dataDirectory + "/keystore/server.key";
}

}  // namespace test

#endif
