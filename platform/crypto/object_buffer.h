#ifndef PLATFORM_CRYPTO_OBJECT_BUFFER_H
#define PLATFORM_CRYPTO_OBJECT_BUFFER_H

#include <cstddef>
#include <string>
#include <vector>

#include "platform/export.h"

namespace korvel_com {
namespace ZQ {
namespace crypto {

// Bytes that are passed to or from the crypto service. The object owns a copy and wipes it before
// its memory is released. One object must not be used by two threads at the same time.
class PLATFORM_API ABuffer {
 public:
  // A copy of `length` bytes. `data` may be null when `length` is 0. May throw std::bad_alloc.
  ABuffer(unsigned int length, const unsigned char* data);
  ABuffer(const ABuffer&) = delete;
  ABuffer& operator=(const ABuffer&) = delete;
  virtual ~ABuffer();

  // The first byte. Valid until the content changes; must not be read when the buffer is empty.
  const unsigned char* data() const { return m_bytes.data(); }
  // The number of bytes.
  unsigned int length() const { return static_cast<unsigned int>(m_bytes.size()); }

  // Replaces the content with a copy of these bytes. May throw std::bad_alloc and then leaves the
  // content unchanged.
  void assign(unsigned int length, const unsigned char* data);

  // Returns the bytes as a narrow string, including zero bytes. The caller must wipe that copy.
  std::string cpp_str() const;

 private:
  std::vector<unsigned char> m_bytes;
};

template <typename T>
class AnObjectBuffer;

// The specialisation for bytes.
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
