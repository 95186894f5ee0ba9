#include "platform/crypto/object_buffer.h"

#include "host/process/secret.h"

namespace korvel_com {
namespace ZQ {
namespace crypto {

ABuffer::ABuffer(unsigned int length, const unsigned char* data) : m_bytes(data, data + length) {}

ABuffer::~ABuffer() { host::wipe(m_bytes.data(), m_bytes.size()); }

void ABuffer::assign(unsigned int length, const unsigned char* data) {
  std::vector<unsigned char> fresh(data, data + length);
  host::wipe(m_bytes.data(), m_bytes.size());
  m_bytes = std::move(fresh);
}

std::string ABuffer::cpp_str() const { return std::string(m_bytes.begin(), m_bytes.end()); }

}  // namespace crypto
}  // namespace ZQ
}  // namespace korvel_com
