#ifndef HOST_COMMON_BASE64_H
#define HOST_COMMON_BASE64_H

#include <string>
#include <string_view>
#include <vector>

namespace host {

// Bytes as base64 text of the standard alphabet, with padding. Decoding accepts only text that
// encoding can produce, so two different texts never have the same bytes. For any other text it
// returns false and leaves `bytes` unchanged.
std::string toBase64(const std::vector<unsigned char>& bytes);
bool fromBase64(std::string_view text, std::vector<unsigned char>& bytes);
bool fromBase64(const std::wstring& text, std::vector<unsigned char>& bytes);

}  // namespace host

#endif
