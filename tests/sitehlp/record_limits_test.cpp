#include "sitehlp/records/record_limits.h"

#include <gmock/gmock.h>

#include "sitehlp/records/site_elements.h"
#include "tests/sitehlp/sites_helper_fixture.h"

namespace {

using sitehlp::RecordLimits;
using sitehlp::tag_Site;
using testing::StrEq;

TEST(KnownElements, AreTheSitesAndTheListOfProxies) {
  for (const wchar_t* const name : {L"HttpSite", L"VestaSite", L"KeystoneSite", L"FTPSite",
                                    L"UNCSite", L"LocalSite", L"ProxyConfigList"}) {
    EXPECT_TRUE(sitehlp::isKnownInList(name)) << testing::PrintToString(std::wstring(name));
  }
  for (const wchar_t* const name : {L"ProxyConfig", L"httpsite", L"Other", L""}) {
    EXPECT_FALSE(sitehlp::isKnownInList(name)) << testing::PrintToString(std::wstring(name));
  }
}

bool isWrittenAsUnknown(sitehlp::SiteKind kind, const std::wstring& element) {
  tag_Site* const site = test::newSite(kind);
  const test::ListPtr owner(site);
  test::put(site->http.szElement, element);
  return sitehlp::isWrittenAsUnknown(*site);
}

TEST(RecordsOfUnknownKind, AreHttpSitesWithTheNameOfAnotherElement) {
  EXPECT_TRUE(isWrittenAsUnknown(sitehlp::SITE_KIND_HTTP, L"Other"));
  EXPECT_TRUE(isWrittenAsUnknown(sitehlp::SITE_KIND_HTTP, L"ProxyConfig"));
  EXPECT_FALSE(isWrittenAsUnknown(sitehlp::SITE_KIND_HTTP, L"VestaSite"));
  EXPECT_FALSE(isWrittenAsUnknown(sitehlp::SITE_KIND_HTTP, L""));
  EXPECT_FALSE(isWrittenAsUnknown(sitehlp::SITE_KIND_UNC, L"Other"));
}

TEST(RecordLimits, AllowSoManyElementsOfUnknownKindAndAnyNumberOfOthers) {
  const test::TestAgent agent;
  RecordLimits limits;
  for (std::size_t i = 0; i < 1024; ++i) {
    ASSERT_EQ(limits.add(false), nullptr) << i;
    ASSERT_EQ(limits.add(true), nullptr) << i;
  }
  EXPECT_EQ(limits.add(true), nullptr);
  EXPECT_THAT(limits.add(false), StrEq("number of elements of unknown kind"));
}

TEST(RecordLimits, AllowAsManyRecordsAsTheMemoryOfTheSettingsHolds) {
  test::TestAgent agent;
  agent.settings.maxRecordMegabytes = 1;
  agent.apply();
  RecordLimits limits;
  const std::size_t most = (std::size_t{1} << 20) / sizeof(tag_Site);
  for (std::size_t i = 0; i < most; ++i) ASSERT_EQ(limits.add(true), nullptr) << i;
  EXPECT_THAT(limits.add(true), StrEq("memory for records"));
}

}  // namespace
