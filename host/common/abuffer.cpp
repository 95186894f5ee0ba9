#include "platform/common/abuffer.h"

#include "host/process/secret.h"

ABuffer::ABuffer(const unsigned char* data, std::size_t size) {
  if (size > 0) m_bytes.assign(data, data + size);
}

ABuffer& ABuffer::operator=(const ABuffer& other) {
  if (this != &other) *this = ABuffer(other);
  return *this;
}

ABuffer& ABuffer::operator=(ABuffer&& other) noexcept {
  if (this != &other) {
    wipe();
    m_bytes = std::move(other.m_bytes);
    other.m_bytes.clear();
  }
  return *this;
}

ABuffer::~ABuffer() { wipe(); }

void ABuffer::wipe() noexcept { host::wipe(m_bytes.data(), m_bytes.size()); }
