#include "tools/sitelist/probe/secret_utf8.h"

#include <openssl/crypto.h>

#include <cstddef>
#include <cstdint>
#include <cwchar>

namespace tool {

SecretUtf8::SecretUtf8(const wchar_t* text) {
  constexpr std::size_t c_mostBytes = 4;  // of one character
  m_bytes.reserve(std::wcslen(text) * c_mostBytes + 1);
  const auto add = [this](std::uint32_t byte) { m_bytes.push_back(static_cast<char>(byte)); };
  for (; *text; ++text) {
    const auto c = static_cast<std::uint32_t>(*text);
    if (c < 0x80) {
      add(c);
      continue;
    }
    if (c < 0x800) {
      add(0xC0U | (c >> 6));
    } else {
      if (c < 0x10000) {
        add(0xE0U | (c >> 12));
      } else {
        add(0xF0U | (c >> 18));
        add(0x80U | ((c >> 12) & 0x3FU));
      }
      add(0x80U | ((c >> 6) & 0x3FU));
    }
    add(0x80U | (c & 0x3FU));
  }
  m_bytes.push_back('\0');
}

SecretUtf8::~SecretUtf8() { OPENSSL_cleanse(m_bytes.data(), m_bytes.size()); }

}  // namespace tool
