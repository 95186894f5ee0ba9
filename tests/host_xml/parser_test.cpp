#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <thread>

#include "host/xml/limits.h"
#include "tests/host_xml/documents.h"
#include "tests/support/child_process.h"

namespace {

using namespace AdvXMLParser;
using test::parse;

void expectRefusedAt(const std::wstring& text, unsigned long line, unsigned long column,
                     const std::string& reason) {
  try {
    parse(text);
    ADD_FAILURE() << "accepted";
  } catch (const ParsingException& e) {
    EXPECT_EQ(e.GetLine(), line);
    EXPECT_EQ(e.GetColumn(), column);
    EXPECT_EQ(e.GetReason(), reason);
    EXPECT_EQ(e.what(), "line " + std::to_string(line) + ", column " + std::to_string(column) +
                            ": " + reason);
  }
}

std::string limitOf(const std::string& bytes) {
  try {
    const test::DocumentPtr document(Parser().ParseUtf8(bytes.data(), bytes.size()));
  } catch (const ReadWriteException& e) {
    EXPECT_EQ(e.GetErrorCode(), ReadWriteException::LIMIT_EXCEEDED);
    return e.what();
  }
  return "none";
}

TEST(Parser, GivesNothingForATextWithoutMarkup) {
  EXPECT_EQ(Parser().Parse(nullptr, 0), nullptr);
  for (const wchar_t* text : {L"", L" ", L" \t\r\n", L"invalid", L"  text <a/>", L"&lt;a/>",
                              L"\xFEFF<a/>", L"\xA0<a/>", L"\x0B<a/>"}) {
    EXPECT_EQ(parse(std::wstring(text)), nullptr) << test::narrow(text);
  }
  EXPECT_EQ(parse(std::wstring(L"\0<a/>", 5)), nullptr);
}

TEST(Parser, ReadsExactlyTheGivenLength) {
  const wchar_t text[] = L"<a/><b/>";
  const test::DocumentPtr document(Parser().Parse(text, 4));
  ASSERT_NE(document, nullptr);
  EXPECT_EQ(document->GetRoot().GetName(), L"a");
  EXPECT_THROW(Parser().Parse(text, 3), ParsingException);
}

TEST(Parser, ReadsBytesAsItReadsText) {
  const std::string bytes = "<a b='\xE2\x82\xAC'>\r\n\xF0\x9F\x98\x80</a>rest";
  const test::DocumentPtr document(Parser().ParseUtf8(bytes.data(), bytes.size() - 4));
  ASSERT_NE(document, nullptr);
  EXPECT_EQ(document->GenerateXML(false),
            parse(test::wide(bytes.substr(0, bytes.size() - 4)))->GenerateXML(false));
  EXPECT_EQ(document->GetRoot().GetValue(), L"\n\x1F600");
  EXPECT_THROW(Parser().ParseUtf8(bytes.data(), bytes.size()), ParsingException);
}

TEST(Parser, GivesNothingForBytesWithoutMarkup) {
  EXPECT_EQ(Parser().ParseUtf8(nullptr, 0), nullptr);
  for (const std::string bytes : {" \t\r\n", "invalid", "  text <a/>", "\xEF\xBB\xBF<a/>"}) {
    EXPECT_EQ(Parser().ParseUtf8(bytes.data(), bytes.size()), nullptr) << bytes;
  }
}

TEST(Parser, RefusesBytesThatAreNoUtf8) {
  for (const std::string bytes : {"<a>\xFF</a>", "<a>\xC0\xBC</a>", "<a/>\xE2\x82"}) {
    EXPECT_THROW(Parser().ParseUtf8(bytes.data(), bytes.size()), ParsingException) << bytes;
  }
}

TEST(Parser, HasALimitForBytes) {
  std::string bytes = "<a/>";
  bytes.resize(host::c_maxDocumentBytes, ' ');
  // The white space is too long for a token. A document with one byte more is refused for its size,
  // which is checked first.
  EXPECT_EQ(limitOf(bytes), "document over the limit: length of a text");
  EXPECT_EQ(limitOf(bytes + " "), "document over the limit: number of bytes");
}

TEST(Parser, TellsWhereAndWhyATextIsNotWellFormed) {
  expectRefusedAt(L"<a>\n<b></c></a>", 2, 6, "mismatched tag");
  expectRefusedAt(L"<a>\r\n\r\n  &x;</a>", 3, 3, "undefined entity");
  expectRefusedAt(L"<a>\x20AC\x1F600&x;</a>", 1, 6, "undefined entity");
  expectRefusedAt(L"<a>", 1, 4, "no element found");
  expectRefusedAt(L"<a b='1' b='2'/>", 1, 10, "duplicate attribute");
}

TEST(Parser, RefusesADocumentTypeBeforeItReadsOn) {
  expectRefusedAt(L"<!DOCTYPE a><a/>", 1, 12, "a document type declaration is not allowed");
  // The rest is not well formed either, but it is not parsed.
  expectRefusedAt(L"<?xml version=\"1.0\"?>\n<!DOCTYPE a [ <<< ", 2, 13,
                  "a document type declaration is not allowed");
}

TEST(Parser, RefusesZeroCharactersWhereTheyStand) {
  expectRefusedAt(std::wstring(L"<a>\n12\0</a>", 11), 2, 3, "not well-formed (invalid token)");
  EXPECT_THROW(parse(std::wstring(L"<a>\0</a>", 8)), ParsingException);
  EXPECT_THROW(parse(std::wstring(L"<a\0/>", 5)), ParsingException);
  EXPECT_THROW(parse(std::wstring(L"<a/>\0", 5)), ParsingException);
  EXPECT_THROW(parse(std::wstring(L"<a b='\0'/>", 10)), ParsingException);
  EXPECT_THROW(parse(std::wstring(L"<!--\0--><a/>", 12)), ParsingException);
}

TEST(Parser, RefusesWideCharactersThatAreNoScalarValuesWhereTheyStand) {
  for (const std::uint32_t value : {0xD800u, 0xDBFFu, 0xDC00u, 0xDFFFu, 0x110000u, 0xFFFFFFFFu}) {
    const std::wstring bad(1, static_cast<wchar_t>(value));
    expectRefusedAt(L"<a>\n12" + bad + L"</a>", 2, 3, "not well-formed (invalid token)");
    EXPECT_THROW(parse(L"<a>" + bad), ParsingException);
    EXPECT_THROW(parse(L"<a/>" + bad), ParsingException);
    EXPECT_THROW(parse(L"<a b='" + bad + L"'/>"), ParsingException);
    EXPECT_THROW(parse(L"<" + bad + L"/>"), ParsingException);
  }
  EXPECT_THROW(parse(std::wstring(L"<a>\xD83D\xDE00</a>")), ParsingException);
}

TEST(Parser, ForgetsTheDocumentsThatCameBefore) {
  const std::string good = "<?xml version='1.0' standalone='yes'?><r a='1'>\n<b/>&lt;</r>";
  const std::wstring expected = parse(good)->GenerateXML(false);
  const std::string large = "<r>" + test::repeated("<a b='c'>text</a>", 10000) + "</r>";
  const std::string others[] = {"<r><a b='1'><c>text",
                                "<r a='1' a='2'/>",
                                "<!DOCTYPE r [<!ENTITY lt 'other'>]><r/>",
                                "<?xml version='1.0' encoding='ISO-8859-1'?><r/>",
                                "<?xml version='1.0' standalone='no'?><r xmlns:x='u'><x:a/></r>",
                                "<r>\xFF</r>",
                                test::repeated("<a>", host::c_maxDepth + 1),
                                large,
                                large + "<"};
  for (const std::string& other : others) {
    try {
      Document* const document = Parser().ParseUtf8(other.data(), other.size());
      delete document;
    } catch (const std::exception&) {
    }
    EXPECT_EQ(parse(good)->GenerateXML(false), expected) << "after " << other.substr(0, 60);
    expectRefusedAt(L"<r>\n&other;</r>", 2, 1, "undefined entity");
  }
}

// Destroyed after all that belongs to the main thread.
struct ParsesAtTheVeryEnd {
  ~ParsesAtTheVeryEnd() {
    for (int i = 0; i < 2; ++i) {
      if (parse(std::string("<r>end</r>"))->GetRoot().GetValue() != L"end") std::_Exit(1);
    }
  }
};

CHILD_PROCESS(parseUntilTheVeryEnd) {
  static const ParsesAtTheVeryEnd last;
  return parse(std::string("<r>begin</r>"))->GetRoot().GetValue() == L"begin" ? 0 : 2;
}

TEST(Parser, WorksWhileItsProcessEnds) {
  EXPECT_EQ(test::ChildProcess("parseUntilTheVeryEnd", {}).wait(), 0);
}

TEST(Parser, WorksOnThreadsThatEndAndOnOthers) {
  for (int i = 0; i < 3; ++i) {
    std::thread([] {
      EXPECT_EQ(parse(std::string("<r>a</r>"))->GetRoot().GetValue(), L"a");
    }).join();
    EXPECT_EQ(parse(std::string("<r>b</r>"))->GetRoot().GetValue(), L"b");
  }
}

TEST(Parser, ReportsTheFirstFault) {
  const std::wstring bad(1, static_cast<wchar_t>(0xD800));
  expectRefusedAt(L"<a></b>" + bad, 1, 6, "mismatched tag");
}

// The parser may get or convert a long text in pieces. The result must not depend on their borders.
TEST(Parser, ReadsTextAcrossThePiecesItIsConvertedIn) {
  for (const std::size_t length :
       {65530u, 65531u, 65532u, 65533u, 65534u, 65535u, 65536u, 65537u, 131071u, 200000u}) {
    std::wstring value(length, L'x');
    for (std::size_t i = 0; i < length; i += 7) value[i] = static_cast<wchar_t>(0x1F600 + i % 50);
    const test::DocumentPtr document =
        parse(L"<a b='" + value + L"'>" + value + L"<!--" + value + L"--><c/></a>");
    ASSERT_NE(document, nullptr);
    EXPECT_TRUE(document->GetRoot().GetValue() == value) << length;
    EXPECT_TRUE(document->GetRoot().GetAttribute(L"b").GetValue() == value) << length;
    EXPECT_FALSE(document->GetRoot().GetElement(L"c").IsNull()) << length;
  }
}

TEST(Parser, TellsThePlaceOfAFaultInALaterPiece) {
  const std::wstring lines(150000, L'\n');
  expectRefusedAt(L"<a>" + lines + L"12\xFFFF</a>", 150001, 3, "not well-formed (invalid token)");
  const std::wstring bad(1, static_cast<wchar_t>(0xDFFF));
  expectRefusedAt(L"<a>" + lines + L"12" + bad + L"</a>", 150001, 3,
                  "not well-formed (invalid token)");
}

TEST(Parser, KeepsDocumentsApart) {
  const test::DocumentPtr first = parse(std::wstring(L"<a>1</a>"));
  const test::DocumentPtr second = parse(std::wstring(L"<a>2</a>"));
  first->GetRoot().AddText(L"x");
  EXPECT_EQ(second->GetRoot().GetValue(), L"2");
  EXPECT_EQ(first->GetRoot().GetValue(), L"1x");
}

TEST(Parser, SurvivesARefusedDocument) {
  Parser parser;
  const std::wstring bad = L"<a>";
  const std::wstring good = L"<a/>";
  EXPECT_THROW(parser.Parse(bad.data(), bad.size()), ParsingException);
  const test::DocumentPtr document(parser.Parse(good.data(), good.size()));
  EXPECT_NE(document, nullptr);
}

// Entities that name a file must not make the parser open it. If the parser opened files, it would
// open a file in the working directory.
TEST(Parser, NeverReadsAnotherFile) {
  const test::TempDir directory;
  test::writeFile(directory.file("secret"), "opened");
  const std::string path = directory.file("secret");
  for (const std::string& xml : {
           "<!DOCTYPE a [<!ENTITY x SYSTEM \"file://" + path + "\">]><a>&x;</a>",
           "<!DOCTYPE a [<!ENTITY x SYSTEM \"" + path + "\">]><a>&x;</a>",
           "<!DOCTYPE a SYSTEM \"" + path + "\"><a/>",
           "<!DOCTYPE a [<!ENTITY % p SYSTEM \"" + path + "\"> %p;]><a/>",
       }) {
    try {
      parse(xml);
      ADD_FAILURE() << xml;
    } catch (const ParsingException& e) {
      EXPECT_EQ(e.GetReason(), "a document type declaration is not allowed") << xml;
    }
  }
  const test::DocumentPtr document =
      parse("<?xml-stylesheet href=\"file://" + path +
            "\"?><a xmlns:xi=\"http://www.w3.org/2001/XInclude\"><xi:include href=\"" + path +
            "\"/></a>");
  ASSERT_NE(document, nullptr);
  EXPECT_EQ(document->GenerateXML(false).find(L"opened"), std::wstring::npos);
}

}  // namespace
