#ifndef HOST_COMMON_ENCODING_H
#define HOST_COMMON_ENCODING_H

#include <cstddef>
#include <cstdint>
#include <string>

// Conversions between UTF-8 and wide text (UTF-32), optimised for plain ASCII.
namespace host {

// Replaces a character that cannot be converted.
constexpr std::uint32_t c_replacement = 0xFFFD;

// Returns whether `value` is a Unicode scalar value: at most U+10FFFF and not a surrogate.
constexpr bool isScalar(std::uint32_t value) {
  return value < 0xD800 || (value > 0xDFFF && value <= 0x10FFFF);
}

// Appends the wide form of valid UTF-8. Returns false and leaves `out` unchanged when the bytes are
// not valid.
bool appendWide(const char* utf8, std::size_t length, std::wstring& out);

// Returns whether the bytes are valid UTF-8.
bool isUtf8(const char* bytes, std::size_t length);

// Returns the wide form of any bytes. Each invalid sequence becomes one U+FFFD.
std::wstring toWide(const char* utf8, std::size_t length);

// Returns the UTF-8 form. A character that is not a Unicode scalar value becomes U+FFFD.
std::string toUtf8(const wchar_t* text, std::size_t length);
inline std::string toUtf8(const std::wstring& text) { return toUtf8(text.data(), text.size()); }

// utf8Size returns the size of the result of toUtf8. writeUtf8 writes that result to `out` and
// returns the end of the written bytes.
std::size_t utf8Size(const wchar_t* text, std::size_t length);
char* writeUtf8(const wchar_t* text, std::size_t length, char* out);

}  // namespace host

#endif
