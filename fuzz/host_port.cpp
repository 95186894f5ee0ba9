#include "fuzz/stage.h"
#include "host/common/encoding.h"
#include "sitehlp/sites_helper.h"

// Splits an address of any text.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string bytes(reinterpret_cast<const char*>(data), size);
  const std::wstring text = host::toWide(bytes.data(), bytes.size());
  std::wstring host = L"before";
  unsigned int port = 4711;
  const bool split = sitehlp::split_host_and_port(text, host, port);
  const std::size_t colon = text.rfind(L':');
  fuzz::require(split == (colon != std::wstring::npos),
                "an address is split if and only if it has a colon");
  if (!split) {
    fuzz::require(host == L"before" && port == 4711, "without a colon the outputs are unchanged");
    return 0;
  }
  fuzz::require(host == text.substr(0, colon), "the host is the text before the last colon");
  // Only a port of digits is compared below.
  const std::wstring digits = text.substr(colon + 1);
  if (digits.empty() || digits.find_first_not_of(L"0123456789") != std::wstring::npos) return 0;
  const std::size_t start = digits.find_first_not_of(L'0');
  const std::wstring plain = start == std::wstring::npos ? L"0" : digits.substr(start);
  const bool fits = plain.size() < 10 || (plain.size() == 10 && plain <= L"4294967295");
  fuzz::require(fits ? std::to_wstring(port) == plain : port == 4711,
                "the port is the number after the last colon, if it fits");
  return 0;
}
