#ifndef HOST_COMMON_ASCII_H
#define HOST_COMMON_ASCII_H

#include <cstddef>
#include <cstdint>
#include <cstring>

// Conversion of the plain ASCII that nearly all text consists of. The conversions stop at the first
// character that is not ASCII, or after `length`, and return how many they converted.
namespace host {

inline std::size_t widenAscii(const char* text, std::size_t length, wchar_t* out) {
  std::size_t done = 0;
  for (; done + 8 <= length; done += 8) {
    std::uint64_t block;
    std::memcpy(&block, text + done, sizeof block);
    if (block & 0x8080808080808080u) break;
    for (std::size_t i = 0; i < 8; ++i) out[done + i] = static_cast<wchar_t>(text[done + i]);
  }
  for (; done < length && static_cast<unsigned char>(text[done]) < 0x80; ++done) {
    out[done] = static_cast<wchar_t>(text[done]);
  }
  return done;
}

// Whether eight characters are all ASCII.
inline bool isAsciiBlock(const wchar_t* text) {
  std::uint32_t all = 0;
  for (std::size_t i = 0; i < 8; ++i) all |= static_cast<std::uint32_t>(text[i]);
  return all < 0x80;
}

inline std::size_t narrowAscii(const wchar_t* text, std::size_t length, char* out) {
  std::size_t done = 0;
  for (; done + 8 <= length && isAsciiBlock(text + done); done += 8) {
    for (std::size_t i = 0; i < 8; ++i) out[done + i] = static_cast<char>(text[done + i]);
  }
  for (; done < length && static_cast<std::uint32_t>(text[done]) < 0x80; ++done) {
    out[done] = static_cast<char>(text[done]);
  }
  return done;
}

}  // namespace host

#endif
