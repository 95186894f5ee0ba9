#include "sitehlp/list_contents.h"

#include <gmock/gmock.h>

#include <cstring>
#include <new>
#include <stdexcept>
#include <string>
#include <vector>

#include "tests/import/failing_allocation.h"
#include "tests/sitehlp/hooked_file_system.h"
#include "tests/sitehlp/sites_helper_fixture.h"

// ReadListContents: all content of a file in one read, and its sites one by one.
namespace {

using sitehlp::ListContents;
using sitehlp::tag_Site;
using test::LockState;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;

const std::string c_sites =
    R"(<SiteList><HttpSite Name="one" Order="3"><UserName>u</UserName></HttpSite>)"
    R"(<UNCSite Name="two" Type="fallback"/><ProxyConfigList UseIEConfig="1"/></SiteList>)";
const std::string c_full = test::documentWithRoot(
    R"(<CaBundle><CaCertificate>c1</CaCertificate><CaCertificate>c2</CaCertificate></CaBundle>)"
    R"(<Policies><Setting name="a">1</Setting><Setting name="b">2</Setting></Policies>)" +
        c_sites,
    R"(GlobalVersion="g" LocalVersion="l" Type="Server" FipsMode="1")");

class Contents : public test::SitesHelperTest {
 protected:
  int readContents(const std::wstring& file) {
    sites.clear();
    return sitehlp::CSitesHelper::ReadListContents(
        file, contents, [this](tag_Site* site) { sites.emplace_back(site); });
  }

  bool isEmpty() const {
    return sites.empty() && contents.globalVersion.empty() && contents.localVersion.empty() &&
           contents.type.empty() && !contents.fipsMode && contents.certificates.empty() &&
           contents.policySettings.empty();
  }

  ListContents contents;
  std::vector<test::ListPtr> sites;
};

// Shows: ReadListContents=0
TEST_F(Contents, AreWhatTheSingleReadsTell) {
  const std::wstring file = store(c_full);
  EXPECT_EQ(readContents(file), 0);
  const Read whole = readPath(file);
  std::wstring globalVersion, localVersion, type, fipsMode;
  std::vector<std::wstring> certificates;
  EXPECT_EQ(helper.GetSitelistVersions(file, globalVersion, localVersion, type), 0);
  EXPECT_EQ(helper.GetSitelistFipsMode(file, fipsMode), 0);
  EXPECT_EQ(helper.GetCaCertificates(file, certificates), 0);
  EXPECT_EQ(contents.globalVersion, globalVersion);
  EXPECT_EQ(contents.localVersion, localVersion);
  EXPECT_EQ(contents.type, type);
  EXPECT_EQ(contents.fipsMode, fipsMode);
  EXPECT_EQ(contents.certificates, certificates);
  EXPECT_EQ(contents.policySettings, helper.m_policySettings);
  EXPECT_EQ(globalVersion + localVersion + type + fipsMode, L"glServer1");
  EXPECT_THAT(certificates, ElementsAre(L"c1", L"c2"));
  EXPECT_THAT(contents.policySettings, ElementsAre(Pair(L"a", L"1"), Pair(L"b", L"2")));
  ASSERT_EQ(sites.size(), 3u);
  const tag_Site* expected = whole.list.get();
  for (const test::ListPtr& site : sites) {
    EXPECT_EQ(site->pNext, nullptr);
    tag_Site copy = *expected;
    copy.pNext = nullptr;
    EXPECT_EQ(std::memcmp(site.get(), &copy, sizeof copy), 0) << site->eSiteKind;
    expected = expected->pNext;
  }
}

TEST_F(Contents, SayClientAndNoFipsModeWhenTheListDoesNot) {
  EXPECT_EQ(readContents(store(test::documentWithRoot(""))), 0);
  EXPECT_EQ(contents.type, L"Client");
  EXPECT_EQ(contents.fipsMode, std::nullopt);
  EXPECT_THAT(sites, IsEmpty());
}

TEST_F(Contents, AreThereBeforeTheFirstSite) {
  std::vector<std::wstring> seen;
  EXPECT_EQ(sitehlp::CSitesHelper::ReadListContents(store(c_full), contents,
                                                    [&](tag_Site* site) {
                                                      const test::ListPtr owner(site);
                                                      seen.push_back(contents.globalVersion +
                                                                     contents.type +
                                                                     contents.policySettings[L"b"]);
                                                    }),
            0);
  EXPECT_THAT(seen, ElementsAre(L"gServer2", L"gServer2", L"gServer2"));
}

// Shows: ReadListContents=-1
TEST_F(Contents, OfAListWithAnUnknownLastSiteAreAllThere) {
  EXPECT_EQ(readContents(store(test::documentWithRoot("<SiteList><UNCSite/><Other/></SiteList>",
                                                      R"(GlobalVersion="g")"))),
            -1);
  EXPECT_EQ(sites.size(), 2u);
  EXPECT_EQ(contents.globalVersion, L"g");
}

// Shows: ReadListContents=-2, ReadListContents=-4, ReadListContents=-5, ReadListContents=-10
TEST_F(Contents, AreEmptyAfterEachFailureOfTheReader) {
  const std::wstring files[] = {L"", path("missing.xml"), store("no document", "text"),
                                store("<a><b></a>", "ill"), test::wide(agent.dataDirectory())};
  std::vector<int> codes;
  for (const std::wstring& file : files) {
    ASSERT_EQ(readContents(store(c_full)), 0);
    codes.push_back(readContents(file));
    EXPECT_TRUE(isEmpty()) << test::narrow(file);
  }
  EXPECT_THAT(codes, ElementsAre(-2, -4, -5, -5, -10));
}

TEST_F(Contents, ComeFromOneReadOfTheFileUnderTheReadLock) {
  const std::wstring file = store(c_full);
  std::vector<LockState> opened;
  std::vector<LockState> taken;
  const auto note = [&](const std::string& name) {
    if (test::endsWith(name, "list.xml")) {
      opened.push_back(test::lockState(sitehlp::c_siteListLock));
    }
  };
  test::HookedFileSystem hooked(note, note);
  EXPECT_EQ(sitehlp::CSitesHelper::ReadListContents(file, contents,
                                                    [&](tag_Site* site) {
                                                      const test::ListPtr owner(site);
                                                      taken.push_back(
                                                          test::lockState(sitehlp::c_siteListLock));
                                                    }),
            0);
  EXPECT_THAT(opened, ElementsAre(LockState::Read));
  EXPECT_THAT(taken, ElementsAre(LockState::Free, LockState::Free, LockState::Free));
}

TEST_F(Contents, WhatTheTakerThrowsEndsTheRead) {
  int count = 0;
  EXPECT_THROW(sitehlp::CSitesHelper::ReadListContents(store(c_full), contents,
                                                       [&](tag_Site* site) {
                                                         const test::ListPtr owner(site);
                                                         if (++count == 2)
                                                           throw std::runtime_error("enough");
                                                       }),
               std::runtime_error);
  EXPECT_EQ(count, 2);
}

TEST_F(Contents, ARecordThatCannotBeAllocatedEndsTheReadBehindThoseThatWereTaken) {
  const std::wstring file = store(c_full);
  {
    const test::FailingAllocation failing(sizeof(tag_Site), 1);
    EXPECT_THROW(readContents(file), std::bad_alloc);
  }
  EXPECT_EQ(sites.size(), 1u);
}

}  // namespace
