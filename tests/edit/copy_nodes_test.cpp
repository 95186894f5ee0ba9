#include "tests/edit/edit_fixture.h"

using namespace sitehlp;
using namespace test;

namespace {

class CopyNodes : public testing::Test {
 protected:
  // Copies `site` into the element `x` of the target, and returns that element.
  std::string alter(const std::string& site, const std::string& x, int order, const wchar_t* type) {
    OpenDocument source(dir, document(site));
    OpenDocument target(dir, document(x));
    AnXmlNode from;
    AnXmlNode to;
    EXPECT_TRUE(source.siteList.tryGetChild(from, nullptr, nullptr, nullptr, nullptr, nullptr));
    EXPECT_TRUE(target.siteList.tryGetChild(to, nullptr, nullptr, nullptr, nullptr, nullptr));
    helper.copyXmlAttributesAlter(from, to, order, type);
    return inside(target.text());
  }
  std::string copy(const std::string& site, const std::string& x, bool subNodes) {
    OpenDocument source(dir, document(site));
    OpenDocument target(dir, document(x));
    AnXmlNode from;
    AnXmlNode to;
    EXPECT_TRUE(source.siteList.tryGetChild(from, nullptr, nullptr, nullptr, nullptr, nullptr));
    EXPECT_TRUE(target.siteList.tryGetChild(to, nullptr, nullptr, nullptr, nullptr, nullptr));
    if (subNodes) {
      helper.copyXmlSubNodes(from, to);
    } else {
      helper.copyXmlAttributes(from, to);
    }
    return inside(target.text());
  }
  // Returns the content of "SiteList".
  static std::string inside(const std::string& text) {
    const std::size_t begin = text.find('>', text.find("<SiteList ")) + 1;
    return text.substr(begin, text.find("</SiteList>") - begin);
  }

  TestAgent agent;
  TempDir dir;
  CSitesHelper helper{true};
};

TEST_F(CopyNodes, AttributesAndTextAreCopiedOverThoseThere) {
  EXPECT_EQ(
      copy(R"(<S a="1" Order="2" Type="t">text</S>)", R"(<X a="old" b="kept">old</X>)", false),
      R"(<X Order="2" Type="t" a="1" b="kept">text</X>)");
}

TEST_F(CopyNodes, AttributesKeepTheOrderOfTheSource) {
  OpenDocument source(dir, document(R"(<S c="1" a="2" b="3"/>)"));
  OpenDocument target(dir, document("<X/>"));
  AnXmlNode from;
  AnXmlNode to;
  ASSERT_TRUE(source.siteList.tryGetChild(from, L"S", nullptr, nullptr, nullptr, nullptr));
  ASSERT_TRUE(target.siteList.tryGetChild(to, L"X", nullptr, nullptr, nullptr, nullptr));
  helper.copyXmlAttributes(from, to);
  target.text();
  EXPECT_THAT(readFile(target.path), testing::HasSubstr(R"(<X c="1" a="2" b="3")"));
}

TEST_F(CopyNodes, ChildrenAreNoPartOfAttributesAndText) {
  EXPECT_EQ(copy("<S a=\"1\"><Child>c</Child></S>", "<X><Kept/></X>", false),
            "<X a=\"1\"><Kept/></X>");
}

TEST_F(CopyNodes, AlteredOrderAndTypeTakeThePlaceOfTheSources) {
  EXPECT_EQ(alter(R"(<S Order="5" Type="mirror" a="1">text</S>)", "<X/>", 2, L"fallback"),
            R"(<X Order="2" Type="fallback" a="1">text</X>)");
  EXPECT_EQ(alter(R"(<S Order="5"/>)", "<X/>", -12, nullptr), R"(<X Order="-12"/>)");
}

TEST_F(CopyNodes, AnOrderOfZeroIsLeftOut) {
  EXPECT_EQ(alter(R"(<S Order="5" Type="mirror"/>)", "<X/>", 0, L""), R"(<X Type="mirror"/>)");
  EXPECT_EQ(alter(R"(<S Order="5"/>)", R"(<X Order="9"/>)", 0, L""), R"(<X Order="9"/>)")
      << "an order that the target already has stays";
}

TEST_F(CopyNodes, WithoutATypeThatOfTheSourceIsCopied) {
  EXPECT_EQ(alter(R"(<S Type="mirror"/>)", "<X/>", 1, nullptr), R"(<X Type="mirror"/>)");
  EXPECT_EQ(alter(R"(<S Type="mirror"/>)", "<X/>", 1, L""), R"(<X Type="mirror"/>)");
}

TEST_F(CopyNodes, OnlyAttributesOfTheSourceAreAltered) {
  EXPECT_EQ(alter(R"(<S a="1"/>)", "<X/>", 3, L"fallback"), R"(<X a="1"/>)");
}

TEST_F(CopyNodes, NamesAreComparedExactly) {
  EXPECT_EQ(alter(R"(<S order="5" TYPE="t"/>)", "<X/>", 3, L"fallback"),
            R"(<X TYPE="t" order="5"/>)");
}

TEST_F(CopyNodes, ChildElementsAreCopiedOneLevelDeep) {
  EXPECT_EQ(
      copy(R"(<S a="no">no<One b="1">t1</One><Two><Deep>gone</Deep>t2</Two></S>)", "<X/>", true),
      R"(<X><One b="1">t1</One><Two>t2</Two></X>)");
}

TEST_F(CopyNodes, AChildOfTheSameNameIsReused) {
  EXPECT_EQ(copy("<S><One>new</One></S>", R"(<X><One kept="k">old</One></X>)", true),
            R"(<X><One kept="k">new</One></X>)");
}

TEST_F(CopyNodes, ChildAttributesAreCopiedUnaltered) {
  EXPECT_EQ(copy(R"(<S><One Order="5" Type="t"/></S>)", "<X/>", true),
            R"(<X><One Order="5" Type="t"/></X>)");
}

TEST_F(CopyNodes, TheSourceStaysAsItWas) {
  OpenDocument source(dir, document(R"(<S Order="1"><One>t</One></S>)"));
  OpenDocument target(dir, document("<X/>"));
  const std::string before = canonical(document(R"(<S Order="1"><One>t</One></S>)"));
  AnXmlNode from;
  AnXmlNode to;
  ASSERT_TRUE(source.siteList.tryGetChild(from, L"S", nullptr, nullptr, nullptr, nullptr));
  ASSERT_TRUE(target.siteList.tryGetChild(to, L"X", nullptr, nullptr, nullptr, nullptr));
  helper.copyXmlAttributesAlter(from, to, 4, L"t");
  helper.copyXmlSubNodes(from, to);
  EXPECT_EQ(source.text(), before);
}

}  // namespace
