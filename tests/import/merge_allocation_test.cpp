#include <gmock/gmock.h>

#include "tests/import/documents.h"
#include "tests/import/failing_allocation.h"
#include "tests/import/log_lines.h"
#include "tests/import/records.h"
#include "tests/support/test_agent.h"

using namespace sitehlp;
using namespace test;

using testing::ElementsAre;

namespace {

class MergeWithoutMemory : public testing::Test {
 protected:
  TestAgent agent;
  const std::string path = agent.etc("SiteList.xml");
  OpenHelper helper{wide(path)};
  SiteChain result;
  tag_Site* tail = nullptr;
};

// Shows: MergeThisSiteList=-3
TEST_F(MergeWithoutMemory, CopyingStopsAndKeepsTheCopiesMadeSoFar) {
  const SiteChain source{httpSite(L"a"), ftpSite(L"b"), httpSite(L"c")};
  for (int before = 0; before < 3; ++before) {
    result.clear();
    tail = nullptr;
    int code = 0;
    {
      const FailingAllocation failing(sizeof(tag_Site), before);
      code = helper.MergeThisSiteList(source.head(), false, &tail, result.address());
      EXPECT_EQ(failing.failed(), 1) << "the walk stops";
    }
    EXPECT_EQ(code, c_errorNoMemory);
    EXPECT_EQ(recordsOf(result.head()).size(), static_cast<std::size_t>(before));
    EXPECT_EQ(tail, result.last());
  }
}

// Shows: GetFallbackSite=-3
TEST_F(MergeWithoutMemory, NoFallbackIsHandedOut) {
  const SiteChain list{typed(httpSite(L"a"), L"fallback")};
  tag_Site* fallback = nullptr;
  const FailingAllocation failing(sizeof(tag_Site), 0);
  EXPECT_EQ(helper.GetFallbackSite(list.head(), &fallback), c_errorNoMemory);
  EXPECT_EQ(fallback, nullptr);
}

// Shows: GetVestaSite=-3
TEST_F(MergeWithoutMemory, TheServerSitesCopiedSoFarStayWithTheCaller) {
  const SiteChain list{serverSite(L"s1"), httpSite(L"a"), serverSite(L"s2"), serverSite(L"s3")};
  SiteChain chain;
  {
    const FailingAllocation failing(sizeof(tag_Site), 2);
    EXPECT_EQ(helper.GetVestaSite(list.head(), chain.address()), c_errorNoMemory);
    EXPECT_EQ(failing.failed(), 1);
  }
  EXPECT_THAT(namesOf(chain.head()), ElementsAre(L"s1", L"s2"));
}

// Shows: MergeSiteLists=-3
TEST_F(MergeWithoutMemory, AFailureOfTheLastCopyReleasesTheWholeResult) {
  const SiteChain first{httpSite(L"a"), httpSite(L"b")};
  const SiteChain second{httpSite(L"c"), httpSite(L"d")};
  for (const int before : {2, 3}) {
    const FailingAllocation failing(sizeof(tag_Site), before);
    EXPECT_EQ(helper.MergeSiteLists(first.head(), second.head(), true, result.address()),
              c_errorNoMemory);
    EXPECT_EQ(failing.failed(), 1);
    EXPECT_EQ(result.head(), nullptr);
  }
}

TEST_F(MergeWithoutMemory, AFailureThatALaterStepReplacesIsForgotten) {
  const SiteChain second{httpSite(L"c"), httpSite(L"d")};
  const SiteChain proxies{proxySite(L"p")};
  {
    // The second list stops after its first record; the first list cannot be copied either.
    const FailingAllocation failing(sizeof(tag_Site), 1);
    EXPECT_EQ(helper.MergeSiteLists(proxies.head(), second.head(), true, result.address()),
              c_errorNoMemory);
    EXPECT_EQ(failing.failed(), 2) << "the second step is taken all the same";
  }
  EXPECT_EQ(result.head(), nullptr);

  writeFile(path, document(""));
  {
    // The read of an empty current list succeeds and replaces the failure of the copy.
    const FailingAllocation failing(sizeof(tag_Site), 1);
    EXPECT_EQ(helper.MergeSiteLists(nullptr, second.head(), true, result.address()), 0);
    EXPECT_EQ(failing.failed(), 1);
  }
  EXPECT_THAT(namesOf(result.head()), ElementsAre(L"c"));
}

TEST_F(MergeWithoutMemory, AFallbackThatCannotBeCopiedDoesNotFailTheMerge) {
  writeFile(path, document(""));
  const SiteChain first{typed(httpSite(L"fb"), L"fallback")};
  const FailingAllocation failing(sizeof(tag_Site), 0);
  EXPECT_EQ(helper.MergeSiteLists(first.head(), nullptr, false, result.address()), 0);
  EXPECT_EQ(failing.failed(), 1);
  EXPECT_EQ(result.head(), nullptr);
}

TEST_F(MergeWithoutMemory, ServerSitesThatCannotBeCopiedAreNotCarried) {
  writeFile(path, document(""));
  const SiteChain first{serverSite(L"s1"), serverSite(L"s2")};
  const FailingAllocation failing(sizeof(tag_Site), 1);
  EXPECT_EQ(helper.MergeSiteLists(first.head(), nullptr, false, result.address()), 0);
  EXPECT_EQ(failing.failed(), 1);
  EXPECT_EQ(result.head(), nullptr);
}

TEST_F(MergeWithoutMemory, TheListOnDiskNeedsNoMoreThanItsOwnRecords) {
  const SiteChain current{serverSite(L"s1"), httpSite(L"a"), proxySite(L"p")};
  ASSERT_EQ(helper.CreateSiteList(current.head(), wide(path), L"1", L"1", L"", {}), 0);
  const SiteChain first{serverSite(L"s2")};
  const FailingAllocation failing(sizeof(tag_Site), 3 + 1);
  EXPECT_EQ(helper.MergeSiteLists(first.head(), nullptr, false, result.address()), 0);
  EXPECT_EQ(failing.failed(), 0);
  EXPECT_THAT(namesOf(result.head()), ElementsAre(L"a", L"p", L"s2"));
}

// Shows: SourceSiteListCheck=-3
TEST_F(MergeWithoutMemory, TheCheckOfAListPassesTheFailureOn) {
  const SiteChain list{serverSite(L"s1"), serverSite(L"s2")};
  agent.clearLog();
  const FailingAllocation failing(sizeof(tag_Site), 1);
  EXPECT_EQ(helper.SourceSiteListCheck(list.head(), true), c_errorNoMemory);
  EXPECT_THAT(libraryMessages(agent), ElementsAre(errorLine(L"Failed to get VESTA site hr=-3")));
}

// Shows: ImportSiteList=-3
TEST_F(MergeWithoutMemory, TheCheckOfAnImportPassesTheFailureOn) {
  const TempDir incoming;
  const std::string source = incoming.file("SiteList.xml");
  writeFile(source, document(serverElement("s")));
  helper.SetManagedOverride(c_overrideManaged);
  const FailingAllocation failing(sizeof(tag_Site), 1);  // the list can be read
  EXPECT_EQ(helper.ImportSiteList(wide(source), L""), c_errorNoMemory);
  EXPECT_EQ(failing.failed(), 1);
  EXPECT_FALSE(exists(path));
}

TEST_F(MergeWithoutMemory, AnExceptionLeavesNoResult) {
  writeFile(path, document(httpElement("own1") + httpElement("own2")));
  const SiteChain second{httpSite(L"c"), httpSite(L"d")};
  for (const int before : {2, 3}) {  // the copies can be made, the own list cannot be read
    const FailingAllocation failing(sizeof(tag_Site), before);
    EXPECT_THROW(helper.MergeSiteLists(nullptr, second.head(), true, result.address()),
                 std::bad_alloc);
    EXPECT_EQ(failing.failed(), 1);
    EXPECT_EQ(result.head(), nullptr);
  }
}

}  // namespace
