#include <gtest/gtest.h>

#include "tests/host_xml/documents.h"

namespace {

using namespace AdvXMLParser;
using test::parse;
using test::written;

TEST(GeneratedText, BeginsWithTheDeclaration) {
  EXPECT_EQ(Document(L"ns:SiteLists").GenerateXML(false),
            L"<?xml version=\"1.0\" encoding=\"UTF-8\"?><ns:SiteLists/>");
}

TEST(GeneratedText, HasNothingAddedWithoutIndentation) {
  Document document(L"r");
  Element a = document.GetRoot().AddElementInto(L"a");
  a.CreateAttribute(L"n").SetValue(L"v");
  a.AddElementInto(L"b").AddText(L"t");
  a.AppendElement(L"c");
  EXPECT_EQ(written(document), "<r><a n=\"v\"><b>t</b></a><c/></r>");
}

TEST(GeneratedText, HasALineForEachElementWithIndentation) {
  Document document(L"r");
  Element a = document.GetRoot().AddElementInto(L"a");
  a.AddElementInto(L"b").AddText(L" t ");
  a.AppendElement(L"c");
  EXPECT_EQ(written(document, true), "\n<r>\n  <a>\n    <b> t </b>\n  </a>\n  <c />\n</r>\n");
}

TEST(GeneratedText, MeansTheSameWithIndentation) {
  Document document(L"r");
  Element a = document.GetRoot().AddElementInto(L"a");
  a.AddText(L" 1\r\n\t<&>\"' ");
  a.CreateAttribute(L"n").SetValue(L" 1\r\n\t<&>\"' ");
  const test::DocumentPtr again = parse(document.GenerateXML(true));
  ASSERT_NE(again, nullptr);
  EXPECT_EQ(again->GetRoot().GetElement(L"a").GetValue(), L" 1\r\n\t<&>\"' ");
  EXPECT_EQ(again->GetRoot().GetElement(L"a").GetAttribute(L"n").GetValue(), L" 1\r\n\t<&>\"' ");
}

TEST(GeneratedText, KeepsTextAndValuesOfSpecialCharacters) {
  for (const std::wstring& text :
       {std::wstring(L"<"), std::wstring(L">"), std::wstring(L"&"), std::wstring(L"\""),
        std::wstring(L"'"), std::wstring(L"]]>"), std::wstring(L"\r"), std::wstring(L"\n"),
        std::wstring(L"\t"), std::wstring(L"\r\n"), std::wstring(L"\n\r\r\n"), std::wstring(L" "),
        std::wstring(L"  leading and trailing  "), std::wstring(L"&amp;"), std::wstring(L"&#13;"),
        std::wstring(L"<![CDATA[x]]>"), std::wstring(L"<!-- x -->"),
        std::wstring(L"\x85\x2028\xFEFF"), std::wstring(L"\x1F600")}) {
    Document document(L"r");
    Element a = document.GetRoot().AddElementInto(L"a");
    a.AddText(text);
    a.CreateAttribute(L"n").SetValue(text);
    for (const bool indent : {false, true}) {
      const test::DocumentPtr again = parse(document.GenerateXML(indent));
      ASSERT_NE(again, nullptr);
      EXPECT_EQ(again->GetRoot().GetElement(L"a").GetValue(), text);
      EXPECT_EQ(again->GetRoot().GetElement(L"a").GetAttribute(L"n").GetValue(), text);
    }
  }
}

// The writer works in blocks, and a carriage return may stand at the border of two.
TEST(GeneratedText, EscapesEveryCarriageReturnOfALongText) {
  std::wstring text;
  for (int i = 0; i < 20000; ++i)
    text += std::wstring(static_cast<std::size_t>(i % 5), L'\x20AC') + L"\r";
  Document document(L"r");
  document.GetRoot().AddText(text);
  const std::wstring generated = document.GenerateXML(false);
  EXPECT_EQ(generated.find(L'\r'), std::wstring::npos);
  const test::DocumentPtr again = parse(generated);
  ASSERT_NE(again, nullptr);
  EXPECT_TRUE(again->GetRoot().GetValue() == text);
}

TEST(GeneratedText, OfATextReadAndWrittenIsThatText) {
  const std::string text =
      "\n<!-- header -->\n<r xmlns:ns=\"wxSiteList\">\n  <a  >\n"
      "    <b x=\"1\">t</b>\n  </a>\n  <?keep this?>\n  <![CDATA[ <raw> ]]>\n</r>\n<!-- footer "
      "-->\n";
  std::string expected = text;
  expected.replace(expected.find("<a  >"), 5, "<a>");
  const test::DocumentPtr document = parse(test::c_declaration + text);
  ASSERT_NE(document, nullptr);
  EXPECT_EQ(written(*document), expected);
}

}  // namespace
