#include "sitehlp/common/number.h"

#include <cstdint>
#include <cstdlib>
#include <cwchar>
#include <limits>

#include "sitehlp/sites_helper.h"

namespace sitehlp {

int toInt(const char* text) {
  // atoi has undefined behaviour for a number out of range.
  return static_cast<int>(std::strtol(text, nullptr, 10));
}

bool toUnsigned(const wchar_t* text, unsigned int& number) {
  constexpr std::uint64_t c_limit = std::numeric_limits<unsigned int>::max();
  while (*text == L' ' || (*text >= L'\t' && *text <= L'\r')) ++text;
  // A sign is not accepted. Otherwise a negative number could become a valid port.
  if (*text < L'0' || *text > L'9') return false;
  std::uint64_t value = 0;
  for (; *text >= L'0' && *text <= L'9'; ++text) {
    value = value * 10 + static_cast<std::uint64_t>(*text - L'0');
    if (value > c_limit) return false;
  }
  number = static_cast<unsigned int>(value);
  return true;
}

const wchar_t* findPort(const wchar_t* text) { return std::wcsrchr(text, L':'); }

bool split_host_and_port(std::wstring text, std::wstring& host, unsigned int& port) {
  const std::size_t colon = text.rfind(L':');
  if (colon == std::wstring::npos) return false;
  toUnsigned(text.c_str() + colon + 1, port);
  text.resize(colon);
  host = std::move(text);
  return true;
}

std::wstring CSitesHelper::ConvertToStr(unsigned int value) {
  const Decimal text(value);
  return std::wstring(text.data(), text.size());
}

std::wstring CSitesHelper::ConvertToStr(int value) {
  const Decimal text(value);
  return std::wstring(text.data(), text.size());
}

std::wstring CSitesHelper::ConvertToStr(bool value) { return value ? L"1" : L"0"; }

}  // namespace sitehlp
