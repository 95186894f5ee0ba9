#include <gtest/gtest.h>

#include "tests/host_xml/documents.h"

namespace {

using namespace AdvXMLParser;
using test::parse;
using test::written;

std::vector<std::wstring> namesOf(const ElementRange& range) {
  std::vector<std::wstring> names;
  for (const Element element : range) names.push_back(element.GetName());
  return names;
}

using Names = std::vector<std::wstring>;

TEST(Element, FindsItsFirstChildOfAName) {
  const test::DocumentPtr document = parse(
      std::wstring(L"<r>text<!--b--><?b?><a><b n='0'/></a><b n='1'/><B n='2'/><b n='3'/></r>"));
  const Element root = document->GetRoot();
  EXPECT_EQ(root.GetElement(L"b").GetAttribute(L"n").GetValue(), L"1");
  EXPECT_EQ(root.GetElement(L"B").GetAttribute(L"n").GetValue(), L"2");
  EXPECT_TRUE(root.GetElement(L"c").IsNull());
  EXPECT_TRUE(root.GetElement(L"").IsNull());
  EXPECT_TRUE(root.GetElement(L"r").IsNull());
  EXPECT_TRUE(root.GetElement(L"ab").IsNull());
}

TEST(Element, WalksItsChildElementsInOrder) {
  const test::DocumentPtr document =
      parse(std::wstring(L"<r> <!--x--><a><x/></a> text <?x?><b/><![CDATA[x]]><a/> </r>"));
  EXPECT_EQ(namesOf(document->GetRoot().Elements()), (Names{L"a", L"b", L"a"}));
  EXPECT_EQ(namesOf(document->GetRoot().GetElement(L"b").Elements()), Names());
}

TEST(Element, WalksItsAttributesInOrder) {
  const test::DocumentPtr document = parse(std::wstring(L"<r z='1' a='2' m=''/>"));
  std::wstring all;
  for (const Attribute attribute : document->GetRoot().Attributes()) {
    all += attribute.GetName() + L"=" + attribute.GetValue() + L";";
  }
  EXPECT_EQ(all, L"z=1;a=2;m=;");
}

TEST(Element, HasAttributesOfDifferentCase) {
  const test::DocumentPtr document = parse(std::wstring(L"<r b='1' B='2' bb='3' xmlns:ns='4'/>"));
  const Element root = document->GetRoot();
  EXPECT_EQ(root.GetAttribute(L"b").GetValue(), L"1");
  EXPECT_EQ(root.GetAttribute(L"B").GetValue(), L"2");
  EXPECT_EQ(root.GetAttribute(L"xmlns:ns").GetValue(), L"4");
  EXPECT_TRUE(root.GetAttribute(L"ns").IsNull());
  EXPECT_TRUE(root.GetAttribute(L"").IsNull());
}

TEST(Element, ComparesNamesExactly) {
  const test::DocumentPtr document =
      parse(std::wstring(L"<ns:Caf\xE9><\x4E2D\x6587 \xE9='x'/></ns:Caf\xE9>"));
  const Element root = document->GetRoot();
  EXPECT_TRUE(root.HasName(L"ns:Caf\xE9"));
  for (const wchar_t* other :
       {L"", L"ns:Caf", L"ns:Caf\xE9s", L"ns:Cafe", L"NS:Caf\xE9", L"Caf\xE9"}) {
    EXPECT_FALSE(root.HasName(other));
  }
  EXPECT_EQ(root.GetName(), L"ns:Caf\xE9");
  const Element child = root.GetElement(L"\x4E2D\x6587");
  EXPECT_TRUE(child.HasName(L"\x4E2D\x6587"));
  EXPECT_FALSE(child.HasName(L"\x4E2D"));
  EXPECT_FALSE(child.HasName(L"\x4E2D\x6587\x6587"));
  EXPECT_TRUE(child.GetAttribute(L"\xE9").HasName(L"\xE9"));
}

TEST(Element, AddsChildrenBehindTheOthers) {
  Document document(L"r");
  Element root = document.GetRoot();
  Element first = root.AddElementInto(L"a");
  root.AddElementInto(L"b");
  first.AddElementInto(L"c");
  EXPECT_EQ(written(document), "<r><a><c/></a><b/></r>");
}

TEST(Element, AppendsAtTheEndOfItsParent) {
  Document document(L"r");
  Element first = document.GetRoot().AddElementInto(L"a");
  document.GetRoot().AddElementInto(L"b");
  EXPECT_TRUE(first.AppendElement(L"c").HasName(L"c"));
  EXPECT_TRUE(first.AppendElement(L"d").HasName(L"d"));
  EXPECT_EQ(written(document), "<r><a/><b/><c/><d/></r>");
}

TEST(Element, AppendsInOrderFromWhicheverSiblingWasAddedLast) {
  Document document(L"r");
  Element last = document.GetRoot().AddElementInto(L"h1");
  last = last.AppendElement(L"h2");
  last = last.AppendElement(L"h3");
  EXPECT_EQ(written(document), "<r><h1/><h2/><h3/></r>");
}

TEST(Element, AppendsNothingBesideTheRoot) {
  Document document(L"r");
  EXPECT_TRUE(document.GetRoot().AppendElement(L"a").IsNull());
  EXPECT_EQ(written(document), "<r/>");
}

TEST(Element, CreatesAttributesBehindTheOthers) {
  Document document(L"r");
  Element root = document.GetRoot();
  root.CreateAttribute(L"b").SetValue(L"1");
  root.CreateAttribute(L"a").SetValue(L"2");
  root.CreateAttribute(L"c");
  EXPECT_EQ(written(document), "<r b=\"1\" a=\"2\" c=\"\"/>");
}

TEST(Element, CreatesAnAttributeThatIsThereInItsPlaceAndWithoutItsValue) {
  const test::DocumentPtr document = parse(std::wstring(L"<r a='1' b='2' c='3'/>"));
  Attribute attribute = document->GetRoot().CreateAttribute(L"b");
  EXPECT_EQ(attribute.GetValue(), L"");
  EXPECT_EQ(written(*document), "<r a=\"1\" b=\"\" c=\"3\"/>");
  attribute.SetValue(L"4");
  EXPECT_EQ(written(*document), "<r a=\"1\" b=\"4\" c=\"3\"/>");
}

TEST(Element, AddsTextBehindWhatItHolds) {
  const test::DocumentPtr document = parse(std::wstring(L"<r>1<a/></r>"));
  Element root = document->GetRoot();
  root.AddText(L"2");
  root.AddText(L"3");
  EXPECT_EQ(root.GetValue(), L"123");
  EXPECT_EQ(written(*document), "<r>1<a/>23</r>");
}

TEST(Element, ChangesADocumentThatWasRead) {
  const test::DocumentPtr document = parse(std::wstring(L"<r>\n <!--c-->\n <a b='1'/>\n</r>"));
  Element a = document->GetRoot().GetElement(L"a");
  a.GetAttribute(L"b").SetValue(L"a much longer value than the one before");
  a.AddElementInto(L"x").AddText(L"t");
  EXPECT_EQ(written(*document),
            "<r>\n <!--c-->\n <a b=\"a much longer value than the one before\"><x>t</x></a>\n</r>");
}

TEST(NullHandle, AnswersEveryQuestionWithNothing) {
  const Element element;
  EXPECT_TRUE(element.IsNull());
  EXPECT_EQ(element.GetName(), L"");
  EXPECT_EQ(element.GetValue(), L"");
  EXPECT_FALSE(element.HasName(L"a"));
  EXPECT_FALSE(element.HasName(L""));
  EXPECT_TRUE(element.GetAttribute(L"a").IsNull());
  EXPECT_TRUE(element.GetElement(L"a").IsNull());
  EXPECT_EQ(namesOf(element.Elements()), Names());
  for (const Attribute attribute : element.Attributes()) ADD_FAILURE() << attribute.IsNull();
  std::string narrow = "before";
  element.GetNarrowValue(narrow);
  EXPECT_EQ(narrow, "");

  const Attribute attribute;
  EXPECT_TRUE(attribute.IsNull());
  EXPECT_EQ(attribute.GetName(), L"");
  EXPECT_EQ(attribute.GetValue(), L"");
  EXPECT_STREQ(attribute.GetNarrowValue(), "");
  EXPECT_FALSE(attribute.HasName(L"a"));
  EXPECT_FALSE(attribute.HasName(L""));
}

TEST(NullHandle, CopiesEmptyText) {
  wchar_t dest[2] = {L'x', L'x'};
  EXPECT_TRUE(Element().CopyValue(dest, 1));
  EXPECT_EQ(dest[0], L'\0');
  dest[0] = L'x';
  EXPECT_TRUE(Attribute().CopyValue(dest, 1));
  EXPECT_EQ(dest[0], L'\0');
  EXPECT_EQ(dest[1], L'x');
  EXPECT_FALSE(Element().CopyValue(dest, 0));
  EXPECT_FALSE(Attribute().CopyValue(dest, 0));
}

TEST(NullHandle, DoesNothingWhenItIsChanged) {
  Element element;
  element.AddText(L"text");
  EXPECT_TRUE(element.CreateAttribute(L"a").IsNull());
  EXPECT_TRUE(element.AddElementInto(L"a").IsNull());
  EXPECT_TRUE(element.AppendElement(L"a").IsNull());
  Attribute attribute;
  attribute.SetValue(L"value");
  EXPECT_TRUE(attribute.IsNull());
}

}  // namespace
