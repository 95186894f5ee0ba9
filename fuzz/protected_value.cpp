#include "fuzz/stage.h"
#include "host/common/encoding.h"
#include "sitehlp/common/password.h"
#include "sitehlp/sites_helper.h"

// Decrypts any text, and encrypts and decrypts a clear value.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  fuzz::Stage::clear();
  const std::string bytes(reinterpret_cast<const char*>(data), size);
  const std::wstring text = host::toWide(bytes.data(), bytes.size());
  const std::wstring untouched = L"untouched";
  std::wstring out = untouched;
  if (sitehlp::decrypt_data(text, out) == 0) {
    fuzz::require(out == untouched, "a refused value of the server leaves the output unchanged");
  }
  out = untouched;
  if (sitehlp::EncryptDecryptPassword(text, out, false) == 0) {
    fuzz::require(out == untouched, "a refused value leaves the output unchanged");
  }
  std::wstring sealed;
  std::wstring clear;
  fuzz::require(sitehlp::EncryptDecryptPassword(text, sealed, true) != 0,
                "any text can be encrypted");
  fuzz::require(sitehlp::EncryptDecryptPassword(sealed, clear, false) != 0 && clear == text,
                "decryption restores an encrypted text");
  if (size == 0) return 0;
  // The input determines which bit is changed.
  const std::size_t at = data[0] % sealed.size();
  sealed[at] = static_cast<wchar_t>(sealed[at] ^ (1 << (data[size - 1] % 7)));
  fuzz::require(sitehlp::EncryptDecryptPassword(sealed, clear, false) == 0,
                "a value with a flipped bit is refused");
  return 0;
}
