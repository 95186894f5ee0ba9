#include "platform/common/text.h"

#include <gtest/gtest.h>

#include <clocale>
#include <cwctype>
#include <string>
#include <utility>

namespace {

TEST(CompareWithoutCase, FindsEqualTexts) {
  EXPECT_EQ(wcsicmp(L"", L""), 0);
  EXPECT_EQ(wcsicmp(L"VestaSite", L"vESTAsITE"), 0);
  EXPECT_EQ(wcsicmp(L"a1-_.:Z", L"A1-_.:z"), 0);
}

TEST(CompareWithoutCase, TellsTheOrder) {
  EXPECT_LT(wcsicmp(L"a", L"B"), 0);
  EXPECT_GT(wcsicmp(L"b", L"A"), 0);
  EXPECT_LT(wcsicmp(L"A", L"b"), 0);
  EXPECT_LT(wcsicmp(L"ab", L"ABC"), 0);
  EXPECT_GT(wcsicmp(L"ABC", L"ab"), 0);
  EXPECT_LT(wcsicmp(L"", L"a"), 0);
  EXPECT_GT(wcsicmp(L"a", L""), 0);
}

TEST(CompareWithoutCase, KeepsApartWhatOnlyLooksAlike) {
  EXPECT_NE(wcsicmp(L"[", L"{"), 0);
  EXPECT_NE(wcsicmp(L"@", L"`"), 0);
  EXPECT_NE(wcsicmp(L"^", L"~"), 0);
  EXPECT_NE(wcsicmp(L"A", L"\x0410"), 0);
  EXPECT_NE(wcsicmp(L"\xD7", L"\xF7"), 0);
}

TEST(CompareWithoutCase, SortsCharactersAsUnsignedNumbers) {
  const wchar_t large[] = {static_cast<wchar_t>(0xFFFFFFFF), 0};
  EXPECT_LT(wcsicmp(L"a", large), 0);
  EXPECT_GT(wcsicmp(large, L"a"), 0);
}

TEST(CompareWithoutCase, FoldsLettersBeyondAscii) {
  EXPECT_EQ(wcsicmp(L"\xC4\xD6\xDC\xC9\xDE", L"\xE4\xF6\xFC\xE9\xFE"), 0);
  EXPECT_EQ(wcsicmp(L"\x0141\x00F3\x0178\x017D", L"\x0142\x00D3\x00FF\x017E"), 0);
  EXPECT_EQ(wcsicmp(L"\x0391\x03A9\x0386", L"\x03B1\x03C9\x03AC"), 0);
  EXPECT_EQ(wcsicmp(L"\x03A3", L"\x03C2"), 0);
  EXPECT_EQ(wcsicmp(L"\x0410\x042F\x0401\x0490", L"\x0430\x044F\x0451\x0491"), 0);
}

class UnicodeLocale {
 public:
  UnicodeLocale() : m_before(std::setlocale(LC_CTYPE, nullptr)) {
    m_found = std::setlocale(LC_CTYPE, "C.UTF-8") || std::setlocale(LC_CTYPE, "en_US.UTF-8");
  }
  ~UnicodeLocale() { std::setlocale(LC_CTYPE, m_before.c_str()); }
  bool found() const { return m_found; }

 private:
  std::string m_before;
  bool m_found;
};

// wcsicmp must fold each letter of these scripts as the system does.
TEST(CompareWithoutCase, FoldsEveryLetterAsTheSystemDoes) {
  const UnicodeLocale locale;
  ASSERT_TRUE(locale.found());
  const std::pair<wchar_t, wchar_t> scripts[] = {
      {0x1, 0x17F}, {0x386, 0x3AB}, {0x400, 0x481}, {0x48A, 0x52F}};
  int folded = 0;
  for (const auto& [first, last] : scripts) {
    for (wchar_t c = first; c <= last; ++c) {
      if (c == 0x130) continue;  // a dotted capital I has no lower-case letter of its own
      const wchar_t upper[] = {c, 0};
      const wchar_t lower[] = {static_cast<wchar_t>(std::towlower(static_cast<wint_t>(c))), 0};
      EXPECT_EQ(wcsicmp(upper, lower), 0) << std::hex << static_cast<int>(c);
      folded += lower[0] != c;
    }
  }
  EXPECT_GT(folded, 250);
}

// Letters that wcsicmp considers equal must also be equal for the system.
TEST(CompareWithoutCase, FoldsNothingButLetters) {
  const UnicodeLocale locale;
  ASSERT_TRUE(locale.found());
  for (wchar_t a = 1; a < 0x600; ++a) {
    for (wchar_t b = a + 1; b < 0x600; ++b) {
      const wchar_t left[] = {a, 0};
      const wchar_t right[] = {b, 0};
      if (wcsicmp(left, right) != 0) continue;
      EXPECT_EQ(std::towupper(static_cast<wint_t>(a)), std::towupper(static_cast<wint_t>(b)))
          << std::hex << static_cast<int>(a) << " " << static_cast<int>(b);
    }
  }
}

TEST(CompareWithoutCase, DoesNotDependOnTheLocale) {
  const std::string before = std::setlocale(LC_ALL, nullptr);
  for (const char* name : {"C", "C.UTF-8", "POSIX"}) {
    if (!std::setlocale(LC_ALL, name)) continue;
    EXPECT_EQ(wcsicmp(L"I\xC4", L"i\xE4"), 0) << name;
    EXPECT_NE(wcsicmp(L"I", L"\x131"), 0) << name;
  }
  std::setlocale(LC_ALL, before.c_str());
}

TEST(NetbiosName, IsCutAtTheFirstDot) {
  std::wstring name = L"server.branch.example";
  EXPECT_TRUE(convertFqdnToNetbios(name));
  EXPECT_EQ(name, L"server");
}

TEST(NetbiosName, StaysWhenThereIsNoDot) {
  std::wstring name = L"SERVER";
  EXPECT_FALSE(convertFqdnToNetbios(name));
  EXPECT_EQ(name, L"SERVER");
  name.clear();
  EXPECT_FALSE(convertFqdnToNetbios(name));
  EXPECT_EQ(name, L"");
}

TEST(NetbiosName, CountsADotAtEitherEnd) {
  std::wstring name = L"server.";
  EXPECT_TRUE(convertFqdnToNetbios(name));
  EXPECT_EQ(name, L"server");
  name = L".server";
  EXPECT_TRUE(convertFqdnToNetbios(name));
  EXPECT_EQ(name, L"");
}

}  // namespace
