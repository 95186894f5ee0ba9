#ifndef PLATFORM_CRYPTO_CRYPT_SHIM_H
#define PLATFORM_CRYPTO_CRYPT_SHIM_H

#include <string>

#include "platform/crypto/object_buffer.h"
#include "platform/export.h"

namespace korvel_com {
namespace ZQ {
namespace crypto {

// What an encryption object does, and under which key.
enum EncryptionType {
  ENCRYPTION_TYPE_PASSWORD = 3,       // wide strings, both directions, under the agent's own key
  ENCRYPTION_TYPE_SERVER_BUFFER = 6,  // decrypts a byte buffer under the server's key
};

// One use of a key. Each operation returns nonzero on success; on failure it returns 0 and leaves
// `out` as it was. A value that was tampered with fails. An operation that the object's type does
// not offer fails. One object is used by one thread at a time. Throws std::bad_alloc alone.
//
// An operation fails when the system does not offer the cipher, or when a protected value does not
// open. Both are logged as errors: once while a KeptKeys lives, otherwise at every call. An empty
// protected value fails without a log line. None of the operations logs what it was given or what
// it made.
class PLATFORM_API IEncryption {
 public:
  virtual ~IEncryption() = default;

  // Recovers the bytes that were encrypted under the server's key.
  virtual int decrypt_buffer(const AnObjectBuffer<unsigned char>& in,
                             AnObjectBuffer<unsigned char>& out) = 0;
  // Protects a text. Two protections of one text differ.
  virtual int encrypt_string(const std::wstring& in, std::wstring& out) = 0;
  // Recovers the text that encrypt_string protected.
  virtual int decrypt_string(const std::wstring& in, std::wstring& out) = 0;
};

// The crypto service. It owns the encryption objects; a caller gives each back exactly once and
// never deletes one. Any thread may make and give back objects, and so may the child of a fork,
// whatever the other threads of its parent were doing.
class PLATFORM_API CryptShim {
 public:
  // The one service of this process; never null.
  static CryptShim* instance();

  // A ready object, or null for an unknown type or when its key cannot be had. The reason is logged
  // as an error, once for the work on one document, without the key. Makes a missing password key
  // of the agent: readable by its owner alone, and the same one for several processes that start
  // together. A warning at info level says so, because what was protected under an earlier key does
  // not open any more. Throws std::bad_alloc.
  IEncryption* create_encryption_object(EncryptionType type);

  // Takes an object back. Needs no memory, so that a destructor may do it. Null is allowed.
  void destroy_encryption_object(IEncryption* object);
};

// For the work on one document, whose passwords are many: as long as one lives, the service takes
// the keys that it gave this thread objects of as unchanged, so that it need not look at a key file
// for every password. A key that is replaced meanwhile may be noticed only afterwards. What goes
// wrong is logged once; how many passwords do not open is logged when the last one goes. Other
// threads are not affected. Several may live at once; each goes in the thread that made it.
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
