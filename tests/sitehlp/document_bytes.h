#ifndef TESTS_SITEHLP_DOCUMENT_BYTES_H
#define TESTS_SITEHLP_DOCUMENT_BYTES_H

#include <cstdint>
#include <string>

#include "tests/support/test_agent.h"

namespace test {

struct Encoding {
  const wchar_t* name;  // name in a declaration
  int width;            // bytes in a unit
  bool bigEndian;
};
const Encoding c_encodings[] = {
    {L"UTF-8", 1, false},  {L"UTF-16", 2, false}, {L"UTF-16", 2, true},
    {L"UTF-32", 4, false}, {L"UTF-32", 4, true},
};

// Returns the bytes of a text in an encoding, written unit by unit.
inline std::string encode(const std::wstring& text, const Encoding& encoding, bool mark) {
  const std::wstring marked = mark ? L'\uFEFF' + text : text;
  if (encoding.width == 1) return narrow(marked);
  std::string bytes;
  const auto unit = [&](std::uint32_t value) {
    for (int i = 0; i < encoding.width; ++i) {
      const int shift = 8 * (encoding.bigEndian ? encoding.width - 1 - i : i);
      bytes += static_cast<char>(value >> shift & 0xFF);
    }
  };
  for (const wchar_t character : marked) {
    const auto value = static_cast<std::uint32_t>(character);
    if (encoding.width == 2 && value > 0xFFFF) {
      unit(0xD800 + ((value - 0x10000) >> 10));
      unit(0xDC00 + ((value - 0x10000) & 0x3FF));
    } else {
      unit(value);
    }
  }
  return bytes;
}

}  // namespace test

#endif
