#include <gmock/gmock.h>

#include <algorithm>
#include <iterator>
#include <string>

#include "tests/sitehlp/sites_helper_fixture.h"

// A long text is cut in the same way when detail lines are not logged.
namespace {

using testing::IsEmpty;

class UnloggedTruncation : public test::SitesHelperTest {
 protected:
  UnloggedTruncation() {
    agent.settings.logLevel = LogLevel::Info;
    agent.apply();
  }
};

TEST_F(UnloggedTruncation, OfATextEndsInATerminator) {
  wchar_t field[5];
  std::fill(std::begin(field), std::end(field), L'#');
  sitehlp::CSitesHelper::CopyWStr(field, L"abcdefgh", 5);
  EXPECT_EQ(std::wstring(field, 5), std::wstring(L"abcd\0", 5));
  EXPECT_THAT(messages(), IsEmpty());
}

TEST_F(UnloggedTruncation, OfTheExclusionListLeavesNothingOfTheDroppedHost) {
  const auto site = decode(
      "<ProxyConfigList><ProxyConfig><ExclusionList><ExclusionHost>a</ExclusionHost>"
      "<ExclusionHost>" +
      std::string(4100, 'b') + "</ExclusionHost></ExclusionList></ProxyConfig></ProxyConfigList>");
  const auto& list = site->proxy.szExclusionList;
  EXPECT_STREQ(list, L"a");
  EXPECT_TRUE(std::all_of(std::begin(list) + 1, std::end(list), [](wchar_t c) { return c == 0; }));
  EXPECT_EQ(site->proxy.iExclusionCount, 1);
  EXPECT_THAT(messages(), IsEmpty());
}

}  // namespace
