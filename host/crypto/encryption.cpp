#include "host/crypto/encryption.h"

#include <algorithm>

#include "host/common/base64.h"
#include "host/common/encoding.h"
#include "host/crypto/key_span.h"

namespace host {
namespace {

// Returns false for a text with a character that is not a Unicode scalar value, because decryption
// could not restore it.
bool toSecretUtf8(const std::wstring& text, SecretBytes& utf8Bytes) {
  if (!std::all_of(text.begin(), text.end(),
                   [](wchar_t c) { return isScalar(static_cast<std::uint32_t>(c)); })) {
    return false;
  }
  utf8Bytes.resize(utf8Size(text.data(), text.size()));
  writeUtf8(text.data(), text.size(), reinterpret_cast<char*>(utf8Bytes.data()));
  return true;
}

}  // namespace

Sealer* Encryption::sealer() {
  if (!m_sealer) {
    m_sealer.emplace(m_key);
    if (reportRefusal(*m_sealer)) {
      m_sealer.reset();
      return nullptr;
    }
    m_key = SecretBytes();
  }
  return &*m_sealer;
}

bool Encryption::open(const unsigned char* sealed, std::size_t length, SecretBytes& clear) {
  Sealer* const own = sealer();
  if (!own) return false;
  const bool isOpen = own->open(sealed, length, clear);
  if (!isOpen) reportUnopened(m_type);
  return isOpen;
}

int Encryption::decrypt_buffer(const Buffer& in, Buffer& out) {
  SecretBytes clear;
  if (m_type != korvel_com::ZQ::crypto::ENCRYPTION_TYPE_SERVER_BUFFER || in.length() == 0 ||
      !open(in.data(), in.length(), clear)) {
    return 0;
  }
  out.assign(static_cast<unsigned int>(clear.size()), clear.data());
  return 1;
}

int Encryption::encrypt_string(const std::wstring& in, std::wstring& out) {
  SecretBytes clear;
  std::vector<unsigned char> sealed;
  if (m_type != korvel_com::ZQ::crypto::ENCRYPTION_TYPE_PASSWORD || !toSecretUtf8(in, clear)) {
    return 0;
  }
  Sealer* const own = sealer();
  if (!own || !own->seal(clear.data(), clear.size(), sealed)) return 0;
  const std::string text = toBase64(sealed);
  out.assign(text.begin(), text.end());
  return 1;
}

int Encryption::decrypt_string(const std::wstring& in, std::wstring& out) {
  std::vector<unsigned char> sealed;
  SecretBytes clear;
  if (m_type != korvel_com::ZQ::crypto::ENCRYPTION_TYPE_PASSWORD || in.empty()) return 0;
  if (!fromBase64(in, sealed)) {
    reportUnopened(m_type);
    return 0;
  }
  if (!open(sealed.data(), sealed.size(), clear)) return 0;
  SecretWideText result;
  if (!appendWide(reinterpret_cast<const char*>(clear.data()), clear.size(), *result)) {
    reportUnopened(m_type);
    return 0;
  }
  out = *result;
  return 1;
}

}  // namespace host
