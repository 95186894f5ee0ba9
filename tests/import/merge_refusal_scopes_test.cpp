#include <gmock/gmock.h>

#include "tests/import/log_lines.h"
#include "tests/import/records.h"
#include "tests/support/test_agent.h"

using namespace sitehlp;
using namespace test;
using testing::ElementsAre;

namespace {

TEST(MergeRefusals, OpenTheirScopesAtDetailLevel) {
  const TestAgent agent;
  OpenHelper helper{true};
  EXPECT_LT(helper.MergeSiteLists(nullptr, nullptr, true, nullptr), 0);
  EXPECT_LT(helper.MergeThisSiteList(nullptr, false, nullptr, nullptr), 0);
  EXPECT_LT(helper.GetFallbackSite(nullptr, nullptr), 0);
  EXPECT_LT(helper.UpdateFallbackSite(nullptr, nullptr, nullptr), 0);
  EXPECT_LT(helper.GetVestaSite(nullptr, nullptr), 0);
  EXPECT_LT(helper.UpdateVestaSite(nullptr, nullptr, nullptr), 0);
  EXPECT_THAT(libraryTraces(agent), ElementsAre(L"Constructing sites helper object",
                                                L"Merge SiteLists", L"Merge this sitelist",
                                                L"Getting fallback site", L"Updating fallback site",
                                                L"Getting Vesta site", L"Updating Sitelist site"));
}

}  // namespace
