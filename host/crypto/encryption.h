#ifndef HOST_CRYPTO_ENCRYPTION_H
#define HOST_CRYPTO_ENCRYPTION_H

#include <cstdint>
#include <optional>
#include <string>

#include "host/crypto/sealed_value.h"
#include "platform/crypto/crypt_shim.h"

namespace host {

// The encryption objects of the crypto service. A password is converted to UTF-8, encrypted as a
// sealed value, and written as base64. A server buffer is a sealed value without base64.
class Encryption final : public korvel_com::ZQ::crypto::IEncryption {
 public:
  using Type = korvel_com::ZQ::crypto::EncryptionType;
  using Buffer = korvel_com::ZQ::crypto::AnObjectBuffer<unsigned char>;

  // `generation` is the generation of the key in the KeyPool that made the object.
  Encryption(Type type, const SecretBytes& key, std::uint64_t generation)
      : m_type(type), m_generation(generation), m_key(key) {}

  Type type() const { return m_type; }
  std::uint64_t generation() const { return m_generation; }

  int decrypt_buffer(const Buffer& in, Buffer& out) override;
  int encrypt_string(const std::wstring& in, std::wstring& out) override;
  int decrypt_string(const std::wstring& in, std::wstring& out) override;

 private:
  // Returns null, with an error logged, when libcrypto does not offer the cipher.
  Sealer* sealer();
  // Decrypts a sealed value. Reports a value that cannot be decrypted.
  bool open(const unsigned char* sealed, std::size_t length, SecretBytes& clear);

  Type m_type;
  std::uint64_t m_generation;
  SecretBytes m_key;  // empty once m_sealer has the key
  // Created at first use, because the first sealer of a process fetches the cipher.
  std::optional<Sealer> m_sealer;
};

}  // namespace host

#endif
