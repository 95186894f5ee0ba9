#ifndef PLATFORM_CRYPTO_OBJECT_BUFFER_H
#define PLATFORM_CRYPTO_OBJECT_BUFFER_H

#include <cstddef>
#include <string>
#include <vector>

#include "platform/export.h"

namespace korvel_com {
namespace ZQ {
namespace crypto {

// Bytes on their way into or out of the crypto service. The object owns a copy and wipes it before
// the memory is given back. One object is used by one thread at a time.
class PLATFORM_API ABuffer {
 public:
  // A copy of `length` bytes. `data` may be null when `length` is 0. May throw std::bad_alloc.
  ABuffer(unsigned int length, const unsigned char* data);
  ABuffer(const ABuffer&) = delete;
  ABuffer& operator=(const ABuffer&) = delete;
  virtual ~ABuffer();

  // The first byte; valid until the content changes, and not to be read when there is none.
  const unsigned char* data() const { return m_bytes.data(); }
  // The number of bytes.
  unsigned int length() const { return static_cast<unsigned int>(m_bytes.size()); }

  // Replaces the content with a copy of these bytes. May throw std::bad_alloc and then leaves the
  // content as it was.
  void assign(unsigned int length, const unsigned char* data);

  // The bytes as a narrow string, zero bytes included. The caller's copy is the caller's to wipe.
  std::string cpp_str() const;

 private:
  std::vector<unsigned char> m_bytes;
};

template <typename T>
class AnObjectBuffer;

// The buffer of bytes.
template <>
class PLATFORM_API AnObjectBuffer<unsigned char> : public ABuffer {
 public:
  // As ABuffer.
  AnObjectBuffer(unsigned int length, const unsigned char* data) : ABuffer(length, data) {}
};

}  // namespace crypto
}  // namespace ZQ
}  // namespace korvel_com

#endif
