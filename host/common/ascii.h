#ifndef HOST_COMMON_ASCII_H
#define HOST_COMMON_ASCII_H

#include <cstddef>
#include <cstdint>
#include <cstring>

// Conversion of plain ASCII in blocks. Nearly all text is plain ASCII, and compilers turn the loops
// over a block into vector instructions.
namespace host {

constexpr std::size_t c_asciiBlock = 16;

inline bool isAsciiBlock(const char* text) {
  std::uint64_t halves[2];
  static_assert(sizeof halves == c_asciiBlock);
  std::memcpy(halves, text, sizeof halves);
  return ((halves[0] | halves[1]) & 0x8080808080808080u) == 0;
}

inline bool isAsciiBlock(const wchar_t* text) {
  std::uint32_t all = 0;
  for (std::size_t i = 0; i < c_asciiBlock; ++i) all |= static_cast<std::uint32_t>(text[i]);
  return all < 0x80;
}

// Returns how many characters at the start are in whole blocks of plain ASCII.
template <typename Character>
std::size_t asciiBlocks(const Character* text, std::size_t length) {
  std::size_t done = 0;
  while (length - done >= c_asciiBlock && isAsciiBlock(text + done)) done += c_asciiBlock;
  return done;
}

// `out` may overlap `text`, so without the local array the compiler would convert one character at
// a time.
inline void widenBlock(const char* text, wchar_t* out) {
  wchar_t block[c_asciiBlock];
  for (std::size_t i = 0; i < c_asciiBlock; ++i) {
    block[i] = static_cast<wchar_t>(static_cast<unsigned char>(text[i]));
  }
  std::memcpy(out, block, sizeof block);
}

inline void narrowBlock(const wchar_t* text, char* out) {
  char block[c_asciiBlock];
  for (std::size_t i = 0; i < c_asciiBlock; ++i) block[i] = static_cast<char>(text[i]);
  std::memcpy(out, block, sizeof block);
}

// Both functions stop at the first character that is not ASCII, or after `length`. They return the
// number of converted characters.
inline std::size_t widenAscii(const char* text, std::size_t length, wchar_t* out) {
  std::size_t done = 0;
  for (; length - done >= c_asciiBlock && isAsciiBlock(text + done); done += c_asciiBlock) {
    widenBlock(text + done, out + done);
  }
  for (; done < length && static_cast<unsigned char>(text[done]) < 0x80; ++done) {
    out[done] = static_cast<wchar_t>(text[done]);
  }
  return done;
}

inline std::size_t narrowAscii(const wchar_t* text, std::size_t length, char* out) {
  std::size_t done = 0;
  for (; length - done >= c_asciiBlock && isAsciiBlock(text + done); done += c_asciiBlock) {
    narrowBlock(text + done, out + done);
  }
  for (; done < length && static_cast<std::uint32_t>(text[done]) < 0x80; ++done) {
    out[done] = static_cast<char>(text[done]);
  }
  return done;
}

// Does the same for text that must be ASCII. Returns the end of the written characters.
inline char* narrowPlain(const wchar_t* text, std::size_t length, char* out) {
  std::size_t done = 0;
  for (; length - done >= c_asciiBlock; done += c_asciiBlock) narrowBlock(text + done, out + done);
  for (; done < length; ++done) out[done] = static_cast<char>(text[done]);
  return out + length;
}

}  // namespace host

#endif
