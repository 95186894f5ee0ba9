#include "platform/common/abase64encode.h"

#include <cstdint>

#include "host/process/secret.h"

namespace {

constexpr int c_notInAlphabet = -1;

int valueOf(wchar_t c) {
  if (c >= L'A' && c <= L'Z') return static_cast<int>(c - L'A');
  if (c >= L'a' && c <= L'z') return static_cast<int>(c - L'a') + 26;
  if (c >= L'0' && c <= L'9') return static_cast<int>(c - L'0') + 52;
  if (c == L'+') return 62;
  if (c == L'/') return 63;
  return c_notInAlphabet;
}

bool isWhiteSpace(wchar_t c) { return c == L' ' || (c >= L'\t' && c <= L'\r'); }

// Decodes into `out`, which has room for all of it; false when the text is not valid.
bool decodeInto(const std::wstring& text, host::SecretBytes& out) {
  std::uint32_t group = 0;
  std::size_t digits = 0;
  std::size_t padding = 0;
  for (const wchar_t c : text) {
    if (isWhiteSpace(c)) continue;
    if (c == L'=') {
      ++padding;
      continue;
    }
    const int value = valueOf(c);
    if (value == c_notInAlphabet || padding > 0) return false;
    group = (group << 6 | static_cast<std::uint32_t>(value)) & 0xFFFFFF;
    if (++digits % 4 == 0) {
      out.push_back(static_cast<unsigned char>(group >> 16));
      out.push_back(static_cast<unsigned char>(group >> 8 & 0xFF));
      out.push_back(static_cast<unsigned char>(group & 0xFF));
    }
  }
  // The bits of the last character that are not part of a byte must be zero: otherwise several
  // texts would stand for the same bytes.
  switch (digits % 4) {
    case 0:
      return padding == 0;
    case 2:
      if (padding != 2 || (group & 0xF) != 0) return false;
      out.push_back(static_cast<unsigned char>(group >> 4 & 0xFF));
      return true;
    case 3:
      if (padding != 1 || (group & 0x3) != 0) return false;
      out.push_back(static_cast<unsigned char>(group >> 10 & 0xFF));
      out.push_back(static_cast<unsigned char>(group >> 2 & 0xFF));
      return true;
    default:
      return false;
  }
}

}  // namespace

ABuffer ABase64Encode::decode(const AString& text) {
  host::SecretBytes bytes;
  bytes.reserve(text.str().size() / 4 * 3 + 3);
  return decodeInto(text.str(), bytes) ? ABuffer(bytes.data(), bytes.size()) : ABuffer();
}
