#include "platform/common/astring.h"

#include <gtest/gtest.h>

#include <climits>

namespace {

TEST(AString, IsEmptyWhenMadeOfNothing) {
  EXPECT_TRUE(AString().empty());
  EXPECT_TRUE(AString(static_cast<const wchar_t*>(nullptr)).empty());
  EXPECT_TRUE(AString(static_cast<const char*>(nullptr)).empty());
  EXPECT_TRUE(AString(L"").empty());
  EXPECT_FALSE(AString(L" ").empty());
}

TEST(AString, HoldsTheTextItIsMadeOf) {
  EXPECT_EQ(AString(L"list \x20AC").str(), L"list \x20AC");
  EXPECT_EQ(AString(std::wstring(L"a\0b", 3)).str(), std::wstring(L"a\0b", 3));
  EXPECT_EQ(AString("list \xE2\x82\xAC").str(), L"list \x20AC");
  EXPECT_STREQ(AString(L"text").c_str(), L"text");
}

TEST(AString, ReplacesNarrowBytesThatAreNotValid) {
  EXPECT_EQ(AString("a\xFFz").str(), L"a\xFFFDz");
}

TEST(AString, WritesNumbersInDecimal) {
  EXPECT_EQ(AString(0).str(), L"0");
  EXPECT_EQ(AString(-5).str(), L"-5");
  EXPECT_EQ(AString(INT_MAX).str(), L"2147483647");
  EXPECT_EQ(AString(INT_MIN).str(), L"-2147483648");
}

TEST(AString, AppendsEveryKindOfPiece) {
  AString text(L"hr=");
  text.append(-5).append(L" at ").append(4294967295u).append(std::wstring(L" of "));
  text.append(LONG_MIN).append(AString(L"."));
  EXPECT_EQ(text.str(), L"hr=-5 at 4294967295 of " + std::to_wstring(LONG_MIN) + L".");
}

TEST(AString, AppendsNothingForANullPointer) {
  EXPECT_EQ(AString(L"a").append(static_cast<const wchar_t*>(nullptr)).str(), L"a");
}

TEST(AString, AppendsItself) {
  AString text(L"abc");
  text.append(text);
  EXPECT_EQ(text.str(), L"abcabc");
}

TEST(ACharString, HoldsUtf8) {
  EXPECT_EQ(ACharString(std::wstring(L"\x20AC/\x1F600")).str(), "\xE2\x82\xAC/\xF0\x9F\x98\x80");
  EXPECT_STREQ(ACharString(AString(L"name")).c_str(), "name");
}

TEST(ACharString, ReplacesWhatIsNoCharacter) {
  const std::wstring lone(1, static_cast<wchar_t>(0xD800));
  EXPECT_EQ(ACharString(lone).str(), "\xEF\xBF\xBD");
}

}  // namespace
