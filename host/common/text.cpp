#include "platform/common/text.h"

#include <cstdint>

namespace {

// Upper-case letters beyond ASCII and their distance to the lower-case letters: every `step`-th
// character from `first` to `last`. Letters of other scripts are compared exactly.
struct CaseRange {
  std::uint32_t first;
  std::uint32_t last;
  std::uint32_t step;
  std::int32_t distance;
};

constexpr CaseRange c_ranges[] = {
    {0x00C0, 0x00D6, 1, 32},    // Latin-1
    {0x00D8, 0x00DE, 1, 32},    //
    {0x0100, 0x012E, 2, 1},     // Latin Extended-A
    {0x0132, 0x0136, 2, 1},     //
    {0x0139, 0x0147, 2, 1},     //
    {0x014A, 0x0176, 2, 1},     //
    {0x0178, 0x0178, 1, -121},  //
    {0x0179, 0x017D, 2, 1},     //
    {0x0386, 0x0386, 1, 38},    // Greek
    {0x0388, 0x038A, 1, 37},    //
    {0x038C, 0x038C, 1, 64},    //
    {0x038E, 0x038F, 1, 63},    //
    {0x0391, 0x03A1, 1, 32},    //
    {0x03A3, 0x03AB, 1, 32},    //
    {0x03C2, 0x03C2, 1, 1},     // final sigma
    {0x0400, 0x040F, 1, 80},    // Cyrillic
    {0x0410, 0x042F, 1, 32},    //
    {0x0460, 0x0480, 2, 1},     //
    {0x048A, 0x04BE, 2, 1},     //
    {0x04C0, 0x04C0, 1, 15},    //
    {0x04C1, 0x04CD, 2, 1},     //
    {0x04D0, 0x052E, 2, 1},     //
};

std::uint32_t fold(wchar_t character) {
  const auto c = static_cast<std::uint32_t>(character);
  if (c < 0x80) return c >= 'A' && c <= 'Z' ? c + 32 : c;
  for (const CaseRange& range : c_ranges) {
    if (c >= range.first && c <= range.last && (c - range.first) % range.step == 0) {
      return c + static_cast<std::uint32_t>(range.distance);
    }
  }
  return c;
}

}  // namespace

int wcsicmp(const wchar_t* a, const wchar_t* b) {
  for (;; ++a, ++b) {
    const std::uint32_t left = fold(*a);
    const std::uint32_t right = fold(*b);
    if (left != right) return left < right ? -1 : 1;
    if (left == 0) return 0;
  }
}

bool convertFqdnToNetbios(std::wstring& name) {
  const std::size_t dot = name.find(L'.');
  if (dot == std::wstring::npos) return false;
  name.erase(dot);
  return true;
}
