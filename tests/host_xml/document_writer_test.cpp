#include <gtest/gtest.h>

#include <string>

#include "host/xml/limits.h"
#include "tests/host_xml/documents.h"
#include "tests/support/memory_file_system.h"

// Documents that are written without a tree: their text is that of a tree with the same content.
namespace {

using namespace AdvXMLParser;

std::string textOf(DocumentWriter& writer) {
  writer.Finish();
  test::MemoryFileSystem disk;
  disk.put("/d/before", "");
  EXPECT_TRUE(WriteDocumentToFile(L"/d/list", writer));
  const std::string* const text = disk.find("/d/list");
  return text ? *text : "";
}

std::string textOf(const Document& document) { return test::narrow(document.GenerateXML(false)); }

void addAttribute(DocumentWriter& writer, const wchar_t* name, const std::wstring& value) {
  writer.AddAttribute(name, value.data(), value.size());
}

void addText(DocumentWriter& writer, const std::wstring& text) {
  writer.AddText(text.data(), text.size());
}

// Writes the value as an attribute and as text, with the writer and with a tree. Both texts must be
// equal.
void expectSameText(const std::wstring& value) {
  DocumentWriter writer(L"r");
  addAttribute(writer, L"n", value);
  addText(writer, value);
  const Document document(L"r");
  Element root = document.GetRoot();
  root.CreateAttribute(L"n").SetValue(value);
  root.AddText(value);
  ASSERT_EQ(textOf(writer), textOf(document));
}

void expectSameNames(const std::wstring& name) {
  DocumentWriter writer(name.c_str());
  addAttribute(writer, name.c_str(), L"v");
  writer.Open(name.c_str());
  addText(writer, L"t");
  writer.Close();
  writer.Open(name.c_str());
  const Document document(name);
  Element root = document.GetRoot();
  root.CreateAttribute(name.c_str()).SetValue(L"v");
  root.AddElementInto(name).AddText(L"t");
  root.AddElementInto(name);
  ASSERT_EQ(textOf(writer), textOf(document));
}

TEST(DocumentWriter, WritesElementsInTheirOrder) {
  DocumentWriter writer(L"r");
  addAttribute(writer, L"a", L"1");
  addAttribute(writer, L"b", L"");
  writer.Open(L"x");
  writer.Open(L"y");
  addText(writer, L"t");
  writer.Close();
  writer.Open(L"z");
  addAttribute(writer, L"c", L"3");
  writer.Close();
  addText(writer, L"u");
  writer.Close();
  writer.Open(L"x");
  EXPECT_EQ(textOf(writer),
            "<?xml version=\"1.0\" encoding=\"UTF-8\"?>"
            "<r a=\"1\" b=\"\"><x><y>t</y><z c=\"3\"/>u</x><x/></r>");
}

TEST(DocumentWriter, WritesTwoTagsAroundEmptyText) {
  DocumentWriter writer(L"r");
  writer.Open(L"x");
  addText(writer, L"");
  writer.Close();
  const Document document(L"r");
  document.GetRoot().AddElementInto(L"x").AddText(L"");
  EXPECT_EQ(textOf(writer), textOf(document));
}

TEST(DocumentWriter, WritesEveryCharacterAsATreeDoes) {
  for (std::uint32_t c = 0; c < 0x180; ++c) {
    expectSameText(std::wstring(1, static_cast<wchar_t>(c)));
    expectSameText(L"before" + std::wstring(3, static_cast<wchar_t>(c)) + L"behind");
  }
  for (const std::uint32_t c :
       {0x7FFu, 0x800u, 0xD7FFu, 0xD800u, 0xDFFFu, 0xE000u, 0xFEFFu, 0xFFFDu, 0xFFFEu, 0xFFFFu,
        0x10000u, 0x1F600u, 0x10FFFFu, 0x110000u, 0x7FFFFFFFu, 0x80000000u, 0xFFFFFFFFu}) {
    expectSameText(L"x" + std::wstring(2, static_cast<wchar_t>(c)) + L"x");
  }
}

TEST(DocumentWriter, WritesTextOfEveryLengthAsATreeDoes) {
  for (std::size_t length = 0; length < 400; ++length) {
    expectSameText(std::wstring(length, L'x'));
    expectSameText(std::wstring(length, L'"') + L'&');
  }
  expectSameText(std::wstring(100000, L'"'));
  expectSameText(std::wstring(100000, L'\x65E5'));
}

TEST(DocumentWriter, WritesEveryNameAsATreeDoes) {
  for (const std::wstring& name :
       {std::wstring(), std::wstring(L"ns:Site-List_1.0"), std::wstring(L"1a"),
        std::wstring(L"a b"), std::wstring(L"<&\">"), std::wstring(L"\x65E5"),
        std::wstring(L"a\xD800"), std::wstring(L"\x85"), std::wstring(2000, L'\x65E5')}) {
    expectSameNames(name);
  }
  for (std::size_t length = 1; length < 200; ++length) {
    expectSameNames(std::wstring(length, L'n'));
    expectSameNames(std::wstring(length, L'n') + L' ');
  }
}

TEST(DocumentWriter, WritesElementsOfAnyDepthAndNumber) {
  DocumentWriter writer(L"r");
  const Document document(L"r");
  Element element = document.GetRoot();
  for (int depth = 0; depth < 200; ++depth) {
    for (int i = 0; i < 20; ++i) {
      writer.Open(L"leaf");
      addText(writer, L"text");
      writer.Close();
      element.AddElementInto(L"leaf").AddText(L"text");
    }
    writer.Open(L"inner");
    element = element.AddElementInto(L"inner");
  }
  EXPECT_EQ(textOf(writer), textOf(document));
}

// --- Limits --------------------------------------------------------------------------------------

// Returns the text of the writer. A parser must accept it.
std::string readableTextOf(DocumentWriter& writer) {
  const std::string text = textOf(writer);
  const test::DocumentPtr document(Parser().ParseUtf8(text.data(), text.size()));
  EXPECT_NE(document, nullptr);
  return text;
}

void expectOverLimit(DocumentWriter& writer) {
  writer.Finish();
  test::MemoryFileSystem disk;
  disk.put("/d/list", "old");
  try {
    WriteDocumentToFile(L"/d/list", writer);
    ADD_FAILURE() << "it is written";
  } catch (const ReadWriteException& e) {
    EXPECT_EQ(e.GetErrorCode(), ReadWriteException::LIMIT_EXCEEDED);
  }
  EXPECT_EQ(*disk.find("/d/list"), "old");
}

// The root counts as the first level.
void openNested(DocumentWriter& writer, std::size_t depth) {
  for (std::size_t i = 1; i < depth; ++i) writer.Open(L"e");
}

TEST(DocumentWriter, HoldsTheLimitOfTheDepth) {
  DocumentWriter most(L"r");
  openNested(most, host::c_maxDepth);
  EXPECT_NE(readableTextOf(most), "");
  DocumentWriter tooMany(L"r");
  openNested(tooMany, host::c_maxDepth + 1);
  expectOverLimit(tooMany);
}

void addAttributes(DocumentWriter& writer, std::size_t number) {
  for (std::size_t i = 0; i < number; ++i) {
    addAttribute(writer, (L"a" + std::to_wstring(i)).c_str(), L"v");
  }
}

TEST(DocumentWriter, HoldsTheLimitOfTheAttributes) {
  DocumentWriter most(L"r");
  addAttributes(most, host::c_maxAttributes);
  EXPECT_NE(readableTextOf(most), "");
  DocumentWriter tooMany(L"r");
  addAttributes(tooMany, host::c_maxAttributes + 1);
  expectOverLimit(tooMany);
}

}  // namespace
