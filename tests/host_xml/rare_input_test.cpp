#include <gtest/gtest.h>

#include "host/xml/limits.h"
#include "host/xml/text_encoding.h"
#include "host/xml/xml_name.h"
#include "platform/common/anxml.h"
#include "tests/host_xml/documents.h"

namespace {

using namespace AdvXMLParser;
using test::parse;
using test::repeated;

TEST(RareInput, ADocumentToEditMayBeginWithWhiteSpaceOfAnyKind) {
  const test::TempDir directory;
  const std::string path = directory.file("list");
  for (const std::string space : {" ", "\t", "\n", "\r", "\r\n \t"}) {
    test::writeFile(path, space + "<r/>" + space);
    AnXml xml;
    EXPECT_TRUE(xml.useExistingFile(AString(test::wide(path)), L"r", nullptr, nullptr));
    test::writeFile(path, space + "r" + space);
    EXPECT_FALSE(xml.useExistingFile(AString(test::wide(path)), nullptr, nullptr, nullptr));
    test::writeFile(path, space);
    EXPECT_FALSE(xml.useExistingFile(AString(test::wide(path)), nullptr, nullptr, nullptr));
  }
}

TEST(RareInput, ANullHandleHasNoNameAndAnotherOneItsOwnAlone) {
  const wchar_t* const names[] = {L"", L"a"};
  EXPECT_FALSE(Attribute().HasName(L"a"));
  EXPECT_FALSE(Attribute().HasName(L""));
  const test::DocumentPtr document = parse(std::string("<r a=''/>"));
  EXPECT_TRUE(document->GetRoot().GetAttribute(L"a").HasName(L"a"));
  EXPECT_FALSE(document->GetRoot().GetAttribute(L"a").HasName(L"b"));
  Attribute found[2] = {document->GetRoot().GetAttribute(L"a"), Attribute()};
  Element().FindAttributes(names, 2, found);
  EXPECT_FALSE(found[0].IsNull());
  EXPECT_TRUE(found[1].IsNull());
  EXPECT_EQ(Element().FindName(names, 2), 2U);
}

TEST(RareInput, ANameBeyondAsciiIsFoundAmongOthers) {
  const test::DocumentPtr document = parse(std::wstring(L"<Größe é='1' ä='2'/>"));
  const wchar_t* const names[] = {L"Grö", L"GröSSe", L"é", L"Größe", L"ä"};
  EXPECT_EQ(document->GetRoot().FindName(names, 5), 3U);
  Attribute found[5];
  document->GetRoot().FindAttributes(names, 5, found);
  std::vector<std::wstring> values;
  for (const Attribute& attribute : found) values.push_back(attribute.GetValue());
  EXPECT_EQ(values, (std::vector<std::wstring>{L"", L"", L"1", L"", L"2"}));
}

TEST(RareInput, ACarriageReturnAtTheVeryEndIsALineEndLikeAnyOther) {
  const std::string expected = test::written(*parse(std::string("<a/>\n")));
  EXPECT_EQ(test::written(*parse(std::string("<a/>\r"))), expected);
  EXPECT_EQ(test::written(*parse(std::string("<a/>\r\n"))), expected);
}

TEST(RareInput, OfTwoLimitsThatOneElementExceedsTheFirstIsNamed) {
  std::string xml = repeated("<a>", host::c_maxDepth) + "<b";
  for (std::size_t i = 0; i <= host::c_maxAttributes; ++i) xml += " n" + std::to_string(i) + "=''";
  xml += "/>" + repeated("</a>", host::c_maxDepth);
  try {
    parse(xml);
    FAIL() << "accepted";
  } catch (const ReadWriteException& e) {
    EXPECT_STREQ(e.what(), "document over the limit: depth");
  }
}

TEST(RareInput, ANameTooLongForAnyDocumentKeepsNothingBeyondAscii) {
  const std::wstring name = L"é" + std::wstring(host::c_maxTokenBytes, L'a');
  EXPECT_EQ(std::string(host::XmlName(name).c_str()),
            "__" + std::string(host::c_maxTokenBytes, 'a'));
}

TEST(RareInput, BytesThatOnlyBeginLikeAByteOrderMarkAreNone) {
  for (const std::string bytes : {"\xEF\xBC\xA1", "\xEF\xBB\xBE", "\xEF\xBB", "\xEF"}) {
    for (const UTF_ENCODINGS hint : {UTF_8, UTF_16LE}) {
      const host::FoundEncoding found = host::findEncoding(
          reinterpret_cast<const unsigned char*>(bytes.data()), bytes.size(), hint);
      EXPECT_EQ(found.encoding, hint);
      EXPECT_EQ(found.markLength, 0U);
    }
  }
}

TEST(RareInput, AHalfOfAPairBeforeAnythingButItsOtherHalfIsNotValid) {
  for (const int high : {0xD7, 0xDB, 0xE0, 0xFF}) {  // DC to DF begin the second half of a pair
    const unsigned char bytes[] = {'<', 0, 0x00, 0xD8, 0x00, static_cast<unsigned char>(high)};
    std::wstring text = L"old";
    UTF_ENCODINGS encoding = UTF_8;
    EXPECT_FALSE(ConvertBufferToUnicode(bytes, sizeof bytes, text, encoding)) << high;
    EXPECT_EQ(text, L"old");
    EXPECT_EQ(encoding, UTF_8);
  }
}

TEST(RareInput, ACopyOfAnExceptionTellsTheSame) {
  const ParsingException parsing(3, 4, "reason");
  const ParsingException parsingCopy(parsing);
  EXPECT_EQ(parsingCopy.GetLine(), 3U);
  EXPECT_EQ(parsingCopy.GetColumn(), 4U);
  EXPECT_EQ(parsingCopy.GetReason(), "reason");
  EXPECT_STREQ(parsingCopy.what(), parsing.what());

  const ReadWriteException file(ReadWriteException::READ_FAILED, 5, "other reason", 6, 7);
  const ReadWriteException fileCopy(file);
  EXPECT_EQ(fileCopy.GetErrorCode(), ReadWriteException::READ_FAILED);
  EXPECT_EQ(fileCopy.GetSystemError(), 5);
  EXPECT_EQ(fileCopy.GetLine(), 6U);
  EXPECT_EQ(fileCopy.GetColumn(), 7U);
  EXPECT_STREQ(fileCopy.what(), "other reason");
}

}  // namespace
