#include "tests/edit/edit_fixture.h"

using namespace sitehlp;
using namespace test;

namespace {

class ReplaceRepository : public testing::Test {
 protected:
  // The target with its element <HttpSite Name="old"> replaced by <HttpSite Name="new"> of the
  // source.
  std::string replaced(const std::string& targetSites, const std::string& sourceSites, int order,
                       const wchar_t* type) {
    OpenDocument target(dir, document(targetSites));
    OpenDocument source(dir, document(sourceSites));
    AnXmlNode from = source.site(L"HttpSite", L"new");
    AnXmlNode to = target.site(L"HttpSite", L"old");
    helper.replaceWexRepository(from, target.siteList, to, order, type);
    AString name;
    EXPECT_TRUE(to.tryGetValue(L"Name", name)) << "the handle refers to the new element";
    EXPECT_EQ(name.str(), L"new");
    return target.text();
  }

  TestAgent agent;
  TempDir dir;
  CSitesHelper helper{true};
};

TEST_F(ReplaceRepository, TheNewElementGoesBehindTheOthersUnderSlotAndTypeOfTheTarget) {
  EXPECT_EQ(
      replaced(R"(<HttpSite Name="old" Server="h:80" Order="1" gone="x"><Old/></HttpSite><Other/>)",
               R"(<HttpSite Name="new" Server="h:80" Order="9" Type="mirror" b="c">t)"
               R"(<Path>p</Path></HttpSite>)",
               4, L"repository"),
      canonical(document(R"(<Other/><HttpSite Name="new" Server="h:80" Order="4" )"
                         R"(Type="repository" b="c">t<Path>p</Path></HttpSite>)")));
}

TEST_F(ReplaceRepository, GrandchildrenAreLostAndFirstLevelChildrenKept) {
  EXPECT_EQ(
      replaced(R"(<HttpSite Name="old" Server="h:80"/>)",
               R"(<HttpSite Name="new" Server="h:80"><A x="1">a<Deep/></A><B/></HttpSite>)", 1,
               L""),
      canonical(document(R"(<HttpSite Name="new" Server="h:80"><A x="1">a</A><B/></HttpSite>)")));
}

TEST_F(ReplaceRepository, AnotherElementWithTheSameServerIsReused) {
  EXPECT_EQ(
      replaced(R"(<HttpSite Name="old" Server="h:80"/><HttpSite Name="twin" Server="h:80" )"
               R"(kept="k"/><Other/>)",
               R"(<HttpSite Name="new" Server="h:80" Order="2"/>)", 3, L""),
      canonical(document(R"(<HttpSite Name="new" Server="h:80" kept="k" Order="3"/><Other/>)")));
}

class SameServer : public testing::Test {
 protected:
  bool same(const std::string& a, const std::string& b) {
    OpenDocument one(dir, document("<VestaSite " + a + "/>"));
    OpenDocument two(dir, document("<VestaSite " + b + "/>"));
    AnXmlNode first;
    AnXmlNode second;
    EXPECT_TRUE(one.siteList.tryGetChild(first, L"VestaSite", nullptr, nullptr, nullptr, nullptr));
    EXPECT_TRUE(two.siteList.tryGetChild(second, L"VestaSite", nullptr, nullptr, nullptr, nullptr));
    return helper.IstheSamePyxSite(first, second);
  }
  // Returns the four identity attributes. `changed` has another value, or is missing if the value
  // is "-".
  static std::string identity(const std::string& changed = "", const std::string& value = "") {
    std::string text;
    for (const std::string name : {"Name", "Server", "ServerName", "ServerIP"}) {
      const std::string own = name == changed ? value : "value of " + name;
      if (own != "-") text += name + "=\"" + own + "\" ";
    }
    return text;
  }

  TestAgent agent;
  TempDir dir;
  CSitesHelper helper{true};
};

TEST_F(SameServer, FourEqualAttributesMakeTheSameServer) {
  EXPECT_TRUE(same(identity(), identity()));
  EXPECT_TRUE(same("Order=\"1\" Version=\"4\" " + identity(), identity() + "Order=\"2\" x=\"y\""));
}

TEST_F(SameServer, EachOfTheFourAttributesDecides) {
  for (const char* name : {"Name", "Server", "ServerName", "ServerIP"}) {
    EXPECT_FALSE(same(identity(), identity(name, "other"))) << name;
    EXPECT_FALSE(same(identity(name, "other"), identity())) << name;
    EXPECT_FALSE(same(identity(name, ""), identity())) << name;
    EXPECT_FALSE(same(identity(name, std::string("VALUE OF ") + name), identity())) << name;
  }
}

TEST_F(SameServer, AnAttributeThatIsMissingIsNeverTheSame) {
  for (const char* name : {"Name", "Server", "ServerName", "ServerIP"}) {
    EXPECT_FALSE(same(identity(name, "-"), identity())) << name;
    EXPECT_FALSE(same(identity(), identity(name, "-"))) << name;
    EXPECT_FALSE(same(identity(name, "-"), identity(name, "-"))) << name;
    EXPECT_FALSE(same(identity(name, "-"), identity(name, ""))) << name;
  }
}

TEST_F(SameServer, EmptyValuesAreValuesToo) {
  for (const char* name : {"Name", "Server", "ServerName", "ServerIP"}) {
    EXPECT_TRUE(same(identity(name, ""), identity(name, ""))) << name;
  }
}

}  // namespace
