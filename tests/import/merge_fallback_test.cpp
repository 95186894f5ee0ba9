#include <gmock/gmock.h>

#include <cstdlib>
#include <memory>

#include "tests/import/log_lines.h"
#include "tests/import/records.h"
#include "tests/support/test_agent.h"

using namespace sitehlp;
using namespace test;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

// Releases a single record whatever its link says.
struct FreeRecord {
  void operator()(tag_Site* record) const { std::free(record); }
};
using OwnedRecord = std::unique_ptr<tag_Site, FreeRecord>;

class MergeFallback : public testing::Test {
 protected:
  TestAgent agent;
  OpenHelper helper{true};

  int get(const SiteChain& list, OwnedRecord& record) {
    tag_Site* found = nullptr;
    const int code = helper.GetFallbackSite(list.head(), &found);
    record.reset(found);
    return code;
  }
};

// Shows: GetFallbackSite=0
TEST_F(MergeFallback, TheFirstFallbackOfHttpOrFtpKindIsCopied) {
  for (const tag_Site& site : {httpSite(L"wanted"), ftpSite(L"wanted"), serverSite(L"wanted")}) {
    const SiteChain list{httpSite(L"a"), typed(site, L"fallback"),
                         typed(httpSite(L"later"), L"fallback"), ftpSite(L"z")};
    OwnedRecord record;
    EXPECT_EQ(get(list, record), 0);
    ASSERT_NE(record, nullptr);
    const tag_Site* source = list.head()->pNext;
    EXPECT_NE(record.get(), source);
    EXPECT_TRUE(sameContent(*record, *source));
    EXPECT_EQ(record->pNext, source->pNext) << "the link of the source is not cleared";
  }
}

TEST_F(MergeFallback, TheTypeIsComparedWithoutRegardToCase) {
  const SiteChain list{httpSite(L"a"), typed(ftpSite(L"wanted"), L"FallBack")};
  OwnedRecord record;
  EXPECT_EQ(get(list, record), 0);
  ASSERT_NE(record, nullptr);
  EXPECT_EQ(nameOf(*record), L"wanted");
}

TEST_F(MergeFallback, AFallbackOfAnotherKindIsPassedOver) {
  const SiteChain none{typed(uncSite(L"u"), L"fallback"), typed(localSite(L"l"), L"fallback"),
                       typed(proxySite(L"p"), L"fallback")};
  OwnedRecord record;
  EXPECT_EQ(get(none, record), c_errorGeneral);
  EXPECT_EQ(record, nullptr);

  const SiteChain behind{typed(uncSite(L"u"), L"fallback"), typed(httpSite(L"h"), L"fallback")};
  EXPECT_EQ(get(behind, record), 0);
  ASSERT_NE(record, nullptr);
  EXPECT_EQ(nameOf(*record), L"h");
}

// Shows: GetFallbackSite=-1
TEST_F(MergeFallback, AListWithoutFallbackGivesNone) {
  const SiteChain list{httpSite(L"a"), typed(httpSite(L"b"), L"fallback2"), serverSite(L"s")};
  OwnedRecord record;
  EXPECT_EQ(get(list, record), c_errorGeneral);
  EXPECT_EQ(record, nullptr);
}

// Shows: GetFallbackSite=-2
TEST_F(MergeFallback, GettingRefusesNullArguments) {
  const SiteChain list{typed(httpSite(L"b"), L"fallback")};
  tag_Site* found = nullptr;
  EXPECT_EQ(helper.GetFallbackSite(nullptr, &found), c_errorNoPath);
  EXPECT_EQ(found, nullptr);
  EXPECT_EQ(helper.GetFallbackSite(list.head(), nullptr), c_errorNoPath);
}

TEST_F(MergeFallback, GettingTracesItsScopeAndLogsNothingElse) {
  const SiteChain list{httpSite(L"a")};
  OwnedRecord record;
  agent.clearLog();
  get(list, record);
  EXPECT_TRUE(tracedScope(agent, L"Getting fallback site"));
  EXPECT_THAT(libraryTraces(agent), ElementsAre(L"Getting fallback site"));
  EXPECT_THAT(agent.messages(), IsEmpty());
}

TEST_F(MergeFallback, BecomesTheHeadOfAnEmptyResultWithoutTouchingTheTail) {
  SiteChain other{httpSite(L"behind")};
  SiteChain result;
  tag_Site marker = httpSite(L"marker");
  for (tag_Site* const before : {static_cast<tag_Site*>(nullptr), &marker}) {
    tag_Site* tail = before;
    tag_Site* fallback = newRecord(typed(uncSite(L"new"), L"fallback"));
    fallback->pNext = other.head();
    EXPECT_EQ(helper.UpdateFallbackSite(fallback, &tail, result.address()), 0);
    EXPECT_EQ(result.head(), fallback);
    EXPECT_EQ(fallback->pNext, nullptr);
    EXPECT_EQ(tail, before);
    result.clear();
  }
}

// Shows: UpdateFallbackSite=0
TEST_F(MergeFallback, ReplacesAnExistingFallbackOfAnyKindInItsPlace) {
  for (const tag_Site& old :
       {httpSite(L"old"), ftpSite(L"old"), uncSite(L"old"), localSite(L"old"), proxySite(L"old")}) {
    for (const tag_Site& fresh : {httpSite(L"new"), ftpSite(L"new")}) {
      SiteChain result{httpSite(L"a"), typed(old, L"FALLBACK"), httpSite(L"b"),
                       typed(httpSite(L"second"), L"fallback")};
      tag_Site* const place = result.head()->pNext;
      tag_Site* const last = result.last();
      tag_Site* tail = last;
      const tag_Site content = typed(fresh, L"fallback");
      tag_Site* fallback = newRecord(content);
      fallback->pNext = result.head();
      EXPECT_EQ(helper.UpdateFallbackSite(fallback, &tail, result.address()), 0);
      EXPECT_THAT(namesOf(result.head()), ElementsAre(L"a", L"new", L"b", L"second"));
      EXPECT_EQ(result.head()->pNext, place);
      EXPECT_TRUE(sameContent(*place, content));
      EXPECT_EQ(tail, last);
    }
  }
}

TEST_F(MergeFallback, ReplacesAFallbackThatIsTheWholeResult) {
  SiteChain result{typed(httpSite(L"old"), L"fallback")};
  tag_Site* tail = nullptr;
  EXPECT_EQ(helper.UpdateFallbackSite(newRecord(typed(ftpSite(L"new"), L"fallback")), &tail,
                                      result.address()),
            0);
  EXPECT_THAT(namesOf(result.head()), ElementsAre(L"new"));
  EXPECT_EQ(result.head()->pNext, nullptr);
}

TEST_F(MergeFallback, LeavesTheTailOnTheRecordThatItReplaced) {
  SiteChain result{httpSite(L"a"), typed(httpSite(L"old"), L"fallback")};
  tag_Site* const place = result.last();
  tag_Site* tail = place;
  EXPECT_EQ(helper.UpdateFallbackSite(newRecord(typed(ftpSite(L"new"), L"fallback")), &tail,
                                      result.address()),
            0);
  EXPECT_EQ(tail, place);
  EXPECT_EQ(nameOf(*tail), L"new");
}

TEST_F(MergeFallback, CutsOffWhatStoodBehindATailThatIsNotTheLast) {
  SiteChain result{httpSite(L"a"), httpSite(L"b"), httpSite(L"c")};
  tag_Site* tail = result.head();
  const SiteChain cutOff(tail->pNext);
  tag_Site* const fallback = newRecord(typed(httpSite(L"new"), L"fallback"));
  EXPECT_EQ(helper.UpdateFallbackSite(fallback, &tail, result.address()), 0);
  EXPECT_THAT(namesOf(result.head()), ElementsAre(L"a", L"new"));
  EXPECT_EQ(tail, fallback);
  EXPECT_THAT(namesOf(cutOff.head()), ElementsAre(L"b", L"c"));
}

TEST_F(MergeFallback, GoesBehindTheTailOfAResultWithoutFallback) {
  SiteChain result{httpSite(L"a"), httpSite(L"b")};
  SiteChain other{httpSite(L"behind")};
  tag_Site* tail = result.last();
  tag_Site* fallback = newRecord(typed(httpSite(L"new"), L"fallback"));
  fallback->pNext = other.head();
  EXPECT_EQ(helper.UpdateFallbackSite(fallback, &tail, result.address()), 0);
  EXPECT_THAT(namesOf(result.head()), ElementsAre(L"a", L"b", L"new"));
  EXPECT_EQ(tail, fallback);
  EXPECT_EQ(fallback->pNext, nullptr);
}

TEST_F(MergeFallback, ANewRecordOfAnotherKindIsAppendedBesideTheExistingFallback) {
  SiteChain result{typed(httpSite(L"old"), L"fallback"), httpSite(L"b")};
  tag_Site* tail = result.last();
  EXPECT_EQ(helper.UpdateFallbackSite(newRecord(typed(uncSite(L"new"), L"fallback")), &tail,
                                      result.address()),
            0);
  EXPECT_THAT(namesOf(result.head()), ElementsAre(L"old", L"b", L"new"));
  EXPECT_EQ(tail, result.last());
}

TEST_F(MergeFallback, WithoutATailItIsNeitherLinkedNorReleased) {
  SiteChain result{httpSite(L"a")};
  tag_Site* tail = nullptr;
  const tag_Site content = typed(httpSite(L"new"), L"fallback");
  OwnedRecord fallback(newRecord(content));
  EXPECT_EQ(helper.UpdateFallbackSite(fallback.get(), &tail, result.address()), 0);
  EXPECT_THAT(namesOf(result.head()), ElementsAre(L"a"));
  EXPECT_EQ(tail, nullptr);
  EXPECT_TRUE(sameContent(*fallback, content));
}

// Shows: UpdateFallbackSite=-2
TEST_F(MergeFallback, UpdatingRefusesNullArgumentsAndLeavesTheRecordToTheCaller) {
  SiteChain result{httpSite(L"a")};
  tag_Site* tail = result.last();
  const tag_Site content = typed(httpSite(L"new"), L"fallback");
  OwnedRecord fallback(newRecord(content));
  EXPECT_EQ(helper.UpdateFallbackSite(nullptr, &tail, result.address()), c_errorNoPath);
  EXPECT_EQ(helper.UpdateFallbackSite(fallback.get(), nullptr, result.address()), c_errorNoPath);
  EXPECT_EQ(helper.UpdateFallbackSite(fallback.get(), &tail, nullptr), c_errorNoPath);
  EXPECT_TRUE(sameContent(*fallback, content));
  EXPECT_THAT(namesOf(result.head()), ElementsAre(L"a"));
  EXPECT_EQ(tail, result.head());
}

TEST_F(MergeFallback, UpdatingTracesItsScopeAndLogsNothingElse) {
  SiteChain result;
  tag_Site* tail = nullptr;
  agent.clearLog();
  helper.UpdateFallbackSite(newRecord(typed(httpSite(L"new"), L"fallback")), &tail,
                            result.address());
  EXPECT_TRUE(tracedScope(agent, L"Updating fallback site"));
  EXPECT_THAT(libraryTraces(agent), ElementsAre(L"Updating fallback site"));
  EXPECT_THAT(agent.messages(), IsEmpty());
}

}  // namespace
