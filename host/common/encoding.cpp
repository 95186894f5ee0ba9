#include "host/common/encoding.h"

#include <utf8.h>

#include <algorithm>
#include <iterator>

#include "host/common/ascii.h"
#include "host/process/secret.h"

namespace host {
namespace {

// Returns the number of bytes that begin a character. For valid text this is its length. For any
// other text it is at least the number of characters that can be decoded.
std::size_t countLeads(const char* utf8, std::size_t length) {
  return static_cast<std::size_t>(std::count_if(
      utf8, utf8 + length, [](char c) { return (static_cast<unsigned char>(c) & 0xC0) != 0x80; }));
}

}  // namespace

bool appendWide(const char* utf8, std::size_t length, std::wstring& out) {
  const std::size_t before = out.size();
  const std::size_t ascii = asciiBlocks(utf8, length);
  out.resize(before + ascii + countLeads(utf8 + ascii, length - ascii));
  wchar_t* to = out.data() + before;
  for (std::size_t i = 0; i < ascii; i += c_asciiBlock) widenBlock(utf8 + i, to + i);
  to += ascii;
  const char* from = utf8 + ascii;
  const char* const end = utf8 + length;
  try {
    while (from != end) {
      const std::size_t widened = widenAscii(from, static_cast<std::size_t>(end - from), to);
      from += widened;
      to += widened;
      for (; from != end && static_cast<unsigned char>(*from) >= 0x80; ++to) {
        *to = static_cast<wchar_t>(utf8::next(from, end));
      }
    }
  } catch (const utf8::exception&) {
    // The text before the invalid byte may be part of a password.
    wipe(out.data() + before, (out.size() - before) * sizeof(wchar_t));
    out.resize(before);
    return false;
  }
  return true;
}

bool isUtf8(const char* bytes, std::size_t length) {
  const char* const end = bytes + length;
  try {
    while (bytes != end) {
      const auto left = static_cast<std::size_t>(end - bytes);
      const std::size_t ascii = asciiBlocks(bytes, left);
      const char* const blockEnd = bytes + std::min(left, ascii + c_asciiBlock);
      bytes += ascii;
      while (bytes < blockEnd) utf8::next(bytes, end);
    }
  } catch (const utf8::exception&) {
    return false;
  }
  return true;
}

std::wstring toWide(const char* utf8, std::size_t length) {
  std::wstring wide;
  if (!appendWide(utf8, length, wide)) {
    SecretText repaired;  // the text may be a password
    repaired->reserve(3 * length);
    // The replacement must be given. Otherwise the library stores it in a function-local static,
    // and a fork may happen while a thread holds the guard.
    utf8::replace_invalid(utf8, utf8 + length, std::back_inserter(*repaired), c_replacement);
    appendWide(repaired->data(), repaired->size(), wide);
  }
  return wide;
}

std::string toUtf8(const wchar_t* text, std::size_t length) {
  std::string utf8(utf8Size(text, length), '\0');
  writeUtf8(text, length, utf8.data());
  return utf8;
}

std::size_t utf8Size(const wchar_t* text, std::size_t length) {
  std::size_t size = 0;
  for (std::size_t i = 0; i < length;) {
    const std::size_t ascii = asciiBlocks(text + i, length - i);
    size += ascii;
    i += ascii;
    const std::size_t end = std::min(length, i + c_asciiBlock);
    for (; i < end; ++i) {
      const auto c = static_cast<std::uint32_t>(text[i]);
      // A number above U+10FFFF is written as U+FFFD, which takes three bytes.
      size += 1u + (c >= 0x80) + (c >= 0x800) + (c >= 0x10000 && c <= 0x10FFFF);
    }
  }
  return size;
}

char* writeUtf8(const wchar_t* text, std::size_t length, char* out) {
  const wchar_t* const end = text + length;
  while (text != end) {
    const std::size_t ascii = narrowAscii(text, static_cast<std::size_t>(end - text), out);
    text += ascii;
    out += ascii;
    for (; text != end && static_cast<std::uint32_t>(*text) >= 0x80; ++text) {
      const auto c = static_cast<std::uint32_t>(*text);
      out = utf8::unchecked::append(isScalar(c) ? c : c_replacement, out);
    }
  }
  return out;
}

}  // namespace host
