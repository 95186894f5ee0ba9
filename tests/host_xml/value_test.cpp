#include <gtest/gtest.h>

#include "tests/host_xml/documents.h"

namespace {

using namespace AdvXMLParser;
using test::parse;

TEST(Value, IsTheTextDirectlyInTheElement) {
  const test::DocumentPtr document = parse(std::wstring(
      L"<r> one<a>not this</a>&amp;<!--nor this--><![CDATA[<two>]]><?nor this?> &#x20AC; </r>"));
  const std::wstring value = L" one&<two> \x20AC ";
  const Element root = document->GetRoot();
  EXPECT_EQ(root.GetValue(), value);
  wchar_t copy[64];
  ASSERT_TRUE(root.CopyValue(copy, 64));
  EXPECT_EQ(copy, value);
  std::string narrow = "before";
  root.GetNarrowValue(narrow);
  EXPECT_EQ(narrow, test::narrow(value));
}

TEST(Value, IsEmptyWithoutText) {
  const test::DocumentPtr document = parse(std::wstring(L"<r><a>x</a><![CDATA[]]></r>"));
  EXPECT_EQ(document->GetRoot().GetValue(), L"");
}

TEST(Value, OfAnAttributeIsReadInEveryForm) {
  const test::DocumentPtr document = parse(std::wstring(L"<r a='1&lt;\x20AC' b=''/>"));
  const Attribute a = document->GetRoot().GetAttribute(L"a");
  EXPECT_EQ(a.GetValue(), L"1<\x20AC");
  EXPECT_STREQ(a.GetNarrowValue(), "1<\xE2\x82\xAC");
  EXPECT_EQ(document->GetRoot().GetAttribute(L"b").GetValue(), L"");
  EXPECT_FALSE(document->GetRoot().GetAttribute(L"b").IsNull());
}

constexpr wchar_t c_guard = 0x7E57;

// Copies into `capacity` characters and checks the memory after them.
template <typename Source>
bool copies(const Source& source, std::size_t capacity, std::wstring& out) {
  std::vector<wchar_t> dest(capacity + 1, c_guard);
  const bool copied = source.CopyValue(dest.data(), capacity);
  EXPECT_EQ(dest[capacity], c_guard);
  if (copied) out = dest.data();
  return copied;
}

// ASCII, other and mixed text of every length up to a few blocks of the copy.
TEST(CopiedValue, FitsExactlyWhenThereIsRoomForItsTerminator) {
  for (std::size_t length = 0; length <= 40; ++length) {
    for (std::size_t step = 1; step <= 9; ++step) {
      std::wstring value(length, L'x');
      for (std::size_t i = step - 1; step < 9 && i < length; i += step) {
        value[i] = i % 2 ? L'\x1F600' : L'\xE9';
      }
      Document document(L"r");
      Element root = document.GetRoot();
      root.AddText(value);
      Attribute attribute = root.CreateAttribute(L"a");
      attribute.SetValue(value);
      for (std::size_t capacity = 0; capacity <= length + 3; ++capacity) {
        std::wstring fromElement = L"unset";
        std::wstring fromAttribute = L"unset";
        const bool fits = capacity > length;
        EXPECT_EQ(copies(root, capacity, fromElement), fits) << length << " " << capacity;
        EXPECT_EQ(copies(attribute, capacity, fromAttribute), fits) << length << " " << capacity;
        if (fits) {
          EXPECT_EQ(fromElement, value);
          EXPECT_EQ(fromAttribute, value);
        }
      }
    }
  }
}

TEST(CopiedValue, FitsExactlyWhenItComesInSeveralPieces) {
  const test::DocumentPtr document =
      parse(std::wstring(L"<r>12345678<a/><![CDATA[\xE9\x20AC]]><a/>12345678<![CDATA[]]></r>"));
  const std::wstring value =
      L"12345678\xE9\x20AC"
      L"12345678";
  for (std::size_t capacity = 0; capacity <= value.size() + 3; ++capacity) {
    std::wstring copy;
    EXPECT_EQ(copies(document->GetRoot(), capacity, copy), capacity > value.size()) << capacity;
    if (capacity > value.size()) {
      EXPECT_EQ(copy, value);
    }
  }
}

TEST(StoredText, KeepsEverythingThatXmlCanCarry) {
  std::wstring text;
  for (std::uint32_t c = 1; c <= 0x10FFFF; c += c < 0x3000 ? 1 : 97) {
    const bool carried = c >= 0x20 ? (c < 0xD800 || c > 0xDFFF) && c != 0xFFFE && c != 0xFFFF
                                   : c == 9 || c == 10 || c == 13;
    if (carried) text.push_back(static_cast<wchar_t>(c));
  }
  Document document(L"r");
  Element root = document.GetRoot();
  root.AddText(text);
  root.CreateAttribute(L"a").SetValue(text);
  EXPECT_TRUE(root.GetValue() == text);
  EXPECT_TRUE(root.GetAttribute(L"a").GetValue() == text);

  const test::DocumentPtr again = parse(document.GenerateXML(false));
  ASSERT_NE(again, nullptr);
  EXPECT_TRUE(again->GetRoot().GetValue() == text);
  EXPECT_TRUE(again->GetRoot().GetAttribute(L"a").GetValue() == text);
}

TEST(StoredText, ReplacesWhatXmlCannotCarry) {
  std::vector<std::uint32_t> refused = {0xD800, 0xDBFF, 0xDC00,   0xDFFF,
                                        0xFFFE, 0xFFFF, 0x110000, 0xFFFFFFFF};
  for (std::uint32_t c = 0; c < 0x20; ++c) {
    if (c != 9 && c != 10 && c != 13) refused.push_back(c);
  }
  for (const std::uint32_t c : refused) {
    const std::wstring text = L"a" + std::wstring(1, static_cast<wchar_t>(c)) + L"b";
    Document document(L"r");
    Element root = document.GetRoot();
    root.AddText(text);
    root.CreateAttribute(L"a").SetValue(text);
    EXPECT_EQ(root.GetValue(),
              L"a\xFFFD"
              L"b")
        << std::hex << c;
    EXPECT_EQ(root.GetAttribute(L"a").GetValue(),
              L"a\xFFFD"
              L"b")
        << std::hex << c;
    EXPECT_NE(parse(document.GenerateXML(false)), nullptr) << std::hex << c;
  }
}

TEST(StoredText, ReplacesWhatNamesCannotHave) {
  Document document(L"r\x01");
  Element root = document.GetRoot();
  root.AddElementInto(L"e\xFFFF");
  root.CreateAttribute(L"a\x02");
  EXPECT_EQ(root.GetName(), L"r_");
  EXPECT_TRUE(root.Elements().begin() != root.Elements().end());
  EXPECT_EQ((*root.Elements().begin()).GetName(), L"e___");
  EXPECT_EQ((*root.Attributes().begin()).GetName(), L"a_");
}

}  // namespace
