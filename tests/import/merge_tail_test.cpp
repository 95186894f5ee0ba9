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
  EXPECT_EQ(tailAfterUpdate(first, L"a"), first.head());
  SiteChain apart{httpSite(L"a"), serverSite(L"s1"), httpSite(L"b"), serverSite(L"s2")};
  EXPECT_EQ(tailAfterUpdate(apart, L"a"), apart.head());
}

TEST_F(MergeTail, movesToTheEndWhenItsRecordWasReplaced) {
  SiteChain only{serverSite(L"s")};
  EXPECT_EQ(tailAfterUpdate(only, L"s"), only.last());
  SiteChain last{httpSite(L"a"), serverSite(L"s")};
  EXPECT_EQ(tailAfterUpdate(last, L"s"), last.last());
}

TEST_F(MergeTail, movesToTheEndWhicheverOfSeveralReplacedRecordsItPointedTo) {
  for (const wchar_t* const name : {L"s1", L"s2", L"s3"}) {
    SiteChain apart{serverSite(L"s1"), httpSite(L"a"), serverSite(L"s2"), httpSite(L"b"),
                    serverSite(L"s3")};
    EXPECT_EQ(tailAfterUpdate(apart, name), apart.last()) << narrow(name);
    EXPECT_EQ(nameOf(*apart.last()), L"new2");
  }
}

}  // namespace
