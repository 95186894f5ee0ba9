#ifndef HOST_CRYPTO_ENCRYPTION_H
#define HOST_CRYPTO_ENCRYPTION_H

#include <cstdint>
#include <optional>
#include <string>

#include "host/crypto/sealed_value.h"
#include "platform/crypto/crypt_shim.h"

namespace host {

// The service's encryption objects. A password is the UTF-8 of its wide text, sealed, as base64; a
// server buffer is a sealed value as it is.
class Encryption final : public korvel_com::ZQ::crypto::IEncryption {
 public:
  using Type = korvel_com::ZQ::crypto::EncryptionType;
  using Buffer = korvel_com::ZQ::crypto::AnObjectBuffer<unsigned char>;

  // `generation` tells the service which state of the key file the object belongs to.
  Encryption(Type type, const SecretBytes& key, std::uint64_t generation)
      : m_type(type), m_generation(generation), m_key(key) {}

  Type type() const { return m_type; }
  std::uint64_t generation() const { return m_generation; }

  int decrypt_buffer(const Buffer& in, Buffer& out) override;
  int encrypt_string(const std::wstring& in, std::wstring& out) override;
  int decrypt_string(const std::wstring& in, std::wstring& out) override;

 private:
  // Null, with an error logged, when libcrypto does not offer the cipher.
  Sealer* sealer();
  // Reports what does not open.
  bool open(const unsigned char* sealed, std::size_t length, SecretBytes& clear);

  Type m_type;
  std::uint64_t m_generation;
  SecretBytes m_key;  // until the sealer has it
  std::optional<Sealer>
      m_sealer;  // made at first use: the first one of a process starts the cipher
};

}  // namespace host

#endif
