#include "host/common/encoding.h"

#include <gtest/gtest.h>

namespace {

using host::appendWide;
using host::isScalar;
using host::toUtf8;
using host::toWide;

std::wstring wideOf(const std::string& utf8) { return toWide(utf8.data(), utf8.size()); }

bool isValid(const std::string& utf8) {
  std::wstring out;
  return appendWide(utf8.data(), utf8.size(), out);
}

TEST(Encoding, ConvertsCharactersOfEveryLength) {
  const std::string utf8 =
      "A\xC2\x80\xDF\xBF\xE0\xA0\x80\xEF\xBF\xBF\xF0\x90\x80\x80\xF4\x8F\xBF\xBFz";
  const std::wstring wide = {L'A', 0x80, 0x7FF, 0x800, 0xFFFF, 0x10000, 0x10FFFF, L'z'};
  EXPECT_EQ(wideOf(utf8), wide);
  EXPECT_EQ(toUtf8(wide), utf8);
}

TEST(Encoding, KeepsZeroCharacters) {
  const std::string utf8("a\0b\0", 4);
  const std::wstring wide(L"a\0b\0", 4);
  EXPECT_EQ(wideOf(utf8), wide);
  EXPECT_EQ(toUtf8(wide), utf8);
}

TEST(Encoding, ConvertsEveryScalarValueThereAndBack) {
  std::wstring all;
  for (std::uint32_t c = 0; c <= 0x10FFFF; ++c) {
    if (isScalar(c)) all.push_back(static_cast<wchar_t>(c));
  }
  ASSERT_EQ(all.size(), 0x110000u - 0x800u);
  const std::string utf8 = toUtf8(all);
  EXPECT_EQ(utf8.size(), host::utf8Size(all.data(), all.size()));
  EXPECT_TRUE(wideOf(utf8) == all);
}

// The block-wise conversion must not lose or move characters at block borders.
TEST(Encoding, ConvertsOneForeignCharacterAtEveryPlaceOfAnAsciiText) {
  for (std::size_t length = 1; length <= 40; ++length) {
    for (std::size_t place = 0; place < length; ++place) {
      std::wstring wide(length, L'x');
      wide[place] = 0x20AC;
      std::string utf8(length - 1, 'x');
      utf8.insert(place, "\xE2\x82\xAC");
      EXPECT_EQ(wideOf(utf8), wide) << length << " " << place;
      EXPECT_EQ(toUtf8(wide), utf8) << length << " " << place;
    }
  }
}

TEST(Encoding, RefusesInvalidSequencesAtEveryPlaceOfAnAsciiText) {
  for (std::size_t place = 0; place <= 20; ++place) {
    std::string utf8(20, 'x');
    utf8.insert(place, "\xC3");
    EXPECT_FALSE(isValid(utf8)) << place;
  }
}

TEST(Encoding, LeavesTheOutputAsItWasWhenTheBytesAreNotValid) {
  std::wstring out = L"before";
  EXPECT_FALSE(appendWide("after\x80", 6, out));
  EXPECT_EQ(out, L"before");
  EXPECT_TRUE(appendWide("after", 5, out));
  EXPECT_EQ(out, L"beforeafter");
}

class InvalidUtf8 : public testing::TestWithParam<const char*> {};

TEST_P(InvalidUtf8, IsRefused) { EXPECT_FALSE(isValid(GetParam())); }

TEST_P(InvalidUtf8, BecomesOneReplacementCharacterAmongOtherText) {
  EXPECT_EQ(wideOf(std::string("ab") + GetParam() + "cd"),
            L"ab\xFFFD"
            L"cd");
}

INSTANTIATE_TEST_SUITE_P(
    Encoding, InvalidUtf8,
    testing::Values("\x80", "\xBF",                      // continuation without a lead
                    "\xFE", "\xFF", "\xF8",              // bytes that never occur
                    "\xC2", "\xE2\x82", "\xF0\x9F\x98",  // cut short
                    "\xC0\x80", "\xC1\xBF",              // longer than needed
                    "\xE0\x80\x80", "\xE0\x9F\xBF", "\xF0\x80\x80\x80", "\xF0\x8F\xBF\xBF",
                    "\xED\xA0\x80", "\xED\xBF\xBF",           // surrogates
                    "\xF4\x90\x80\x80", "\xF7\xBF\xBF\xBF"),  // beyond the last character
    [](const testing::TestParamInfo<const char*>& param) { return std::to_string(param.index); });

TEST(Encoding, ReplacesASequenceThatTheEndCutsOff) {
  EXPECT_EQ(wideOf("ab\xE2\x82"), L"ab\xFFFD");
  EXPECT_EQ(wideOf("\xF0\x9F"), L"\xFFFD");
}

TEST(Encoding, ReplacesWideCharactersThatAreNoScalarValues) {
  const std::wstring wide = {L'a',
                             static_cast<wchar_t>(0xD800),
                             static_cast<wchar_t>(0xDFFF),
                             static_cast<wchar_t>(0x110000),
                             static_cast<wchar_t>(0xFFFFFFFF),
                             L'b'};
  const std::string replacement = "\xEF\xBF\xBD";
  EXPECT_EQ(toUtf8(wide), "a" + replacement + replacement + replacement + replacement + "b");
  EXPECT_EQ(host::utf8Size(wide.data(), wide.size()), 14u);
}

TEST(Encoding, ConvertsEmptyText) {
  EXPECT_EQ(toWide(nullptr, 0), L"");
  EXPECT_EQ(toUtf8(nullptr, 0), "");
}

}  // namespace
