#ifndef PLATFORM_COMMON_ABUFFER_H
#define PLATFORM_COMMON_ABUFFER_H

#include <cstddef>
#include <vector>

#include "platform/export.h"

// Owns bytes, such as the content of a key file or decoded base64. The bytes are wiped before their
// memory is released, because they may be a key. One object must not be used by two threads at the
// same time.
class PLATFORM_API ABuffer {
 public:
  ABuffer() = default;
  // A copy of `size` bytes. `data` may be null when `size` is 0. May throw std::bad_alloc.
  ABuffer(const unsigned char* data, std::size_t size);
  // Copying may throw std::bad_alloc. An assignment that throws leaves its target unchanged.
  ABuffer(const ABuffer&) = default;
  // Moving leaves the other buffer empty.
  ABuffer(ABuffer&&) noexcept = default;
  // Wipes the old bytes.
  ABuffer& operator=(const ABuffer& other);
  // Wipes the old bytes, and leaves the other buffer empty.
  ABuffer& operator=(ABuffer&& other) noexcept;
  // Wipes the bytes.
  ~ABuffer();

  // The first byte. Valid until the buffer changes; must not be read when the buffer is empty.
  const unsigned char* data() const { return m_bytes.data(); }
  std::size_t size() const { return m_bytes.size(); }  // in bytes
  bool empty() const { return m_bytes.empty(); }       // whether the buffer has no bytes

 private:
  void wipe() noexcept;

  std::vector<unsigned char> m_bytes;
};

#endif
