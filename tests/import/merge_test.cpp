#include <gmock/gmock.h>

#include <filesystem>

#include "tests/edit/lock_watch.h"
#include "tests/import/documents.h"
#include "tests/import/log_lines.h"
#include "tests/import/records.h"
#include "tests/support/test_agent.h"

using namespace sitehlp;
using namespace test;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;

namespace {

const std::string c_fallbackAttributes = R"(Type="fallback" Enabled="1" Local="0")";

class Merge : public testing::Test {
 protected:
  void current(const std::string& sites) { writeFile(path, document(sites)); }

  int merge(const SiteChain& first, const SiteChain& second, bool useSecond) {
    OpenHelper helper(wide(path));
    agent.clearLog();
    return helper.MergeSiteLists(first.head(), second.head(), useSecond, result.address());
  }
  std::vector<std::wstring> names() const { return namesOf(result.head()); }
  // The scopes entered, without those of single elements and of releasing memory.
  std::vector<std::wstring> steps() const {
    std::vector<std::wstring> texts;
    for (const std::wstring& text : libraryTraces(agent)) {
      if (text == L"Reading site from SiteList" || text == L"Free memory for Sitelist") continue;
      texts.push_back(text);
    }
    return texts;
  }

  TestAgent agent;
  const std::string path = agent.etc("SiteList.xml");
  const SiteChain none{};
  SiteChain result;
};

// Shows: MergeSiteLists=-2
TEST_F(Merge, ANullResultIsRefusedAndLogged) {
  current(httpElement("c"));
  OpenHelper helper(wide(path));
  agent.clearLog();
  const SiteChain list{httpSite(L"a")};
  EXPECT_EQ(helper.MergeSiteLists(list.head(), nullptr, false, nullptr), c_errorNoPath);
  EXPECT_THAT(agent.messages(), ElementsAre(errorLine(L"Final SiteList parameter is invalid")));
  EXPECT_THAT(agent.traces(), Not(Contains(L"Reading Sitelist")));
}

TEST_F(Merge, TracesItsScopeAndItsSteps) {
  current(httpElement("c") + serverElement("s"));
  const SiteChain first{typed(httpSite(L"fb"), L"fallback"), serverSite(L"new")};
  EXPECT_EQ(merge(first, none, false), 0);
  EXPECT_TRUE(tracedScope(agent, L"Merge SiteLists"));
  EXPECT_THAT(steps(), ElementsAre(L"Merge SiteLists", L"Reading Sitelist", L"Merge this sitelist",
                                   L"Getting fallback site", L"Updating fallback site",
                                   L"Getting Vesta site", L"Updating Sitelist site"));
  EXPECT_THAT(libraryMessages(agent), IsEmpty());
}

// Shows: MergeSiteLists=0
TEST_F(Merge, WithoutAFirstListTheCurrentListIsCopiedWithItsProxies) {
  current(httpElement("c1") + proxyElement("p") + serverElement("s") +
          httpElement("fb", c_fallbackAttributes));
  EXPECT_EQ(merge(none, none, false), 0);
  EXPECT_THAT(names(), ElementsAre(L"c1", L"p", L"s", L"fb"));

  OpenHelper helper(wide(path));
  SiteChain read;
  ASSERT_EQ(helper.ReadSiteList(L"", read.address(), true), 0);
  const auto expected = recordsOf(read.head());
  const auto got = recordsOf(result.head());
  ASSERT_EQ(got.size(), expected.size());
  for (std::size_t i = 0; i < got.size(); ++i) EXPECT_TRUE(sameContent(*got[i], *expected[i])) << i;
}

TEST_F(Merge, TheSecondListIsNotUsedUnlessAskedFor) {
  current(httpElement("c"));
  const SiteChain second{httpSite(L"b"), serverSite(L"s"), typed(httpSite(L"fb"), L"fallback")};
  EXPECT_EQ(merge(none, second, false), 0);
  EXPECT_THAT(names(), ElementsAre(L"c"));
}

TEST_F(Merge, TheFirstListsFallbackAndServerSitesReplaceTheCurrentOnes) {
  current(serverElement("s1") + httpElement("fb", c_fallbackAttributes) + httpElement("c"));
  const SiteChain first{httpSite(L"unused"), typed(ftpSite(L"newfb"), L"fallback"),
                        serverSite(L"n1"), serverSite(L"n2")};
  EXPECT_EQ(merge(first, none, false), 0);
  EXPECT_THAT(names(), ElementsAre(L"newfb", L"c", L"n1", L"n2"));
}

TEST_F(Merge, AFallbackThatTheCurrentListLacksIsAppended) {
  current(httpElement("c1") + httpElement("c2"));
  const SiteChain first{typed(httpSite(L"fb"), L"fallback")};
  EXPECT_EQ(merge(first, none, false), 0);
  EXPECT_THAT(names(), ElementsAre(L"c1", L"c2", L"fb"));
}

TEST_F(Merge, AnUncFallbackOfTheCurrentListIsReplacedToo) {
  current("<UNCSite Name=\"u\" Type=\"fallback\" Server=\"FILES\"/>" + httpElement("c"));
  const SiteChain first{typed(httpSite(L"fb"), L"fallback")};
  EXPECT_EQ(merge(first, none, false), 0);
  EXPECT_THAT(names(), ElementsAre(L"fb", L"c"));
}

TEST_F(Merge, AnUncFallbackOfTheFirstListIsNotCarried) {
  current(httpElement("c"));
  const SiteChain first{typed(uncSite(L"u"), L"fallback"), typed(localSite(L"l"), L"fallback")};
  EXPECT_EQ(merge(first, none, false), 0);
  EXPECT_THAT(names(), ElementsAre(L"c"));
}

TEST_F(Merge, ServerSitesOnlyReplaceServerSites) {
  current(httpElement("c"));
  const SiteChain first{serverSite(L"n")};
  EXPECT_EQ(merge(first, none, false), 0);
  EXPECT_THAT(names(), ElementsAre(L"c"));
}

TEST_F(Merge, OfTwoNeighbouringServerSitesTheSecondSurvives) {
  current(httpElement("c") + serverElement("s1") + serverElement("s2"));
  const SiteChain first{serverSite(L"n")};
  EXPECT_EQ(merge(first, none, false), 0);
  EXPECT_THAT(names(), ElementsAre(L"c", L"s2", L"n"));
}

// Shows: MergeSiteLists=-4
TEST_F(Merge, AMissingCurrentListFailsAndEmptiesTheResult) {
  const SiteChain first{httpSite(L"a"), typed(httpSite(L"fb"), L"fallback")};
  EXPECT_EQ(merge(first, none, false), c_errorFileMissing);
  EXPECT_EQ(result.head(), nullptr);
  EXPECT_EQ(merge(none, none, false), c_errorFileMissing);
  EXPECT_EQ(result.head(), nullptr);
}

TEST_F(Merge, AMissingCurrentListIsForgivenWhereServerSitesCameIn) {
  const SiteChain servers{serverSite(L"n1"), httpSite(L"a"), serverSite(L"n2")};
  EXPECT_EQ(merge(servers, none, false), 0);
  EXPECT_THAT(names(), ElementsAre(L"n1", L"n2"));
  result.clear();

  const SiteChain both{serverSite(L"n1"), typed(httpSite(L"fb"), L"fallback")};
  EXPECT_EQ(merge(both, none, false), 0);
  EXPECT_THAT(names(), ElementsAre(L"fb"))
      << "the fallback came first and is not a management server";
}

// Shows: MergeSiteLists=-5, MergeSiteLists=-1
TEST_F(Merge, AnUnreadableCurrentListGivesTheCodeOfTheRead) {
  const SiteChain first{httpSite(L"a")};
  writeFile(path, "<ns:SiteLists><SiteList></ns:SiteLists>");
  EXPECT_EQ(merge(first, none, false), c_errorParse);
  EXPECT_EQ(result.head(), nullptr);

  current(httpElement("c") + "<Unheard Name=\"x\"/>");
  EXPECT_EQ(merge(first, none, false), c_errorGeneral);
  EXPECT_EQ(result.head(), nullptr) << "a list that was read with a failure is not merged";
}

// Shows: MergeSiteLists=-10
TEST_F(Merge, ACurrentListThatCannotBeReadGivesTheCodeOfTheRead) {
  std::filesystem::create_directory(path);
  const SiteChain list{httpSite(L"a")};
  EXPECT_EQ(merge(list, none, false), c_errorRead);
  EXPECT_EQ(result.head(), nullptr);
  EXPECT_EQ(merge(none, list, true), c_errorRead);
  EXPECT_EQ(result.head(), nullptr);
}

// Shows: MergeSiteLists=-2
TEST_F(Merge, WithoutAFileOfItsOwnTheHelperCannotMergeTheCurrentList) {
  OpenHelper helper(true);
  EXPECT_EQ(helper.MergeSiteLists(nullptr, nullptr, false, result.address()), c_errorNoPath);
  EXPECT_EQ(result.head(), nullptr);
}

TEST_F(Merge, AnEmptyCurrentListIsNoFailure) {
  current("");
  EXPECT_EQ(merge(none, none, false), 0);
  EXPECT_EQ(result.head(), nullptr);

  const SiteChain first{serverSite(L"n"), typed(serverSite(L"fb"), L"fallback")};
  EXPECT_EQ(merge(first, none, false), 0);
  EXPECT_THAT(names(), ElementsAre(L"n", L"fb"))
      << "the fallback is a management server, so the servers of the first list replace it";
}

TEST_F(Merge, BothListsAreJoinedWithoutReadingTheCurrentOne) {
  current(httpElement("c") + serverElement("s"));
  const SiteChain first{proxySite(L"p1"), serverSite(L"s1"), typed(httpSite(L"fb1"), L"fallback")};
  const SiteChain second{proxySite(L"p2"), serverSite(L"s2"), typed(httpSite(L"fb2"), L"fallback")};
  EXPECT_EQ(merge(first, second, true), 0);
  EXPECT_THAT(names(), ElementsAre(L"p2", L"s2", L"fb2", L"s1", L"fb1"));
  EXPECT_THAT(steps(),
              ElementsAre(L"Merge SiteLists", L"Merge this sitelist", L"Merge this sitelist"));
}

TEST_F(Merge, TheFirstListAloneLosesItsProxies) {
  const SiteChain first{proxySite(L"p"), httpSite(L"a")};
  EXPECT_EQ(merge(first, none, true), 0);
  EXPECT_THAT(names(), ElementsAre(L"a"));
  result.clear();
  const SiteChain proxies{proxySite(L"p")};
  EXPECT_EQ(merge(proxies, none, true), 0);
  EXPECT_EQ(result.head(), nullptr);
}

TEST_F(Merge, TheCurrentFallbackAndServerSitesAreCarriedIntoTheSecondList) {
  current(httpElement("c") + httpElement("fb", c_fallbackAttributes) + serverElement("s"));
  const SiteChain second{serverSite(L"old"), proxySite(L"p"), httpSite(L"b")};
  EXPECT_EQ(merge(none, second, true), 0);
  EXPECT_THAT(names(), ElementsAre(L"p", L"b", L"fb", L"s"));
}

TEST_F(Merge, WithNeitherListOnlyFallbackOrServerSitesOfTheCurrentListAreTaken) {
  current(httpElement("c") + serverElement("s"));
  EXPECT_EQ(merge(none, none, true), 0);
  EXPECT_THAT(names(), ElementsAre(L"s"));
  result.clear();
  current(serverElement("s") + httpElement("fb", c_fallbackAttributes));
  EXPECT_EQ(merge(none, none, true), 0);
  EXPECT_THAT(names(), ElementsAre(L"fb"));
}

TEST_F(Merge, AFailedReadAfterTheSecondListWasCopiedEmptiesTheResult) {
  const SiteChain second{serverSite(L"s"), httpSite(L"b")};
  EXPECT_EQ(merge(none, second, true), c_errorFileMissing);
  EXPECT_EQ(result.head(), nullptr);
  EXPECT_THAT(namesOf(second.head()), ElementsAre(L"s", L"b"));
}

TEST_F(Merge, TheCallersListsStayAsTheyWere) {
  current(serverElement("s") + httpElement("fb", c_fallbackAttributes));
  const SiteChain first{httpSite(L"a"), typed(httpSite(L"fb"), L"fallback"), serverSite(L"n")};
  const SiteChain second{httpSite(L"b"), proxySite(L"p")};
  for (const bool useSecond : {false, true}) {
    EXPECT_EQ(merge(first, second, useSecond), 0);
    EXPECT_THAT(namesOf(first.head()), ElementsAre(L"a", L"fb", L"n"));
    EXPECT_THAT(namesOf(second.head()), ElementsAre(L"b", L"p"));
    for (const tag_Site* record : recordsOf(result.head())) {
      EXPECT_THAT(recordsOf(first.head()), Not(Contains(record)));
      EXPECT_THAT(recordsOf(second.head()), Not(Contains(record)));
    }
    result.clear();
  }
}

TEST_F(Merge, TheCurrentListIsReadUnderItsLock) {
  current(httpElement("c") + serverElement("s"));
  for (const bool useSecond : {false, true}) {
    LockWatch files({"SiteList.xml"});
    OpenHelper helper(wide(path));
    files.seen.clear();  // of the constructor, which reads the versions
    SiteChain merged;
    EXPECT_EQ(helper.MergeSiteLists(nullptr, nullptr, useSecond, merged.address()), 0);
    EXPECT_THAT(files.seen, ElementsAre("read SiteList.xml: reading")) << useSecond;
  }
}

TEST_F(Merge, NothingIsWritten) {
  current(serverElement("s") + httpElement("c"));
  const SiteChain first{typed(httpSite(L"fb"), L"fallback"), serverSite(L"n")};
  const auto before = snapshot(agent.dataDirectory() + "/etc");
  EXPECT_EQ(merge(first, none, false), 0);
  EXPECT_EQ(snapshot(agent.dataDirectory() + "/etc"), before);
}

}  // namespace
