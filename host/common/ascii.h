#ifndef HOST_COMMON_ASCII_H
#define HOST_COMMON_ASCII_H

#include <cstddef>
#include <cstdint>

// Conversion of the plain ASCII that nearly all text consists of, in blocks that compilers turn
// into vector instructions.
namespace host {

constexpr std::size_t c_asciiBlock = 16;

inline bool isAsciiBlock(const char* text) {
  unsigned char all = 0;
  for (std::size_t i = 0; i < c_asciiBlock; ++i) {
    all = static_cast<unsigned char>(all | static_cast<unsigned char>(text[i]));
  }
  return all < 0x80;
}

inline bool isAsciiBlock(const wchar_t* text) {
  std::uint32_t all = 0;
  for (std::size_t i = 0; i < c_asciiBlock; ++i) all |= static_cast<std::uint32_t>(text[i]);
  return all < 0x80;
}

// How many blocks of plain ASCII stand at the start, in characters.
template <typename Character>
std::size_t asciiBlocks(const Character* text, std::size_t length) {
  std::size_t done = 0;
  while (length - done >= c_asciiBlock && isAsciiBlock(text + done)) done += c_asciiBlock;
  return done;
}

// Both functions stop at the first character that is not ASCII, or after `length`, and return how
// many they converted.
inline std::size_t widenAscii(const char* text, std::size_t length, wchar_t* out) {
  std::size_t done = 0;
  for (; length - done >= c_asciiBlock && isAsciiBlock(text + done); done += c_asciiBlock) {
    for (std::size_t i = 0; i < c_asciiBlock; ++i) {
      out[done + i] = static_cast<wchar_t>(static_cast<unsigned char>(text[done + i]));
    }
  }
  for (; done < length && static_cast<unsigned char>(text[done]) < 0x80; ++done) {
    out[done] = static_cast<wchar_t>(text[done]);
  }
  return done;
}

inline std::size_t narrowAscii(const wchar_t* text, std::size_t length, char* out) {
  std::size_t done = 0;
  for (; length - done >= c_asciiBlock && isAsciiBlock(text + done); done += c_asciiBlock) {
    for (std::size_t i = 0; i < c_asciiBlock; ++i)
      out[done + i] = static_cast<char>(text[done + i]);
  }
  for (; done < length && static_cast<std::uint32_t>(text[done]) < 0x80; ++done) {
    out[done] = static_cast<char>(text[done]);
  }
  return done;
}

}  // namespace host

#endif
