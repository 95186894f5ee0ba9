#include "host/common/base64.h"

#include <openssl/evp.h>

#include <algorithm>
#include <climits>
#include <new>
#include <utility>

#include "host/common/ascii.h"

namespace host {

std::string toBase64(const std::vector<unsigned char>& bytes) {
  if (bytes.size() > INT_MAX / 2) throw std::bad_alloc();
  std::string text((bytes.size() + 2) / 3 * 4 + 1, '\0');  // the encoder adds a terminator
  EVP_EncodeBlock(reinterpret_cast<unsigned char*>(text.data()), bytes.data(),
                  static_cast<int>(bytes.size()));
  text.pop_back();
  return text;
}

bool fromBase64(std::string_view text, std::vector<unsigned char>& bytes) {
  if (text.size() % 4 != 0 || text.size() > INT_MAX / 2) return false;
  std::vector<unsigned char> result(text.size() / 4 * 3);
  if (EVP_DecodeBlock(result.data(), reinterpret_cast<const unsigned char*>(text.data()),
                      static_cast<int>(text.size())) != static_cast<int>(result.size())) {
    return false;
  }
  if (!text.empty()) {
    // The decoder accepts padding anywhere and stray bits before it. Padding is correct only in the
    // last group, and this group must be what the encoder writes.
    const std::size_t lastGroup = text.size() - 4;
    const std::size_t padding = text.size() - 1 - text.find_last_not_of('=');
    if (padding > 2 || text.find('=') < lastGroup) return false;
    unsigned char group[5];
    EVP_EncodeBlock(group, &result[result.size() - 3], static_cast<int>(3 - padding));
    if (!std::equal(group, group + 4, text.begin() + static_cast<std::ptrdiff_t>(lastGroup))) {
      return false;
    }
    result.resize(result.size() - padding);
  }
  bytes = std::move(result);
  return true;
}

bool fromBase64(const std::wstring& text, std::vector<unsigned char>& bytes) {
  char buffer[256];  // room for nearly all passwords
  std::string longText;
  char* ascii = buffer;
  if (text.size() > sizeof buffer) {
    longText.resize(text.size());
    ascii = longText.data();
  }
  return narrowAscii(text.data(), text.size(), ascii) == text.size() &&
         fromBase64(std::string_view(ascii, text.size()), bytes);
}

}  // namespace host
