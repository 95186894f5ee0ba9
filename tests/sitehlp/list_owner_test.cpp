#include <gmock/gmock.h>

#include <algorithm>
#include <iterator>
#include <set>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include "sitehlp/list.h"
#include "tests/sitehlp/sites_helper_fixture.h"

namespace {

using sitehlp::ListOwner;
using sitehlp::tag_Site;
using testing::ElementsAre;
using testing::IsEmpty;

class Owner : public test::SitesHelperTest {
 protected:
  // A list of enabled sites with these orders.
  static tag_Site* sites(const std::vector<int>& orders) {
    std::vector<tag_Site*> records;
    for (const int order : orders) {
      records.push_back(test::newSite(sitehlp::SITE_KIND_LOCAL));
      records.back()->iOrder = order;
    }
    return test::chain(records).release();
  }
  template <typename List>
  static std::vector<int> ordersOf(List& list) {
    std::vector<int> orders;
    for (auto& site : list) orders.push_back(site.iOrder);
    return orders;
  }
  // How many lists were released since the last call.
  int released() {
    int count = 0;
    for (const test::LogLine& line : scopes()) {
      if (line == detail(L"Enter: Free memory for Sitelist")) ++count;
    }
    agent.clearLog();
    return count;
  }
};

TEST_F(Owner, ReleasesItsListOnce) {
  { const ListOwner list(sites({1, 2})); }
  EXPECT_EQ(released(), 1);
  { const ListOwner none; }
  EXPECT_EQ(released(), 0);
}

TEST_F(Owner, IsMovedButNotCopied) {
  static_assert(!std::is_copy_constructible_v<ListOwner>);
  static_assert(!std::is_copy_assignable_v<ListOwner>);
  static_assert(std::is_nothrow_move_constructible_v<ListOwner>);
  static_assert(std::is_nothrow_move_assignable_v<ListOwner>);
  static_assert(!std::is_convertible_v<tag_Site*, ListOwner>);

  ListOwner first(sites({1}));
  tag_Site* const head = first.get();
  ListOwner second(std::move(first));
  EXPECT_TRUE(first.empty());
  EXPECT_EQ(second.get(), head);
  first = ListOwner(sites({2}));
  EXPECT_EQ(released(), 0);
  first = std::move(second);
  EXPECT_EQ(released(), 1);
  EXPECT_EQ(first.get(), head);
  EXPECT_TRUE(second.empty());
  ListOwner& same = first;
  first = std::move(same);
  EXPECT_EQ(released(), 0);
  EXPECT_EQ(first.get(), head);
}

TEST_F(Owner, HandsItsListOut) {
  ListOwner list(sites({1}));
  tag_Site* const head = list.get();
  const ListOwner other(list.release());
  EXPECT_TRUE(list.empty());
  EXPECT_EQ(other.get(), head);
  EXPECT_EQ(released(), 0);
}

TEST_F(Owner, TakesTheListOfAnOperationAndReleasesTheOneBefore) {
  const std::wstring file = store(test::documentWithSites("<LocalSite Order='3'/>"));
  ListOwner list(sites({1, 2}));
  EXPECT_EQ(helper.ReadSiteList(file, list.out(), true), 0);
  EXPECT_EQ(released(), 1);
  EXPECT_THAT(ordersOf(list), ElementsAre(3));
  EXPECT_EQ(helper.ReadSiteList(path("missing.xml"), list.out(), true),
            sitehlp::c_errorFileMissing);
  EXPECT_EQ(released(), 1);
  EXPECT_TRUE(list.empty()) << "left by an operation that wrote nothing";
}

TEST_F(Owner, IsWalkedInListOrder) {
  ListOwner list(sites({5, 3, 4}));
  EXPECT_THAT(ordersOf(list), ElementsAre(5, 3, 4));
  for (tag_Site& site : list) site.iOrder *= 2;
  const ListOwner& readOnly = list;
  static_assert(std::is_same_v<decltype(*readOnly.begin()), const tag_Site&>);
  EXPECT_THAT(ordersOf(readOnly), ElementsAre(10, 6, 8));
  const ListOwner none;
  EXPECT_THAT(ordersOf(none), IsEmpty());
}

TEST_F(Owner, IteratorsServeTheStandardAlgorithms) {
  ListOwner list(sites({1, 2, 3}));
  EXPECT_EQ(std::distance(list.begin(), list.end()), 3);
  const auto found =
      std::find_if(list.begin(), list.end(), [](const tag_Site& s) { return s.iOrder == 2; });
  ASSERT_NE(found, list.end());
  EXPECT_EQ(found->iOrder, 2);
  auto next = found;
  EXPECT_EQ((next++)->iOrder, 2);
  EXPECT_EQ(next->iOrder, 3);
  EXPECT_EQ(std::next(found), next);
}

// --- Texts of result codes -----------------------------------------------------------------------

TEST(ResultText, IsOneLineOfItsOwnForEachCode) {
  using AdvXMLParser::ReadWriteException;
  std::set<std::string> texts;
  const std::vector<int> codes = {sitehlp::c_success,
                                  sitehlp::c_errorGeneral,
                                  sitehlp::c_errorNoPath,
                                  sitehlp::c_errorNoMemory,
                                  sitehlp::c_errorFileMissing,
                                  sitehlp::c_errorParse,
                                  sitehlp::c_errorNoServerSite,
                                  sitehlp::c_errorValidation,
                                  sitehlp::c_errorRead,
                                  sitehlp::c_errorWrite,
                                  ReadWriteException::WRITE_FAILED,
                                  ReadWriteException::INVALID_ENCODING,
                                  ReadWriteException::LIMIT_EXCEEDED};
  const std::string unknown = sitehlp::resultText(-12345);
  for (const int code : codes) {
    const std::string text = sitehlp::resultText(code);
    EXPECT_NE(text, unknown) << code;
    EXPECT_TRUE(texts.insert(text).second) << code << ": " << text;
    EXPECT_THAT(text, testing::Each(testing::AllOf(testing::Ge(' '), testing::Le('~')))) << code;
  }
}

TEST(ResultText, OfAFileThatCannotBeReadIsTheSameForBothCodes) {
  const int code = AdvXMLParser::ReadWriteException::READ_FAILED;
  EXPECT_STREQ(sitehlp::resultText(code), sitehlp::resultText(sitehlp::c_errorRead));
  EXPECT_STRNE(sitehlp::resultText(code), sitehlp::resultText(-12345));
}

TEST(ResultText, SaysWhatToDoAboutEveryFailure) {
  for (int code = -200; code < 0; ++code) {
    EXPECT_NE(std::string(sitehlp::resultText(code)).find("; "), std::string::npos) << code;
  }
  EXPECT_STREQ(sitehlp::resultText(0), "done");
}

TEST(ResultText, OfAnUnknownCodeSaysSo) {
  for (const int code : {1, 7, -6, -7, -12, -100, -105, 2147483647, -2147483647 - 1}) {
    EXPECT_STREQ(sitehlp::resultText(code), "unknown result code; see the log") << code;
  }
}

TEST(ResultText, OfALimitNamesIt) {
  EXPECT_THAT(sitehlp::resultText(-104), testing::HasSubstr("over a limit"));
}

}  // namespace
