#include <gmock/gmock.h>

#include "tests/import/log_lines.h"
#include "tests/import/records.h"
#include "tests/support/test_agent.h"

using namespace sitehlp;
using namespace test;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

tag_Site withElement(tag_Site site, const std::wstring& element) {
  setText(site.http.szElement, element);
  return site;
}

class MergeServerSites : public testing::Test {
 protected:
  TestAgent agent;
  OpenHelper helper{true};

  // Returns the names in the result after "new1" and "new2" replaced its management servers.
  std::vector<std::wstring> updated(SiteChain& result) {
    SiteChain chain{serverSite(L"new1"), serverSite(L"new2")};
    tag_Site* tail = result.last();
    EXPECT_EQ(helper.UpdateVestaSite(chain.head(), &tail, result.address()), 0);
    chain.release();
    return namesOf(result.head());
  }
};

// Shows: management-server, GetVestaSite=0
TEST_F(MergeServerSites, EveryServerSiteIsCopiedInListOrder) {
  const SiteChain list{httpSite(L"a"),
                       serverSite(L"s1"),
                       serverSite(L"s2"),
                       ftpSite(L"f"),
                       withElement(serverSite(L"s3"), L"vestaSITE"),
                       proxySite(L"p")};
  SiteChain chain;
  EXPECT_EQ(helper.GetVestaSite(list.head(), chain.address()), 0);
  EXPECT_THAT(namesOf(chain.head()), ElementsAre(L"s1", L"s2", L"s3"));
  EXPECT_TRUE(sameContent(*chain.head(), *list.head()->pNext));
  EXPECT_NE(chain.head(), list.head()->pNext);
  EXPECT_THAT(namesOf(list.head()), ElementsAre(L"a", L"s1", L"s2", L"f", L"s3", L"p"));
}

// Shows: agent-repository, GetVestaSite=-8
TEST_F(MergeServerSites, AgentsAndOtherKindsAreNoServerSites) {
  // The record of a proxy also begins with the name of the element.
  tag_Site proxy = proxySite(L"p");
  setText(proxy.proxy.szElement, L"VestaSite");
  const SiteChain list{withElement(httpSite(L"k"), L"KeystoneSite"),
                       withElement(httpSite(L"v"), L"VestaSite2"), proxy, httpSite(L"h")};
  SiteChain chain;
  EXPECT_EQ(helper.GetVestaSite(list.head(), chain.address()), c_errorNoServerSite);
  EXPECT_EQ(chain.head(), nullptr);
}

TEST_F(MergeServerSites, TheElementDecidesNotTheMark) {
  tag_Site unmarked = serverSite(L"unmarked");
  unmarked.bVestaSite = 0;
  tag_Site marked = httpSite(L"marked");
  marked.bVestaSite = 1;
  const SiteChain list{marked, unmarked};
  SiteChain chain;
  EXPECT_EQ(helper.GetVestaSite(list.head(), chain.address()), 0);
  EXPECT_THAT(namesOf(chain.head()), ElementsAre(L"unmarked"));
}

// Shows: GetVestaSite=-2
TEST_F(MergeServerSites, GettingRefusesNullArguments) {
  const SiteChain list{serverSite(L"s")};
  SiteChain chain;
  EXPECT_EQ(helper.GetVestaSite(nullptr, chain.address()), c_errorNoPath);
  EXPECT_EQ(chain.head(), nullptr);
  EXPECT_EQ(helper.GetVestaSite(list.head(), nullptr), c_errorNoPath);
}

TEST_F(MergeServerSites, GettingTracesItsScopeAndLogsNothingElse) {
  const SiteChain list{httpSite(L"a")};
  SiteChain chain;
  agent.clearLog();
  helper.GetVestaSite(list.head(), chain.address());
  EXPECT_TRUE(tracedScope(agent, L"Getting Vesta site"));
  EXPECT_THAT(libraryTraces(agent), ElementsAre(L"Getting Vesta site"));
  EXPECT_THAT(agent.messages(), IsEmpty());
}

TEST_F(MergeServerSites, BecomeTheWholeOfAnEmptyResult) {
  SiteChain result;
  EXPECT_THAT(updated(result), ElementsAre(L"new1", L"new2"));
}

// Shows: UpdateVestaSite=0
TEST_F(MergeServerSites, GoToTheEndInPlaceOfTheOldOnes) {
  SiteChain front{serverSite(L"s"), httpSite(L"a"), httpSite(L"b")};
  EXPECT_THAT(updated(front), ElementsAre(L"a", L"b", L"new1", L"new2"));
  SiteChain middle{httpSite(L"a"), serverSite(L"s"), httpSite(L"b")};
  EXPECT_THAT(updated(middle), ElementsAre(L"a", L"b", L"new1", L"new2"));
  SiteChain end{httpSite(L"a"), httpSite(L"b"), serverSite(L"s")};
  EXPECT_THAT(updated(end), ElementsAre(L"a", L"b", L"new1", L"new2"));
  SiteChain apart{serverSite(L"s1"), httpSite(L"a"), serverSite(L"s2"), httpSite(L"b"),
                  serverSite(L"s3")};
  EXPECT_THAT(updated(apart), ElementsAre(L"a", L"b", L"new1", L"new2"));
}

TEST_F(MergeServerSites, TakeTheHeadWhenTheOldOneWasTheOnlyRecord) {
  SiteChain result{serverSite(L"s")};
  EXPECT_THAT(updated(result), ElementsAre(L"new1", L"new2"));
}

TEST_F(MergeServerSites, AServerSiteDirectlyBehindARemovedOneSurvives) {
  SiteChain two{httpSite(L"a"), serverSite(L"s1"), serverSite(L"s2"), httpSite(L"b")};
  EXPECT_THAT(updated(two), ElementsAre(L"a", L"s2", L"b", L"new1", L"new2"));
  SiteChain onlyTwo{serverSite(L"s1"), serverSite(L"s2")};
  EXPECT_THAT(updated(onlyTwo), ElementsAre(L"s2", L"new1", L"new2"));
  SiteChain three{serverSite(L"s1"), serverSite(L"s2"), serverSite(L"s3")};
  EXPECT_THAT(updated(three), ElementsAre(L"s2", L"new1", L"new2"));
  SiteChain four{serverSite(L"s1"), serverSite(L"s2"), serverSite(L"s3"), serverSite(L"s4")};
  EXPECT_THAT(updated(four), ElementsAre(L"s2", L"s4", L"new1", L"new2"));
}

TEST_F(MergeServerSites, TheRecordBehindARemovedOneOnlyHidesItself) {
  SiteChain result{serverSite(L"s1"), httpSite(L"a"), serverSite(L"s2"), serverSite(L"s3")};
  EXPECT_THAT(updated(result), ElementsAre(L"a", L"s3", L"new1", L"new2"));
}

TEST_F(MergeServerSites, AreFoundWhateverTheCaseOfTheElement) {
  SiteChain result{httpSite(L"a"), withElement(serverSite(L"s"), L"VESTASITE")};
  EXPECT_THAT(updated(result), ElementsAre(L"a", L"new1", L"new2"));
}

TEST_F(MergeServerSites, LeaveTheTailAloneWhenTheyBecomeAnEmptyResult) {
  tag_Site marker = httpSite(L"marker");
  for (tag_Site* const before : {static_cast<tag_Site*>(nullptr), &marker}) {
    SiteChain result;
    SiteChain chain{serverSite(L"new1"), serverSite(L"new2")};
    tag_Site* const first = chain.head();
    tag_Site* tail = before;
    EXPECT_EQ(helper.UpdateVestaSite(chain.release(), &tail, result.address()), 0);
    EXPECT_EQ(result.head(), first);
    EXPECT_EQ(tail, before);
  }
}

TEST_F(MergeServerSites, LeaveTheTailBeforeThemWhenItsRecordStayed) {
  SiteChain result{serverSite(L"s"), httpSite(L"a"), httpSite(L"b")};
  SiteChain chain{serverSite(L"new1"), serverSite(L"new2")};
  tag_Site* const before = result.last();
  tag_Site* tail = before;
  tag_Site* const first = chain.head();
  EXPECT_EQ(helper.UpdateVestaSite(chain.release(), &tail, result.address()), 0);
  EXPECT_EQ(tail, before);
  EXPECT_EQ(tail->pNext, first);
}

TEST_F(MergeServerSites, MoveTheTailToTheirEndWhenItsRecordWasRemoved) {
  SiteChain result{httpSite(L"a"), serverSite(L"s")};
  SiteChain chain{serverSite(L"new1"), serverSite(L"new2")};
  tag_Site* const end = chain.last();
  tag_Site* tail = result.last();
  EXPECT_EQ(helper.UpdateVestaSite(chain.release(), &tail, result.address()), 0);
  EXPECT_EQ(tail, end);
  EXPECT_EQ(tail, result.last());
}

TEST_F(MergeServerSites, AResultWithoutServerSiteReceivesNoneAndTheChainStaysWithTheCaller) {
  SiteChain result{httpSite(L"a"), ftpSite(L"b")};
  SiteChain chain{serverSite(L"new1"), serverSite(L"new2")};
  tag_Site* tail = result.last();
  EXPECT_EQ(helper.UpdateVestaSite(chain.head(), &tail, result.address()), 0);
  EXPECT_THAT(namesOf(result.head()), ElementsAre(L"a", L"b"));
  EXPECT_THAT(namesOf(chain.head()), ElementsAre(L"new1", L"new2"));
  EXPECT_EQ(tail, chain.head());
}

TEST_F(MergeServerSites, TheUnlinkedChainTakesOverWhatStoodBehindTheTail) {
  SiteChain result{httpSite(L"a"), ftpSite(L"b")};
  SiteChain chain{serverSite(L"new1"), serverSite(L"new2")};
  tag_Site* const end = chain.last();
  tag_Site* tail = result.head();
  EXPECT_EQ(helper.UpdateVestaSite(chain.head(), &tail, result.address()), 0);
  EXPECT_EQ(tail, chain.head());
  EXPECT_EQ(end->pNext, result.last());
  EXPECT_THAT(namesOf(result.head()), ElementsAre(L"a", L"b"));
  end->pNext = nullptr;  // both lists would release the record
}

TEST_F(MergeServerSites, AResultWithoutServerSiteAndWithoutTailIsLeftAlone) {
  SiteChain result{typed(httpSite(L"a"), L"fallback")};
  SiteChain chain{serverSite(L"new1")};
  tag_Site* tail = nullptr;
  EXPECT_EQ(helper.UpdateVestaSite(chain.head(), &tail, result.address()), 0);
  EXPECT_THAT(namesOf(result.head()), ElementsAre(L"a"));
  EXPECT_THAT(namesOf(chain.head()), ElementsAre(L"new1"));
  EXPECT_EQ(tail, nullptr);
}

// Shows: UpdateVestaSite=-2
TEST_F(MergeServerSites, UpdatingRefusesNullArguments) {
  SiteChain result{serverSite(L"a")};
  SiteChain chain{serverSite(L"new1")};
  tag_Site* tail = result.last();
  EXPECT_EQ(helper.UpdateVestaSite(nullptr, &tail, result.address()), c_errorNoPath);
  EXPECT_EQ(helper.UpdateVestaSite(chain.head(), nullptr, result.address()), c_errorNoPath);
  EXPECT_EQ(helper.UpdateVestaSite(chain.head(), &tail, nullptr), c_errorNoPath);
  EXPECT_THAT(namesOf(result.head()), ElementsAre(L"a"));
  EXPECT_THAT(namesOf(chain.head()), ElementsAre(L"new1"));
}

TEST_F(MergeServerSites, UpdatingTracesItsScopeAndLogsNothingElse) {
  SiteChain result{serverSite(L"a")};
  agent.clearLog();
  updated(result);
  EXPECT_TRUE(tracedScope(agent, L"Updating Sitelist site"));
  EXPECT_THAT(libraryTraces(agent), ElementsAre(L"Updating Sitelist site"));
  EXPECT_THAT(agent.messages(), IsEmpty());
}

}  // namespace
