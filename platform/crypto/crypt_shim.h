#ifndef PLATFORM_CRYPTO_CRYPT_SHIM_H
#define PLATFORM_CRYPTO_CRYPT_SHIM_H

#include <string>

#include "platform/crypto/object_buffer.h"
#include "platform/export.h"

namespace korvel_com {
namespace ZQ {
namespace crypto {

// What an encryption object does, and with which key.
enum EncryptionType {
  ENCRYPTION_TYPE_PASSWORD = 3,       // wide text, both directions, with the password key
  ENCRYPTION_TYPE_SERVER_BUFFER = 6,  // decrypts bytes with the server key
};

// Encrypts and decrypts with one key. Each operation returns nonzero on success. On failure it
// returns 0 and leaves `out` unchanged. An operation fails if the encrypted value was changed, or
// if the type of the object does not support the operation. One object must not be used by two
// threads at the same time. Only std::bad_alloc is thrown.
//
// An operation also fails if the system does not provide the cipher, or if the value was encrypted
// with another key. A missing cipher and a value that cannot be decrypted are logged as errors:
// once while a KeptKeys exists, otherwise at every call. An empty encrypted value fails without a
// log line. No operation logs its input or its output.
class PLATFORM_API IEncryption {
 public:
  virtual ~IEncryption() = default;

  // Decrypts bytes that were encrypted with the server key.
  virtual int decrypt_buffer(const AnObjectBuffer<unsigned char>& in,
                             AnObjectBuffer<unsigned char>& out) = 0;
  // Encrypts a text. Encrypting the same text twice gives different results.
  virtual int encrypt_string(const std::wstring& in, std::wstring& out) = 0;
  // Decrypts a text that encrypt_string encrypted.
  virtual int decrypt_string(const std::wstring& in, std::wstring& out) = 0;
};

// The crypto service. It owns the encryption objects. A caller must return each object exactly once
// and must not delete it. Any thread may get and return objects. A child of fork may do so too,
// whatever other threads of its parent did at the fork.
class PLATFORM_API CryptShim {
 public:
  // Returns the service of this process; never null.
  static CryptShim* instance();

  // Returns an object that is ready for use, or null when the type is unknown or the key cannot be
  // read or created. The reason is logged as an error, without the key: once while a KeptKeys
  // exists, otherwise at every call. Throws std::bad_alloc.
  //
  // Creates a missing password key of the agent. Only its owner can read it. Processes that start
  // at the same time get the same key. A line at info level with the word WARNING reports the new
  // key. Passwords encrypted with an earlier key can no longer be decrypted.
  IEncryption* create_encryption_object(EncryptionType type);

  // Returns an object to the service. Allocates nothing, so a destructor may call it. Null is
  // allowed.
  void destroy_encryption_object(IEncryption* object);
};

// RAII guard for processing one document. While a KeptKeys object exists, the service reuses the
// keys already loaded on this thread. It does not check the key files for every password. If a key
// is replaced during this time, the service may use the new key only afterwards. In a service that
// keeps no keys, the constructor and the destructor may do nothing.
//
// Each error is logged once. When the last guard of the thread is destroyed, the number of
// passwords that could not be decrypted is logged. Other threads are not affected. Guards may be
// nested. Each must be destroyed on the thread that created it.
class PLATFORM_API KeptKeys {
 public:
  KeptKeys() noexcept;
  ~KeptKeys();
  KeptKeys(const KeptKeys&) = delete;
  KeptKeys& operator=(const KeptKeys&) = delete;
};

}  // namespace crypto
}  // namespace ZQ
}  // namespace korvel_com

#endif
