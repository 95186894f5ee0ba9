#include <gmock/gmock.h>

#include <cstring>

#include "tests/import/log_lines.h"
#include "tests/import/records.h"
#include "tests/support/test_agent.h"

using namespace sitehlp;
using namespace test;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

class MergeCopy : public testing::Test {
 protected:
  TestAgent agent;
  OpenHelper helper{true};
  SiteChain result;
  tag_Site* tail = nullptr;
};

// Shows: MergeThisSiteList=0
TEST_F(MergeCopy, AppendsACopyOfEveryRecordOfTheFiveKindsInOrder) {
  SiteChain source{httpSite(L"h"),  ftpSite(L"f"),   uncSite(L"u"),
                   localSite(L"l"), proxySite(L"p"), serverSite(L"s")};
  EXPECT_EQ(helper.MergeThisSiteList(source.head(), false, &tail, result.address()), 0);

  EXPECT_THAT(namesOf(result.head()), ElementsAre(L"h", L"f", L"u", L"l", L"p", L"s"));
  const auto copies = recordsOf(result.head());
  const auto originals = recordsOf(source.head());
  ASSERT_EQ(copies.size(), originals.size());
  for (std::size_t i = 0; i < copies.size(); ++i) {
    EXPECT_TRUE(sameContent(*copies[i], *originals[i])) << i;
    EXPECT_NE(copies[i], originals[i]) << i;
  }
  EXPECT_EQ(tail, result.last());
  EXPECT_EQ(tail->pNext, nullptr);
}

TEST_F(MergeCopy, CopiesEveryByteOfARecordWhateverItsKind) {
  tag_Site filled;
  std::memset(static_cast<void*>(&filled), 0x5a, sizeof filled);
  for (int kind = SITE_KIND_HTTP; kind <= SITE_KIND_PROXY; ++kind) {
    filled.eSiteKind = kind;
    SiteChain source{filled};
    result.clear();
    tail = nullptr;
    ASSERT_EQ(helper.MergeThisSiteList(source.head(), false, &tail, result.address()), 0);
    ASSERT_NE(result.head(), nullptr);
    EXPECT_TRUE(sameContent(*result.head(), filled)) << kind;
  }
}

TEST_F(MergeCopy, LeavesTheSourceAsItWas) {
  SiteChain source{httpSite(L"h"), proxySite(L"p"), serverSite(L"s")};
  const tag_Site* const second = source.head()->pNext;
  EXPECT_EQ(helper.MergeThisSiteList(source.head(), true, &tail, result.address()), 0);
  EXPECT_THAT(namesOf(source.head()), ElementsAre(L"h", L"p", L"s"));
  EXPECT_EQ(source.head()->pNext, second);
}

TEST_F(MergeCopy, DropsProxyRecordsWhenAskedTo) {
  SiteChain source{proxySite(L"p1"), httpSite(L"h"), proxySite(L"p2"), ftpSite(L"f"),
                   proxySite(L"p3")};
  EXPECT_EQ(helper.MergeThisSiteList(source.head(), true, &tail, result.address()), 0);
  EXPECT_THAT(namesOf(result.head()), ElementsAre(L"h", L"f"));
  EXPECT_EQ(tail, result.last());
  EXPECT_EQ(tail->pNext, nullptr);
}

TEST_F(MergeCopy, DropsRecordsOfUnknownKindInEitherMode) {
  tag_Site five = httpSite(L"five");
  five.eSiteKind = 5;
  tag_Site negative = httpSite(L"negative");
  negative.eSiteKind = -1;
  SiteChain source{five, httpSite(L"h"), negative};
  EXPECT_EQ(helper.MergeThisSiteList(source.head(), false, &tail, result.address()), 0);
  EXPECT_EQ(helper.MergeThisSiteList(source.head(), true, &tail, result.address()), 0);
  EXPECT_THAT(namesOf(result.head()), ElementsAre(L"h", L"h"));
}

TEST_F(MergeCopy, ASourceOfWhichNothingIsKeptLeavesHeadAndTailAlone) {
  SiteChain source{proxySite(L"p1"), proxySite(L"p2")};
  EXPECT_EQ(helper.MergeThisSiteList(source.head(), true, &tail, result.address()), 0);
  EXPECT_EQ(result.head(), nullptr);
  EXPECT_EQ(tail, nullptr);

  SiteChain more{httpSite(L"h")};
  EXPECT_EQ(helper.MergeThisSiteList(more.head(), true, &tail, result.address()), 0);
  tag_Site* const before = tail;
  EXPECT_EQ(helper.MergeThisSiteList(source.head(), true, &tail, result.address()), 0);
  EXPECT_EQ(tail, before);
  EXPECT_THAT(namesOf(result.head()), ElementsAre(L"h"));
}

TEST_F(MergeCopy, ASecondCallGoesOnBehindTheTail) {
  SiteChain one{httpSite(L"a"), httpSite(L"b")};
  SiteChain two{ftpSite(L"c")};
  EXPECT_EQ(helper.MergeThisSiteList(one.head(), false, &tail, result.address()), 0);
  EXPECT_EQ(helper.MergeThisSiteList(two.head(), false, &tail, result.address()), 0);
  EXPECT_THAT(namesOf(result.head()), ElementsAre(L"a", L"b", L"c"));
  EXPECT_EQ(tail, result.last());
}

TEST_F(MergeCopy, CutsOffWhatStoodBehindATailThatIsNotTheLast) {
  for (const bool isKept : {true, false}) {
    SiteChain list{httpSite(L"a"), httpSite(L"b"), httpSite(L"c")};
    tail = list.head();
    const SiteChain cutOff(tail->pNext);
    SiteChain source{isKept ? ftpSite(L"new") : proxySite(L"skipped")};
    EXPECT_EQ(helper.MergeThisSiteList(source.head(), true, &tail, list.address()), 0);
    EXPECT_EQ(tail, list.last());
    EXPECT_EQ(nameOf(*tail), isKept ? L"new" : L"a");
    EXPECT_THAT(namesOf(cutOff.head()), ElementsAre(L"b", L"c"));
  }
}

TEST_F(MergeCopy, WithoutATailTheFirstCopyOverwritesTheHead) {
  SiteChain former{httpSite(L"former")};
  tag_Site* head = former.head();
  SiteChain source{httpSite(L"a"), httpSite(L"b")};
  EXPECT_EQ(helper.MergeThisSiteList(source.head(), false, &tail, &head), 0);
  ASSERT_NE(head, former.head());
  result.take(head);
  EXPECT_THAT(namesOf(result.head()), ElementsAre(L"a", L"b"));
  EXPECT_THAT(namesOf(former.head()), ElementsAre(L"former"));
}

// Shows: MergeThisSiteList=-2
TEST_F(MergeCopy, RefusesNullArguments) {
  SiteChain source{httpSite(L"a")};
  EXPECT_EQ(helper.MergeThisSiteList(nullptr, false, &tail, result.address()), c_errorNoPath);
  EXPECT_EQ(helper.MergeThisSiteList(source.head(), false, nullptr, result.address()),
            c_errorNoPath);
  EXPECT_EQ(helper.MergeThisSiteList(source.head(), false, &tail, nullptr), c_errorNoPath);
  EXPECT_EQ(result.head(), nullptr);
  EXPECT_EQ(tail, nullptr);
}

TEST_F(MergeCopy, TracesItsScopeAndLogsNothingElse) {
  SiteChain source{httpSite(L"a")};
  agent.clearLog();
  EXPECT_EQ(helper.MergeThisSiteList(source.head(), false, &tail, result.address()), 0);
  EXPECT_TRUE(tracedScope(agent, L"Merge this sitelist"));
  EXPECT_THAT(libraryTraces(agent), ElementsAre(L"Merge this sitelist"));
  EXPECT_THAT(agent.messages(), IsEmpty());
}

}  // namespace
