#include "platform/common/abase64encode.h"

#include <string>
#include <vector>

#include "host/common/base64.h"

namespace {

bool isWhiteSpace(wchar_t c) { return c == L' ' || (c >= L'\t' && c <= L'\r'); }

}  // namespace

ABuffer ABase64Encode::decode(const AString& text) {
  std::string narrow;
  narrow.reserve(text.str().size());
  for (const wchar_t c : text.str()) {
    if (c < 0 || c > 0x7F) return ABuffer();
    if (!isWhiteSpace(c)) narrow.push_back(static_cast<char>(c));
  }
  std::vector<unsigned char> bytes;
  return host::fromBase64(narrow, bytes) ? ABuffer(bytes.data(), bytes.size()) : ABuffer();
}
