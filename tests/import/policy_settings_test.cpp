#include <gmock/gmock.h>

#include "tests/import/documents.h"
#include "tests/import/records.h"
#include "tests/support/test_agent.h"

using namespace sitehlp;
using namespace test;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;
using testing::Pair;

namespace {

class PolicySettings : public testing::Test {
 protected:
  TestAgent agent;
  TempDir dir;
  const std::string file = dir.file("list.xml");
  OpenHelper helper{wide(file)};
};

TEST_F(PolicySettings, AFreshHelperHasNone) {
  std::wstring value = L"as it was";
  EXPECT_FALSE(helper.GetPolicySetting(L"a", value));
  EXPECT_FALSE(helper.GetPolicySetting(L"", value));
  EXPECT_EQ(value, L"as it was");
}

TEST_F(PolicySettings, TheValueSetLastCounts) {
  std::wstring value;
  helper.SetPolicySetting(L"a", L"1");
  EXPECT_TRUE(helper.GetPolicySetting(L"a", value));
  EXPECT_EQ(value, L"1");
  helper.SetPolicySetting(L"a", L"2");
  EXPECT_TRUE(helper.GetPolicySetting(L"a", value));
  EXPECT_EQ(value, L"2");
  helper.SetPolicySetting(L"a", L"");
  EXPECT_TRUE(helper.GetPolicySetting(L"a", value));
  EXPECT_EQ(value, L"");
}

TEST_F(PolicySettings, NamesAreComparedExactly) {
  std::wstring value = L"as it was";
  helper.SetPolicySetting(L"Name", L"1");
  EXPECT_FALSE(helper.GetPolicySetting(L"name", value));
  EXPECT_FALSE(helper.GetPolicySetting(L"Name ", value));
  EXPECT_EQ(value, L"as it was");
}

TEST_F(PolicySettings, SettingWritesNothing) {
  writeFile(file, document(""));
  const auto before = snapshot(dir.path());
  helper.SetPolicySetting(L"a", L"1");
  EXPECT_EQ(snapshot(dir.path()), before);
}

TEST_F(PolicySettings, TheNextWriteHoldsThemByName) {
  helper.SetPolicySetting(L"b", L"2");
  helper.SetPolicySetting(L"a", L"<1>");
  helper.SetPolicySetting(L"B", L"");
  ASSERT_EQ(helper.CreateSiteList(nullptr, L"", L"", L"", L"", {}), 0);
  const std::string text = readFile(file);
  EXPECT_LT(text.find("name=\"B\""), text.find("name=\"a\""));
  EXPECT_LT(text.find("name=\"a\""), text.find("name=\"b\""));

  OpenHelper reader{wide(file)};
  SiteChain list;
  ASSERT_EQ(reader.ReadSiteList(L"", list.address(), true), 0);
  EXPECT_THAT(reader.m_policySettings,
              ElementsAre(Pair(L"B", L""), Pair(L"a", L"<1>"), Pair(L"b", L"2")));
}

TEST_F(PolicySettings, WithoutAnyTheDocumentHasNoPolicies) {
  ASSERT_EQ(helper.CreateSiteList(nullptr, L"", L"", L"", L"", {}), 0);
  EXPECT_THAT(readFile(file), Not(HasSubstr("Policies")));
}

TEST_F(PolicySettings, AReadAddsThoseOfTheDocumentToThoseKnown) {
  helper.SetPolicySetting(L"kept", L"k");
  helper.SetPolicySetting(L"changed", L"old");
  writeFile(file, document("",
                           "<Policies><Setting name=\"changed\">once</Setting><Other name=\"o\"/>"
                           "<Setting name=\"changed\">new</Setting></Policies>" +
                               policies("more", "m"),
                           "", policies("late", "l")));
  SiteChain list;
  ASSERT_EQ(helper.ReadSiteList(L"", list.address(), true), 0);
  EXPECT_THAT(helper.m_policySettings,
              ElementsAre(Pair(L"changed", L"new"), Pair(L"kept", L"k"), Pair(L"more", L"m")));
}

TEST_F(PolicySettings, EachHelperHasItsOwn) {
  OpenHelper other{wide(file)};
  helper.SetPolicySetting(L"a", L"1");
  std::wstring value;
  EXPECT_FALSE(other.GetPolicySetting(L"a", value));
}

}  // namespace
