#include <gtest/gtest.h>

#include "platform/common/anxml.h"
#include "tests/host_xml/documents.h"

namespace {

// One open document with this root.
class AnXmlNodes : public testing::Test {
 protected:
  AnXmlNode root(const std::string& xml) {
    EXPECT_TRUE(openAs(m_xml, xml));
    return AnXmlNode(&m_xml);
  }

  bool openAs(AnXml& document, const std::string& xml) const {
    test::writeFile(m_directory.file("in"), xml);
    return document.useExistingFile(AString(test::wide(m_directory.file("in"))), 0, 0, 0);
  }

  // The document as it is now, without the declaration.
  std::string written() const {
    EXPECT_TRUE(m_xml.writeFile(AString(test::wide(m_directory.file("out"))), false, false));
    return test::readFile(m_directory.file("out")).substr(test::c_declaration.size());
  }

  static std::wstring value(const AnXmlNode& node, const wchar_t* name) {
    AString text(L"none");
    node.tryGetValue(name, text);
    return text.str();
  }

  AnXml m_xml;
  test::TempDir m_directory;
};

TEST_F(AnXmlNodes, HaveTheRootOfTheirDocumentFirst) {
  EXPECT_EQ(root("<!-- c --><ns:r/>").getName().str(), L"ns:r");
  EXPECT_TRUE(AnXmlNode(nullptr).isNull());
  AnXml empty;
  EXPECT_TRUE(AnXmlNode(&empty).isNull());
}

TEST_F(AnXmlNodes, FindTheirFirstChildOfAName) {
  const AnXmlNode r = root("<r><x><b n='0'/></x>text<b n='1'/><!--b--><b n='2'/></r>");
  AnXmlNode out;
  EXPECT_TRUE(r.tryGetChild(out, L"b", 0, 0, 0, 0));
  EXPECT_EQ(value(out, L"n"), L"1");
  EXPECT_TRUE(r.getExistingChild(out, L"x", 0, 0, 0, 0));
  EXPECT_EQ(out.getName().str(), L"x");
  EXPECT_FALSE(r.tryGetChild(out, L"B", 0, 0, 0, 0));
  EXPECT_FALSE(r.getExistingChild(out, L"c", 0, 0, 0, 0));
  EXPECT_EQ(out.getName().str(), L"x");
}

TEST_F(AnXmlNodes, FindAChildOfAnyNameWhenNoneIsGiven) {
  const AnXmlNode r = root("<r>text<x/><b k='1'/></r>");
  AnXmlNode out;
  EXPECT_TRUE(r.tryGetChild(out, 0, 0, 0, 0, 0));
  EXPECT_EQ(out.getName().str(), L"x");
  EXPECT_TRUE(r.tryGetChild(out, L"", L"k", L"1", 0, 0));
  EXPECT_EQ(out.getName().str(), L"b");
}

TEST_F(AnXmlNodes, FindAChildByItsKey) {
  const AnXmlNode r = root("<r><b/><b k='1' o='x'/><b k=''/><c k='2'/><b k='2' o='&#xE9;'/></r>");
  AnXmlNode out;
  AString other(L"before");
  EXPECT_TRUE(r.tryGetChild(out, L"b", L"k", L"2", L"o", &other));
  EXPECT_EQ(other.str(), L"\xE9");
  EXPECT_EQ(value(out, L"k"), L"2");
  EXPECT_TRUE(r.tryGetChild(out, L"b", L"k", L"", L"o", &other));
  EXPECT_EQ(value(out, L"k"), L"");
  EXPECT_TRUE(other.empty());
  EXPECT_TRUE(r.tryGetChild(out, L"b", L"k", nullptr, 0, 0));
  EXPECT_EQ(value(out, L"k"), L"");
}

TEST_F(AnXmlNodes, LeaveTheOutputsAsTheyWereWhenThereIsNoSuchChild) {
  const AnXmlNode r = root("<r><b k='1' o='x'/></r>");
  AnXmlNode out = r;
  AString other(L"before");
  EXPECT_FALSE(r.tryGetChild(out, L"b", L"k", L"2", L"o", &other));
  EXPECT_FALSE(r.tryGetChild(out, L"b", L"K", L"1", L"o", &other));
  EXPECT_FALSE(r.tryGetChild(out, L"c", 0, 0, L"o", &other));
  EXPECT_EQ(out.getName().str(), L"r");
  EXPECT_EQ(other.str(), L"before");
  // An attribute name without an output, and an output without an attribute name.
  EXPECT_TRUE(r.tryGetChild(out, L"b", 0, 0, L"o", 0));
  EXPECT_TRUE(r.tryGetChild(out, L"b", 0, 0, 0, &other));
  EXPECT_EQ(other.str(), L"before");
}

TEST_F(AnXmlNodes, MoveToAChild) {
  AnXmlNode node = root("<r><SiteList><a k='1' o='2'/></SiteList></r>");
  EXPECT_FALSE(node.tryGetChildMove(L"a", 0, 0, 0, 0));
  EXPECT_EQ(node.getName().str(), L"r");
  EXPECT_TRUE(node.tryGetChildMove(L"SiteList", 0, 0, 0, 0));
  AString other;
  EXPECT_TRUE(node.tryGetChildMove(L"a", L"k", L"1", L"o", &other));
  EXPECT_EQ(node.getName().str(), L"a");
  EXPECT_EQ(other.str(), L"2");
}

TEST_F(AnXmlNodes, GiveTheirChildToTheHandleThatWasAsked) {
  AnXmlNode node = root("<r><a><b/></a></r>");
  EXPECT_TRUE(node.tryGetChild(node, L"a", 0, 0, 0, 0));
  EXPECT_TRUE(node.setChild(node, L"b", 0, 0, 0, 0));
  EXPECT_TRUE(node.addChild(node, L"c", 0, 0));
  EXPECT_EQ(node.getName().str(), L"c");
  EXPECT_EQ(written(), "<r><a><b><c/></b></a></r>");
}

TEST_F(AnXmlNodes, ReadAttributesAndText) {
  const AnXmlNode r = root("<r a='1&amp;' e=''>x<b>not</b><![CDATA[<y>]]></r>");
  AString text;
  EXPECT_TRUE(r.tryGetValue(L"a", text));
  EXPECT_EQ(text.str(), L"1&");
  EXPECT_TRUE(r.tryGetValue(L"e", text));
  EXPECT_EQ(text.str(), L"");
  EXPECT_TRUE(r.tryGetValue(L"", text));
  EXPECT_EQ(text.str(), L"x<y>");
  EXPECT_TRUE(r.tryGetValue(0, text));
  EXPECT_EQ(text.str(), L"x<y>");
  EXPECT_FALSE(r.tryGetValue(L"A", text));
  EXPECT_EQ(text.str(), L"x<y>");
  AnXmlNode b;
  ASSERT_TRUE(root("<r><b/></r>").tryGetChild(b, L"b", 0, 0, 0, 0));
  EXPECT_TRUE(b.tryGetValue(L"", text));
  EXPECT_EQ(text.str(), L"");
}

TEST_F(AnXmlNodes, SetAttributesInPlaceOrBehindTheOthers) {
  AnXmlNode r = root("<r a='1' b='2'/>");
  r.setValue(L"a", L"3");
  r.setValue(L"c", L"<&\"\n");
  r.setValue(L"b", L"");
  EXPECT_EQ(written(), "<r a=\"3\" b=\"\" c=\"&lt;&amp;&quot;&#10;\"/>");
}

TEST_F(AnXmlNodes, SetTheirTextInThePlaceOfAllTheyHad) {
  AnXmlNode r = root("<r>1<a/>2<![CDATA[3]]><!--c--><b>inner</b>4</r>");
  r.setValue(L"", L"new <text>");
  EXPECT_EQ(written(), "<r>new &lt;text&gt;<a/><!--c--><b>inner</b></r>");
  r.setValue(0, L"");
  EXPECT_EQ(written(), "<r><a/><!--c--><b>inner</b></r>");
}

TEST_F(AnXmlNodes, StoreWhatXmlCannotCarryAsReplacements) {
  AnXmlNode r = root("<r/>");
  r.setValue(L"a", L"\x01");
  r.setValue(L"", L"\xFFFE");
  EXPECT_EQ(written(), "<r a=\"\xEF\xBF\xBD\">\xEF\xBF\xBD</r>");
}

TEST_F(AnXmlNodes, ReuseAChildOfTheNameOrAddOne) {
  AnXmlNode r = root("<r><a n='1'/><b/><a n='2'/></r>");
  AnXmlNode out;
  EXPECT_TRUE(r.setChild(out, L"a", 0, 0, 0, 0));
  EXPECT_EQ(value(out, L"n"), L"1");
  EXPECT_TRUE(r.setChild(out, L"c", 0, 0, 0, 0));
  EXPECT_TRUE(r.setChild(out, L"c", 0, 0, 0, 0));
  EXPECT_EQ(out.getName().str(), L"c");
  EXPECT_EQ(written(), "<r><a n=\"1\"/><b/><a n=\"2\"/><c/></r>");
}

TEST_F(AnXmlNodes, ReuseAChildOfTheKeyOrAddOneWithIt) {
  AnXmlNode r = root("<r><a k='1'/><a k='2'/></r>");
  AnXmlNode out;
  EXPECT_TRUE(r.setChild(out, L"a", L"k", L"2", L"o", L"x"));
  EXPECT_EQ(value(out, L"o"), L"x");
  EXPECT_TRUE(r.setChild(out, L"a", L"k", L"3", L"o", L"y"));
  EXPECT_TRUE(r.setChild(out, L"a", L"k", L"3", L"o", nullptr));
  EXPECT_EQ(value(out, L"k"), L"3");
  EXPECT_EQ(written(), "<r><a k=\"1\"/><a k=\"2\" o=\"x\"/><a k=\"3\" o=\"\"/></r>");
}

TEST_F(AnXmlNodes, AddChildrenBehindTheOthers) {
  AnXmlNode r = root("<r><a/>text</r>");
  AnXmlNode out;
  EXPECT_TRUE(r.addChild(out, L"a", 0, 0));
  EXPECT_TRUE(r.addChild(out, L"b", L"k", L"v"));
  EXPECT_EQ(out.getName().str(), L"b");
  EXPECT_EQ(written(), "<r><a/>text<a/><b k=\"v\"/></r>");
}

TEST_F(AnXmlNodes, AddNoChildWithoutAName) {
  AnXmlNode r = root("<r/>");
  AnXmlNode out = r;
  EXPECT_FALSE(r.addChild(out, 0, 0, 0));
  EXPECT_FALSE(r.addChild(out, L"", 0, 0));
  EXPECT_FALSE(r.setChild(out, 0, 0, 0, 0, 0));
  EXPECT_EQ(out.getName().str(), L"r");
  EXPECT_EQ(written(), "<r/>");
}

TEST_F(AnXmlNodes, AreRemovedWithAllTheyHold) {
  const AnXmlNode r = root("<r>1<a><b>x</b></a>2<a/></r>");
  AnXmlNode a;
  ASSERT_TRUE(r.tryGetChild(a, L"a", 0, 0, 0, 0));
  a.remove();
  EXPECT_TRUE(a.isNull());
  EXPECT_EQ(written(), "<r>12<a/></r>");
}

TEST_F(AnXmlNodes, AreNotRemovedWhenTheyAreTheRoot) {
  AnXmlNode r = root("<r><a/></r>");
  r.remove();
  EXPECT_FALSE(r.isNull());
  EXPECT_EQ(written(), "<r><a/></r>");
}

TEST_F(AnXmlNodes, AreCopiedWithAllTheyHold) {
  const char* const bundle =
      "<CaBundle a=\"1\" b=\"\">\n <c>x<!-- k --><![CDATA[<y>]]></c><?p "
      "d?><c><d><e/></d>z</c>\n</CaBundle>";
  AnXml other;
  ASSERT_TRUE(openAs(other, std::string("<o>") + bundle + "<not/></o>"));
  AnXmlNode source;
  ASSERT_TRUE(AnXmlNode(&other).tryGetChild(source, L"CaBundle", 0, 0, 0, 0));
  AnXmlNode r = root("<r><a/></r>");
  r.copyAsChild(source);
  r.copyAsChild(source);
  EXPECT_EQ(written(), std::string("<r><a/>") + bundle + bundle + "</r>");
  // The copies are independent.
  source.remove();
  EXPECT_EQ(written(), std::string("<r><a/>") + bundle + bundle + "</r>");
}

TEST_F(AnXmlNodes, AreCopiedIntoThemselvesAsTheyWere) {
  AnXmlNode r = root("<r><a>1<b/>2</a></r>");
  AnXmlNode b;
  AnXmlNode a;
  ASSERT_TRUE(r.tryGetChild(a, L"a", 0, 0, 0, 0));
  ASSERT_TRUE(a.tryGetChild(b, L"b", 0, 0, 0, 0));
  a.copyAsChild(a);
  EXPECT_EQ(written(), "<r><a>1<b/>2<a>1<b/>2</a></a></r>");
  b.copyAsChild(b);
  EXPECT_EQ(written(), "<r><a>1<b><b/></b>2<a>1<b/>2</a></a></r>");
  b.copyAsChild(r);
  EXPECT_EQ(written(),
            "<r><a>1<b><b/><r><a>1<b><b/></b>2<a>1<b/>2</a></a></r></b>2<a>1<b/>2</a></a></r>");
}

TEST_F(AnXmlNodes, ThatAreNullAnswerWithNothing) {
  const AnXmlNode null;
  AnXmlNode out = root("<r/>");
  AString text(L"before");
  EXPECT_TRUE(null.isNull());
  EXPECT_EQ(null.getName().str(), L"");
  EXPECT_FALSE(null.tryGetChild(out, L"a", 0, 0, L"o", &text));
  EXPECT_FALSE(null.tryGetChild(out, 0, 0, 0, 0, 0));
  EXPECT_FALSE(null.getExistingChild(out, L"a", 0, 0, 0, 0));
  EXPECT_FALSE(AnXmlNode().tryGetChildMove(L"a", 0, 0, 0, 0));
  EXPECT_FALSE(null.tryGetValue(L"a", text));
  EXPECT_FALSE(null.tryGetValue(L"", text));
  EXPECT_EQ(text.str(), L"before");
  EXPECT_EQ(out.getName().str(), L"r");
}

TEST_F(AnXmlNodes, ThatAreNullDoNothingWhenTheyAreChanged) {
  AnXmlNode r = root("<r/>");
  AnXmlNode null;
  AnXmlNode out = r;
  null.setValue(L"a", L"1");
  null.setValue(L"", L"1");
  EXPECT_FALSE(null.setChild(out, L"a", 0, 0, 0, 0));
  EXPECT_FALSE(null.addChild(out, L"a", 0, 0));
  null.remove();
  null.copyAsChild(r);
  r.copyAsChild(null);
  EXPECT_TRUE(null.isNull());
  EXPECT_EQ(out.getName().str(), L"r");
  EXPECT_EQ(written(), "<r/>");
}

using Texts = std::vector<std::wstring>;

Texts childrenOf(const AnXmlNode& node, const wchar_t* name) {
  Texts texts;
  AnXmlChildIndex index(node, name);
  AnXmlNode child;
  while (index.moveNext(child)) {
    AString n;
    child.tryGetValue(L"n", n);
    texts.push_back(child.getName().str() + n.str());
  }
  return texts;
}

TEST_F(AnXmlNodes, WalkTheirChildElements) {
  const AnXmlNode r =
      root("<r>t<a n='1'><a n='x'/></a><!--a--><b n='2'/><?a?><a n='3'/><![CDATA[a]]></r>");
  EXPECT_EQ(childrenOf(r, 0), (Texts{L"a1", L"b2", L"a3"}));
  EXPECT_EQ(childrenOf(r, L""), (Texts{L"a1", L"b2", L"a3"}));
  EXPECT_EQ(childrenOf(r, L"a"), (Texts{L"a1", L"a3"}));
  EXPECT_EQ(childrenOf(r, L"c"), Texts());
  EXPECT_EQ(childrenOf(AnXmlNode(), 0), Texts());
}

TEST_F(AnXmlNodes, EndTheirWalkForGood) {
  AnXmlChildIndex index(root("<r><a/></r>"), L"a");
  AnXmlNode child;
  EXPECT_TRUE(index.moveNext(child));
  EXPECT_FALSE(index.moveNext(child));
  EXPECT_FALSE(index.moveNext(child));
  EXPECT_EQ(child.getName().str(), L"a");
  index.remove();
  EXPECT_EQ(written(), "<r><a/></r>");
}

// Removes every subset of the children during every kind of walk, and compares with the expected
// result.
TEST_F(AnXmlNodes, AreRemovedWhileTheyAreWalked) {
  const std::vector<std::string> pieces = {"<a n='0'/>", "<b n='1'/>", "<a n='2'/>", "<a n='3'/>",
                                           "<b n='4'/>"};
  for (const wchar_t* name : {L"", L"a", L"b"}) {
    for (unsigned choice = 0; choice < 32; ++choice) {
      const AnXmlNode r = root("<r>" + pieces[0] + "t" + pieces[1] + pieces[2] + "<!--c-->" +
                               pieces[3] + pieces[4] + "</r>");
      Texts left;
      Texts expected;
      AnXmlChildIndex index(r, name);
      AnXmlNode child;
      unsigned visited = 0;
      while (index.moveNext(child)) {
        ++visited;
        if (choice >> std::stoi(value(child, L"n")) & 1u) {
          index.remove();
          index.remove();  // there is no current child any more
        }
      }
      for (std::size_t i = 0; i < pieces.size(); ++i) {
        const std::wstring element(1, static_cast<wchar_t>(pieces[i][1]));
        const bool walked = *name == L'\0' || element == name;
        if (!walked || !(choice >> i & 1u)) expected.push_back(element + std::to_wstring(i));
      }
      EXPECT_EQ(childrenOf(r, 0), expected);
      EXPECT_EQ(visited, *name == L'\0' ? 5u : (*name == L'a' ? 3u : 2u));
    }
  }
}

TEST_F(AnXmlNodes, AreNotRemovedBeforeTheWalkBegins) {
  AnXmlChildIndex index(root("<r><a/></r>"), 0);
  index.remove();
  EXPECT_EQ(written(), "<r><a/></r>");
}

TEST_F(AnXmlNodes, AreRemovedByTheThousandWhileTheyAreWalked) {
  const AnXmlNode r = root("<r>" + test::repeated("<a/><b/>", 16000) + "</r>");
  AnXmlChildIndex index(r, L"b");
  AnXmlNode child;
  std::size_t removed = 0;
  for (; index.moveNext(child); ++removed) index.remove();
  EXPECT_EQ(removed, 16000u);
  EXPECT_EQ(childrenOf(r, 0).size(), 16000u);
}

TEST_F(AnXmlNodes, WalkTheirAttributes) {
  AnXmlNode r = root("<r z='1' xmlns:a='&lt;' e=''/>");
  AnXmlValueIndex index(r);
  Texts pairs;
  AString name;
  AString value;
  while (index.moveNext(name, value)) {
    pairs.push_back(name.str() + L"=" + value.str());
    r.setValue(name.c_str(), L"changed");
  }
  EXPECT_EQ(pairs, (Texts{L"z=1", L"xmlns:a=<", L"e="}));
  EXPECT_FALSE(index.moveNext(name, value));
  EXPECT_EQ(name.str(), L"e");
  EXPECT_EQ(value.str(), L"");
  AnXmlValueIndex none{AnXmlNode()};
  EXPECT_FALSE(none.moveNext(name, value));
}

}  // namespace
