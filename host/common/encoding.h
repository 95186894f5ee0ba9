#ifndef HOST_COMMON_ENCODING_H
#define HOST_COMMON_ENCODING_H

#include <cstddef>
#include <string>

// Conversions between UTF-8 and wide text (UTF-32), fast on plain ASCII.
namespace host {

// Appends the wide form of valid UTF-8. False, with `out` as it was, when the bytes are not valid.
bool appendWide(const char* utf8, std::size_t length, std::wstring& out);

// The wide form of any bytes; each invalid sequence becomes one U+FFFD.
std::wstring toWide(const char* utf8, std::size_t length);

// The UTF-8 form; a character that is no Unicode scalar value becomes U+FFFD.
std::string toUtf8(const wchar_t* text, std::size_t length);
inline std::string toUtf8(const std::wstring& text) { return toUtf8(text.data(), text.size()); }

}  // namespace host

#endif
