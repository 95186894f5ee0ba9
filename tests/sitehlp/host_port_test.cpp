#include <gtest/gtest.h>

#include <random>
#include <sstream>
#include <string>

#include "sitehlp/sites_helper.h"

namespace {

using sitehlp::split_host_and_port;

constexpr unsigned int c_noPort = 4711;

struct Split {
  bool found;
  std::wstring host;
  unsigned int port;
  bool operator==(const Split& other) const {
    return found == other.found && host == other.host && port == other.port;
  }
};
std::ostream& operator<<(std::ostream& out, const Split& split) {
  return out << split.found << " " << testing::PrintToString(split.host) << " " << split.port;
}

Split split(const std::wstring& text) {
  Split result{false, L"as it was", c_noPort};
  result.found = split_host_and_port(text, result.host, result.port);
  return result;
}

// Returns the expected result, computed with a stream. A failed extraction leaves the port
// unchanged. A stream accepts signs and wraps negative numbers around, but a port has no sign.
Split expected(const std::wstring& text) {
  const std::size_t colon = text.rfind(L':');
  if (colon == std::wstring::npos) return {false, L"as it was", c_noPort};
  Split result{true, text.substr(0, colon), c_noPort};
  std::wistringstream stream(text.substr(colon + 1));
  unsigned int number = 0;
  stream >> std::ws;
  const bool hasSign = stream.peek() == L'-' || stream.peek() == L'+';
  if (!hasSign && stream >> std::dec >> number) result.port = number;
  return result;
}

TEST(SplitHostAndPort, SplitsAtTheColon) {
  EXPECT_EQ(split(L"srv01:8080"), (Split{true, L"srv01", 8080}));
  EXPECT_EQ(split(L":443"), (Split{true, L"", 443}));
  EXPECT_EQ(split(L"srv01:0"), (Split{true, L"srv01", 0}));
  EXPECT_EQ(split(L"srv01:70000"), (Split{true, L"srv01", 70000}));
}

TEST(SplitHostAndPort, WithoutColonLeavesBothOutputsAlone) {
  EXPECT_EQ(split(L"srv01"), (Split{false, L"as it was", c_noPort}));
  EXPECT_EQ(split(L""), (Split{false, L"as it was", c_noPort}));
}

TEST(SplitHostAndPort, BareColonKeepsThePort) {
  EXPECT_EQ(split(L"srv01:"), (Split{true, L"srv01", c_noPort}));
  EXPECT_EQ(split(L":"), (Split{true, L"", c_noPort}));
}

TEST(SplitHostAndPort, TakesTheLastColon) {
  EXPECT_EQ(split(L"a:b:81"), (Split{true, L"a:b", 81}));
  EXPECT_EQ(split(L"a:81:"), (Split{true, L"a:81", c_noPort}));
  EXPECT_EQ(split(L"::"), (Split{true, L":", c_noPort}));
}

TEST(SplitHostAndPort, KeepsTheBracketsOfAnAddress) {
  EXPECT_EQ(split(L"[fe80::1]:443"), (Split{true, L"[fe80::1]", 443}));
}

TEST(SplitHostAndPort, BareIpv6AddressLosesItsLastGroup) {
  EXPECT_EQ(split(L"fe80::1"), (Split{true, L"fe80:", 1}));
  EXPECT_EQ(split(L"[fe80::1]"), (Split{true, L"[fe80:", 1}));
}

TEST(SplitHostAndPort, ReadsTheNumberAsAStreamDoes) {
  EXPECT_EQ(split(L"h: \t\n 81"), (Split{true, L"h", 81}));
  EXPECT_EQ(split(L"h:81x90"), (Split{true, L"h", 81}));
  EXPECT_EQ(split(L"h:81 90"), (Split{true, L"h", 81}));
  EXPECT_EQ(split(L"h:0x1F"), (Split{true, L"h", 0}));
  EXPECT_EQ(split(L"h:0081"), (Split{true, L"h", 81}));
}

TEST(SplitHostAndPort, SignIsNotADigit) {
  EXPECT_EQ(split(L"h:-1"), (Split{true, L"h", c_noPort}));
  EXPECT_EQ(split(L"h: -81"), (Split{true, L"h", c_noPort}));
  EXPECT_EQ(split(L"h:+81"), (Split{true, L"h", c_noPort}));
}

TEST(SplitHostAndPort, KeepsThePortWhenThereIsNoNumber) {
  EXPECT_EQ(split(L"h:x"), (Split{true, L"h", c_noPort}));
  EXPECT_EQ(split(L"h: "), (Split{true, L"h", c_noPort}));
  EXPECT_EQ(split(L"h:\uFF11\uFF12"), (Split{true, L"h", c_noPort}));
}

TEST(SplitHostAndPort, KeepsThePortWhenTheNumberIsTooLarge) {
  EXPECT_EQ(split(L"h:4294967295"), (Split{true, L"h", 4294967295u}));
  EXPECT_EQ(split(L"h:4294967296"), (Split{true, L"h", c_noPort}));
  EXPECT_EQ(split(L"h:99999999999999999999999999"), (Split{true, L"h", c_noPort}));
}

TEST(SplitHostAndPort, MayWriteIntoItsOwnText) {
  std::wstring text = L"srv01:8080";
  unsigned int port = 0;
  EXPECT_TRUE(split_host_and_port(text, text, port));
  EXPECT_EQ(text, L"srv01");
  EXPECT_EQ(port, 8080u);
}

TEST(SplitHostAndPort, AgreesWithAStreamOnEveryShortText) {
  const std::wstring letters = L":1 -+a";
  std::size_t count = 0;
  for (std::size_t length = 0; length <= 6; ++length) {
    std::size_t combinations = 1;
    for (std::size_t i = 0; i < length; ++i) combinations *= letters.size();
    for (std::size_t n = 0; n < combinations; ++n) {
      std::wstring text;
      for (std::size_t rest = n, i = 0; i < length; ++i, rest /= letters.size()) {
        text += letters[rest % letters.size()];
      }
      ASSERT_EQ(split(text), expected(text)) << testing::PrintToString(text);
      ++count;
    }
  }
  EXPECT_EQ(count, 55987u);
}

TEST(SplitHostAndPort, AgreesWithAStreamOnRandomTexts) {
  std::mt19937 random(20261121);
  const std::wstring letters =
      L"0123456789:::[].-+ \t\r\nabcxX,'_%\u00A0\u3000\u0661\u65E5\U0001F600";
  for (int n = 0; n < 50000; ++n) {
    std::wstring text;
    for (std::size_t length = random() % 24; length > 0; --length) {
      text += letters[random() % letters.size()];
    }
    ASSERT_EQ(split(text), expected(text)) << testing::PrintToString(text);
  }
}

TEST(SplitHostAndPort, AgreesWithAStreamOnNumbersAroundTheLimits) {
  for (const long long base : {0LL, 80LL, 65535LL, 2147483647LL, 4294967295LL, 42949672950LL}) {
    for (long long n = base - 2; n <= base + 2; ++n) {
      for (const wchar_t* sign : {L"", L"-", L"+", L" ", L" -"}) {
        const std::wstring text = L"h:" + std::wstring(sign) + std::to_wstring(n);
        EXPECT_EQ(split(text), expected(text)) << testing::PrintToString(text);
      }
    }
  }
}

}  // namespace
