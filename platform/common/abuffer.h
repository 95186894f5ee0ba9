#ifndef PLATFORM_COMMON_ABUFFER_H
#define PLATFORM_COMMON_ABUFFER_H

#include <cstddef>
#include <vector>

#include "platform/export.h"

// Owned bytes with no meaning of their own: the content of a key file, or decoded base64.
// A plain value type; one object is used by one thread at a time. The bytes are wiped before their
// memory is given back, because what a buffer holds may be a key.
class PLATFORM_API ABuffer {
 public:
  ABuffer() = default;
  // A copy of `size` bytes. `data` may be null when `size` is 0. May throw std::bad_alloc.
  ABuffer(const unsigned char* data, std::size_t size);
  // Copying may throw std::bad_alloc; a buffer that is assigned to is then as it was.
  ABuffer(const ABuffer&) = default;
  // Moving leaves the other buffer empty.
  ABuffer(ABuffer&&) noexcept = default;
  // Wipes what the buffer held.
  ABuffer& operator=(const ABuffer& other);
  // Wipes what the buffer held, and leaves the other one empty.
  ABuffer& operator=(ABuffer&& other) noexcept;
  // Wipes the bytes.
  ~ABuffer();

  // The first byte; valid until the buffer changes, and not to be read when it is empty.
  const unsigned char* data() const { return m_bytes.data(); }
  std::size_t size() const { return m_bytes.size(); }  // in bytes
  bool empty() const { return m_bytes.empty(); }       // whether there are none

 private:
  void wipe() noexcept;

  std::vector<unsigned char> m_bytes;
};

#endif
