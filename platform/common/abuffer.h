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
  ABuffer(const unsigned char* data, std::size_t size);
  ABuffer(const ABuffer&) = default;
  ABuffer(ABuffer&&) noexcept = default;
  ABuffer& operator=(const ABuffer& other);
  ABuffer& operator=(ABuffer&& other) noexcept;
  ~ABuffer();

  const unsigned char* data() const { return m_bytes.data(); }
  std::size_t size() const { return m_bytes.size(); }
  bool empty() const { return m_bytes.empty(); }

 private:
  void wipe() noexcept;

  std::vector<unsigned char> m_bytes;
};

#endif
