#include <gtest/gtest.h>

#include "tests/import/records.h"
#include "tests/support/test_agent.h"

// Where the caller's pointer to the last record points after the server sites were replaced.
using namespace sitehlp;
using namespace test;

namespace {

class MergeTail : public testing::Test {
 protected:
  TestAgent agent;
  OpenHelper helper{true};

  // Replaces the server sites of a list by two others; the tail points to the record of this name.
  const tag_Site* tailAfterUpdate(SiteChain& result, const std::wstring& tailName) {
    tag_Site* tail = result.head();
    while (nameOf(*tail) != tailName) tail = tail->pNext;
    SiteChain chain{serverSite(L"new1"), serverSite(L"new2")};
    EXPECT_EQ(helper.UpdateVestaSite(chain.head(), &tail, result.address()), 0);
    chain.release();
    return tail;
  }
};

TEST_F(MergeTail, staysAtARecordThatWasNotReplaced) {
  SiteChain first{serverSite(L"s"), httpSite(L"a")};
  EXPECT_EQ(nameOf(*tailAfterUpdate(first, L"a")), L"a");
  SiteChain apart{httpSite(L"a"), serverSite(L"s1"), httpSite(L"b"), serverSite(L"s2")};
  EXPECT_EQ(nameOf(*tailAfterUpdate(apart, L"a")), L"a");
}

TEST_F(MergeTail, movesToTheEndWhenItsRecordWasReplaced) {
  SiteChain only{serverSite(L"s")};
  const tag_Site* tail = tailAfterUpdate(only, L"s");
  EXPECT_EQ(tail, only.last());
  SiteChain last{httpSite(L"a"), serverSite(L"s")};
  tail = tailAfterUpdate(last, L"s");
  EXPECT_EQ(tail, last.last());
}

TEST_F(MergeTail, movesToTheEndWhicheverOfSeveralReplacedRecordsItPointedTo) {
  for (const wchar_t* const name : {L"s1", L"s2", L"s3"}) {
    SiteChain apart{serverSite(L"s1"), httpSite(L"a"), serverSite(L"s2"), httpSite(L"b"),
                    serverSite(L"s3")};
    const tag_Site* const tail = tailAfterUpdate(apart, name);
    EXPECT_EQ(tail, apart.last()) << narrow(name);
    EXPECT_EQ(nameOf(*tail), L"new2");
  }
}

}  // namespace
