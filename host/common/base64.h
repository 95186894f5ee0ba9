#ifndef HOST_COMMON_BASE64_H
#define HOST_COMMON_BASE64_H

#include <string>
#include <string_view>
#include <vector>

namespace host {

// Bytes as base64 text, standard alphabet with padding. Decoding takes exactly what
// encoding makes, so that no two texts stand for the same bytes; for any other text it returns
// false and leaves `bytes` as it was.
std::string toBase64(const std::vector<unsigned char>& bytes);
bool fromBase64(std::string_view text, std::vector<unsigned char>& bytes);
bool fromBase64(const std::wstring& text, std::vector<unsigned char>& bytes);

}  // namespace host

#endif
