#include <gmock/gmock.h>
#include <sys/resource.h>

#include <climits>
#include <string>
#include <vector>

#include "tests/sitehlp/sites_helper_fixture.h"

namespace {

using sitehlp::CSitesHelper;
using sitehlp::tag_Site;
using testing::ElementsAre;
using testing::IsEmpty;

// --- Filling a text field
// -------------------------------------------------------------------------

class CopyWStr : public test::SitesHelperTest {
 protected:
  // Copies into a field with other content and with a guard after it, and checks the whole field.
  void expectCopy(const std::wstring& source, std::size_t capacity, const std::wstring& kept) {
    std::vector<wchar_t> field(capacity + 1, L'?');
    CSitesHelper::CopyWStr(field.data(), source.c_str(), static_cast<unsigned long>(capacity));
    for (std::size_t i = 0; i < capacity; ++i) {
      ASSERT_EQ(field[i], i < kept.size() ? kept[i] : L'\0') << "at " << i << " of " << capacity;
    }
    EXPECT_EQ(field[capacity], L'?') << "wrote past the end of the field";
  }
};

TEST_F(CopyWStr, ZeroesEverythingBehindAShortText) {
  expectCopy(L"abc", 260, L"abc");
  expectCopy(L"", 260, L"");
  EXPECT_THAT(agent.log(), IsEmpty());
}

TEST_F(CopyWStr, TextThatFillsTheFieldIsCopiedWholeWithoutALogLine) {
  const std::wstring text(259, L'a');
  expectCopy(text, 260, text);
  EXPECT_THAT(agent.log(), IsEmpty());
}

TEST_F(CopyWStr, TextOneCharacterTooLongIsCutAndLoggedOnce) {
  const std::wstring kept(259, L'a');
  expectCopy(kept + L"b", 260, kept);
  EXPECT_THAT(agent.log(), ElementsAre(detail(L"String " + kept + L"b is truncated to " + kept +
                                              L" in CopyWStr")));
}

TEST_F(CopyWStr, LongTextIsLoggedInFull) {
  expectCopy(L"0123456789", 4, L"012");
  EXPECT_THAT(agent.log(),
              ElementsAre(detail(L"String 0123456789 is truncated to 012 in CopyWStr")));
}

TEST_F(CopyWStr, CapacityOneKeepsNothing) {
  expectCopy(L"", 1, L"");
  EXPECT_THAT(agent.log(), IsEmpty());
  expectCopy(L"x", 1, L"");
  EXPECT_THAT(agent.log(), ElementsAre(detail(L"String x is truncated to  in CopyWStr")));
}

TEST_F(CopyWStr, EveryLengthAroundEveryCapacityOfARecord) {
  for (const std::size_t capacity : {100u, 260u, 261u, 520u, 4001u}) {
    for (std::size_t length = capacity - 2; length <= capacity + 2; ++length) {
      std::wstring text;
      for (std::size_t i = 0; i < length; ++i) text += static_cast<wchar_t>(L'a' + i % 26);
      agent.clearLog();
      expectCopy(text, capacity, text.substr(0, capacity - 1));
      EXPECT_EQ(agent.log().size(), length >= capacity ? 1u : 0u) << length << "/" << capacity;
    }
  }
}

TEST_F(CopyWStr, CutsBetweenCharactersOfEveryScript) {
  expectCopy(L"\u65E5\u672C\U0001F600\u00FC", 4, L"\u65E5\u672C\U0001F600");
  EXPECT_THAT(messages(), ElementsAre(detail(L"String \u65E5\u672C\U0001F600\u00FC is truncated to "
                                             L"\u65E5\u672C\U0001F600 in CopyWStr")));
}

TEST_F(CopyWStr, LogsNothingAtAHigherThreshold) {
  agent.settings.logLevel = LogLevel::Info;
  agent.apply();
  expectCopy(L"0123456789", 4, L"012");
  EXPECT_THAT(agent.log(), IsEmpty());
}

// --- Numbers
// --------------------------------------------------------------------------------------

TEST(ConvertToStr, WritesABoolAsADigit) {
  EXPECT_EQ(CSitesHelper::ConvertToStr(true), L"1");
  EXPECT_EQ(CSitesHelper::ConvertToStr(false), L"0");
}

TEST(ConvertToStr, WritesASignedNumber) {
  EXPECT_EQ(CSitesHelper::ConvertToStr(0), L"0");
  EXPECT_EQ(CSitesHelper::ConvertToStr(7), L"7");
  EXPECT_EQ(CSitesHelper::ConvertToStr(-5), L"-5");
  EXPECT_EQ(CSitesHelper::ConvertToStr(1234567), L"1234567");
  EXPECT_EQ(CSitesHelper::ConvertToStr(INT_MAX), L"2147483647");
  EXPECT_EQ(CSitesHelper::ConvertToStr(INT_MIN), L"-2147483648");
}

TEST(ConvertToStr, WritesAnUnsignedNumber) {
  EXPECT_EQ(CSitesHelper::ConvertToStr(0u), L"0");
  EXPECT_EQ(CSitesHelper::ConvertToStr(65535u), L"65535");
  EXPECT_EQ(CSitesHelper::ConvertToStr(2147483648u), L"2147483648");
  EXPECT_EQ(CSitesHelper::ConvertToStr(4294967295u), L"4294967295");
}

// --- Releasing a list
// -----------------------------------------------------------------------------

class FreeSiteListMemory : public test::SitesHelperTest {
 protected:
  static tag_Site* makeList(int length) {
    tag_Site* head = nullptr;
    for (int i = 0; i < length; ++i) {
      tag_Site* site = test::newSite(sitehlp::SITE_KIND_HTTP);
      site->pNext = head;
      head = site;
    }
    return head;
  }

  // Returns the peak memory of this process in bytes.
  static double peakMemory() {
    rusage usage{};
    ::getrusage(RUSAGE_SELF, &usage);
#ifdef __APPLE__
    return static_cast<double>(usage.ru_maxrss);
#else
    return static_cast<double>(usage.ru_maxrss) * 1024;
#endif
  }
};

TEST_F(FreeSiteListMemory, OfANullListReleasesNothing) {
  EXPECT_EQ(CSitesHelper::FreeSiteListMemory(nullptr), 0);
}

TEST_F(FreeSiteListMemory, ReturnsZeroForEveryLength) {
  for (const int length : {1, 2, 3, 1000}) {
    EXPECT_EQ(CSitesHelper::FreeSiteListMemory(makeList(length)), 0) << length;
  }
}

TEST_F(FreeSiteListMemory, OpensItsScope) {
  CSitesHelper::FreeSiteListMemory(makeList(2));
  EXPECT_THAT(agent.log(), ElementsAre(detail(L"Enter: Free memory for Sitelist"),
                                       detail(L"Leave: Free memory for Sitelist")));
  agent.clearLog();
  CSitesHelper::FreeSiteListMemory(nullptr);
  EXPECT_THAT(agent.log(), ElementsAre(detail(L"Enter: Free memory for Sitelist"),
                                       detail(L"Leave: Free memory for Sitelist")));
}

TEST_F(FreeSiteListMemory, ReleasesEveryRecordOfEveryList) {
  agent.settings.logLevel = LogLevel::Off;
  agent.apply();
  const double before = peakMemory();
  double handled = 0;
  for (const int length : {1, 2, 500}) {
    for (double freed = 0; freed < 500e6; freed += length * 29600.0) {
      tag_Site* head = makeList(length);
      for (tag_Site* site = head; site; site = site->pNext) {
        for (wchar_t& character : site->proxy.szExclusionList) character = L'x';
      }
      CSitesHelper::FreeSiteListMemory(head);
      handled += length * 29600.0;
    }
  }
  EXPECT_GT(handled, 1.4e9);
  // The allocator of a sanitizer may keep 256 MB of released memory.
  EXPECT_LT(peakMemory() - before, 400e6);
}

TEST_F(FreeSiteListMemory, LeavesTheCachedListPointerAlone) {
  tag_Site* cached = makeList(1);
  CSitesHelper::m_pSiteList = cached;
  CSitesHelper::FreeSiteListMemory(makeList(1));
  EXPECT_EQ(CSitesHelper::m_pSiteList, cached);
  CSitesHelper::FreeSiteListMemory(cached);
  EXPECT_EQ(CSitesHelper::m_pSiteList, cached);
  CSitesHelper::m_pSiteList = nullptr;
}

}  // namespace
