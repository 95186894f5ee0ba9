#include "host/xml/text_encoding.h"

#include <algorithm>
#include <initializer_list>

#include "host/common/encoding.h"

namespace host {
namespace {

using namespace AdvXMLParser;

constexpr std::uint32_t c_byteOrderMark = 0xFEFF;

std::size_t unitSize(UTF_ENCODINGS encoding) {
  switch (encoding) {
    case UTF_16LE:
    case UTF_16BE:
      return 2;
    case UTF_32LE:
    case UTF_32BE:
      return 4;
    case UTF_8:
      break;
  }
  return 1;
}

bool isLittleEndian(UTF_ENCODINGS encoding) { return encoding == UTF_16LE || encoding == UTF_32LE; }

std::uint32_t readUnit(const unsigned char* data, UTF_ENCODINGS encoding) {
  const std::size_t size = unitSize(encoding);
  std::uint32_t unit = 0;
  for (std::size_t i = 0; i < size; ++i) {
    unit = unit << 8 | data[isLittleEndian(encoding) ? size - 1 - i : i];
  }
  return unit;
}

void writeUnit(std::uint32_t unit, UTF_ENCODINGS encoding, std::string& bytes) {
  const std::size_t size = unitSize(encoding);
  for (std::size_t i = 0; i < size; ++i) {
    const std::size_t shift = 8 * (isLittleEndian(encoding) ? i : size - 1 - i);
    bytes.push_back(static_cast<char>(unit >> shift & 0xFF));
  }
}

bool isMarkupOrSpace(std::uint32_t unit) {
  return unit == '<' || unit == ' ' || unit == '\t' || unit == '\n' || unit == '\r';
}

// Returns how many of the `available` units at `data` belong to the first scalar value, or 0 if it
// is not valid.
std::size_t readScalar(const unsigned char* data, std::size_t available, UTF_ENCODINGS encoding,
                       std::uint32_t& value) {
  value = readUnit(data, encoding);
  if (isScalar(value)) return 1;
  if (unitSize(encoding) == 4 || value > 0xDBFF || available < 2) return 0;
  const std::uint32_t low = readUnit(data + 2, encoding);
  if (low < 0xDC00 || low > 0xDFFF) return 0;
  value = 0x10000 + ((value - 0xD800) << 10) + (low - 0xDC00);
  return 2;
}

// Compares ASCII names without regard to case. The result must not depend on the locale of the
// process.
bool isOneOf(std::string_view name, std::initializer_list<std::string_view> upperCaseNames) {
  const auto equals = [](char c, char upper) {
    return (c >= 'a' && c <= 'z' ? static_cast<char>(c - ('a' - 'A')) : c) == upper;
  };
  return std::any_of(upperCaseNames.begin(), upperCaseNames.end(), [&](std::string_view other) {
    return std::equal(name.begin(), name.end(), other.begin(), other.end(), equals);
  });
}

}  // namespace

FoundEncoding findEncoding(const unsigned char* data, std::size_t length, UTF_ENCODINGS hint) {
  if (length >= 3 && data[0] == 0xEF && data[1] == 0xBB && data[2] == 0xBF) return {UTF_8, 3};
  // The wider encodings are tested first. A mark or a character of UTF-32LE begins like one of
  // UTF-16LE, followed by a zero character.
  for (const UTF_ENCODINGS encoding : {UTF_32LE, UTF_32BE, UTF_16LE, UTF_16BE}) {
    const std::size_t size = unitSize(encoding);
    if (length < size) continue;
    const std::uint32_t unit = readUnit(data, encoding);
    if (unit == c_byteOrderMark) return {encoding, size};
    if (isMarkupOrSpace(unit)) return {encoding, 0};
  }
  if (length >= 1 && isMarkupOrSpace(data[0])) return {UTF_8, 0};
  return {hint, 0};
}

bool agreesWith(std::string_view declared, const WrittenIn& writtenIn) {
  switch (writtenIn.encoding) {
    case UTF_16LE:
      return isOneOf(declared, {"UTF-16", "UTF-16LE", "ISO-10646-UCS-2"});
    case UTF_16BE:
      return isOneOf(declared, {"UTF-16", "UTF-16BE", "ISO-10646-UCS-2"});
    case UTF_32LE:
      return isOneOf(declared, {"UTF-32", "UTF-32LE", "ISO-10646-UCS-4"});
    case UTF_32BE:
      return isOneOf(declared, {"UTF-32", "UTF-32BE", "ISO-10646-UCS-4"});
    case UTF_8:
      break;
  }
  if (writtenIn.hasMark) return isOneOf(declared, {"UTF-8"});
  return !isOneOf(declared, {"UTF-16", "UTF-16LE", "UTF-16BE", "UTF-32", "UTF-32LE", "UTF-32BE",
                             "ISO-10646-UCS-2", "ISO-10646-UCS-4"});
}

bool decodeText(const unsigned char* data, std::size_t length, UTF_ENCODINGS encoding,
                std::wstring& text) {
  if (encoding == UTF_8) return appendWide(reinterpret_cast<const char*>(data), length, text);
  const std::size_t size = unitSize(encoding);
  if (length % size != 0) return false;
  std::size_t units = length / size;
  text.reserve(text.size() + units);
  while (units > 0) {
    std::uint32_t value = 0;
    const std::size_t taken = readScalar(data, units, encoding, value);
    if (taken == 0) return false;
    text.push_back(static_cast<wchar_t>(value));
    data += taken * size;
    units -= taken;
  }
  return true;
}

std::string encodeText(const std::wstring& text, UTF_ENCODINGS encoding) {
  if (encoding == UTF_8) return toUtf8(text);
  const bool isWide = unitSize(encoding) == 4;
  std::string bytes;
  bytes.reserve((text.size() + 1) * unitSize(encoding));
  writeUnit(c_byteOrderMark, encoding, bytes);
  for (const wchar_t character : text) {
    auto value = static_cast<std::uint32_t>(character);
    if (!isScalar(value)) value = c_replacement;
    if (isWide || value < 0x10000) {
      writeUnit(value, encoding, bytes);
    } else {
      writeUnit(0xD800 + ((value - 0x10000) >> 10), encoding, bytes);
      writeUnit(0xDC00 + (value & 0x3FF), encoding, bytes);
    }
  }
  return bytes;
}

}  // namespace host
