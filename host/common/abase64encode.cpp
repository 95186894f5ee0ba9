#include "platform/common/abase64encode.h"

#include <algorithm>
#include <string>
#include <vector>

#include "host/common/base64.h"

namespace {

bool isWhiteSpace(wchar_t c) { return c == L' ' || (c >= L'\t' && c <= L'\r'); }

}  // namespace

ABuffer ABase64Encode::decode(const AString& text) {
  std::wstring digits = text.str();
  digits.erase(std::remove_if(digits.begin(), digits.end(), isWhiteSpace), digits.end());
  std::vector<unsigned char> bytes;
  return host::fromBase64(digits, bytes) ? ABuffer(bytes.data(), bytes.size()) : ABuffer();
}
