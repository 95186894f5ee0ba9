#include "host/xml/limits.h"

#include <gtest/gtest.h>

#include "tests/host_xml/documents.h"

namespace {

using namespace AdvXMLParser;
using test::parse;
using test::parseUtf8;
using test::repeated;

// Returns the place at which the limit was exceeded.
std::pair<unsigned long, unsigned long> overLimit(const std::string& xml) {
  try {
    parse(xml);
  } catch (const ReadWriteException& e) {
    EXPECT_EQ(e.GetErrorCode(), ReadWriteException::LIMIT_EXCEEDED);
    EXPECT_EQ(e.GetSystemError(), 0);
    return {e.GetLine(), e.GetColumn()};
  }
  ADD_FAILURE() << "accepted";
  return {};
}

using Place = std::pair<unsigned long, unsigned long>;

std::string nested(std::size_t depth) { return repeated("<a>", depth) + repeated("</a>", depth); }

// Shows: limit-depth
TEST(DepthLimit, AllowsTheDeepestDocument) {
  const test::DocumentPtr document = parse(nested(host::c_maxDepth));
  ASSERT_NE(document, nullptr);
  std::size_t depth = 0;
  for (Element e = document->GetRoot(); !e.IsNull(); e = e.GetElement(L"a")) ++depth;
  EXPECT_EQ(depth, host::c_maxDepth);
}

// Shows: limit-depth
TEST(DepthLimit, RefusesOneElementMore) {
  EXPECT_EQ(overLimit(nested(host::c_maxDepth + 1)), Place(1, host::c_maxDepth * 3 + 1));
}

TEST(DepthLimit, CountsDepthAndNotElements) {
  EXPECT_NE(parse("<r>" + repeated("<a><b/></a>", host::c_maxDepth * 2) + "</r>"), nullptr);
}

std::string withAttributes(std::size_t count) {
  std::string xml = "<a>\n<b";
  for (std::size_t i = 0; i < count; ++i) xml += " n" + std::to_string(i) + "='v'";
  return xml + "/></a>";
}

// Shows: limit-attributes
TEST(AttributeLimit, AllowsTheMostAttributes) {
  const test::DocumentPtr document = parse(withAttributes(host::c_maxAttributes));
  ASSERT_NE(document, nullptr);
  std::size_t count = 0;
  for (const Attribute attribute : document->GetRoot().GetElement(L"b").Attributes()) {
    count += !attribute.GetValue().empty();
  }
  EXPECT_EQ(count, host::c_maxAttributes);
}

// Shows: limit-attributes
TEST(AttributeLimit, RefusesOneAttributeMore) {
  EXPECT_EQ(overLimit(withAttributes(host::c_maxAttributes + 1)), Place(2, 1));
}

TEST(AttributeLimit, CountsTheAttributesOfOneElement) {
  const std::string child = withAttributes(host::c_maxAttributes);
  EXPECT_NE(parse("<r>" + child + child + "</r>"), nullptr);
}

struct Token {
  const char* before;
  const char* after;
  std::size_t markup;  // of the token itself
};

class TokenLimit : public testing::TestWithParam<Token> {
 protected:
  std::string document(std::size_t length) const {
    const Token& token = GetParam();
    return std::string("<r>\n") + token.before + std::string(length - token.markup, 'x') +
           token.after + "</r>";
  }
};

// Shows: limit-token
TEST_P(TokenLimit, AllowsTheLongestToken) {
  const test::DocumentPtr document = parse(this->document(host::c_maxTokenBytes));
  ASSERT_NE(document, nullptr);
  EXPECT_GE(document->GenerateXML(false).size(), host::c_maxTokenBytes);
}

// Shows: limit-token
TEST_P(TokenLimit, RefusesOneByteMore) {
  EXPECT_EQ(overLimit(document(host::c_maxTokenBytes + 1)).first, 2u);
}

INSTANTIATE_TEST_SUITE_P(Kinds, TokenLimit,
                         testing::Values(Token{"<a b='", "'/>", 9}, Token{"<", "/>", 3},
                                         Token{"<a ", "=''/>", 8}, Token{"<!--", "-->", 7},
                                         Token{"<?p ", "?>", 6}, Token{"<a>", "</a>", 0},
                                         Token{"<a><![CDATA[", "]]></a>", 0}),
                         [](const testing::TestParamInfo<Token>& param) {
                           return std::to_string(param.index);
                         });

TEST(TokenLimit, CountsBytesAndNotCharacters) {
  const std::string euros = repeated("\xE2\x82\xAC", host::c_maxTokenBytes / 3);
  EXPECT_NE(parse("<r>" + euros + "</r>"), nullptr);
  overLimit("<r>" + euros + "\xE2\x82\xAC</r>");
}

TEST(TokenLimit, CountsARunOfTextWholeWhateverItIsMadeOf) {
  const std::string lines = repeated("&amp;\n", host::c_maxTokenBytes / 2);
  EXPECT_NE(parse("<r>" + lines + "</r>"), nullptr);
  overLimit("<r>" + lines + "x</r>");
}

TEST(TokenLimit, CountsEachRunOfTextForItself) {
  const std::string text(host::c_maxTokenBytes - 1, 'x');
  EXPECT_NE(parse("<r>" + text + "<a/>" + text + "<![CDATA[" + text + "]]>" + text + "</r>"),
            nullptr);
}

TEST(TokenLimit, HoldsAroundTheRootToo) {
  const std::string space(host::c_maxTokenBytes - 1, ' ');
  EXPECT_NE(parse(space + "<r/>" + space), nullptr);
  overLimit("<r/>" + space + "  ");
}

std::string withChildren(std::size_t count) { return "<r>\n" + repeated("<a/>", count) + "</r>"; }

// Shows: limit-children
TEST(ChildLimit, AllowsTheMostChildElements) {
  const test::DocumentPtr document = parse(withChildren(host::c_maxChildren));
  ASSERT_NE(document, nullptr);
  std::size_t count = 0;
  for (const Element child : document->GetRoot().Elements()) {
    EXPECT_FALSE(child.IsNull());
    ++count;
  }
  EXPECT_EQ(count, host::c_maxChildren);
}

// Shows: limit-children
TEST(ChildLimit, RefusesOneChildElementMore) {
  EXPECT_EQ(overLimit(withChildren(host::c_maxChildren + 1)),
            Place(2, host::c_maxChildren * 4 + 1));
}

TEST(ChildLimit, CountsTheChildrenOfOneElement) {
  const std::string half = withChildren(host::c_maxChildren / 2 + 1);
  EXPECT_NE(parse("<r>" + half + half + "</r>"), nullptr);
}

// Returns comments with this total number of bytes. Each is within the limit.
std::string comments(std::size_t size) {
  std::string text;
  while (text.size() < size) {
    const std::size_t left = size - text.size();
    const std::size_t length = left < 1000000 + 7 ? left : 1000000;
    text += "<!--" + std::string(length - 7, 'c') + "-->";
  }
  return text;
}

// expat gets a long document in pieces of 4 MiB. A piece may end anywhere in the markup.
TEST(LongDocument, IsReadAsAShortOneWhereverItIsDivided) {
  const std::string unit =
      "<a b='\xE2\x82\xAC&amp;'>text \xF0\x9F\x98\x80<!--c--><![CDATA[<]]>&#65;<?p i?></a>\n";
  for (const std::size_t megabytes : {4, 8}) {
    for (std::size_t place = 0; place <= unit.size(); ++place) {
      const std::string units = repeated(unit, 3);
      const std::string filler = comments((megabytes << 20) - 3 - unit.size() - place);
      const test::DocumentPtr document = parseUtf8("<r>" + filler + units + "</r>");
      std::size_t seen = 0;
      for (const Element a : document->GetRoot().Elements()) {
        seen += a.GetValue() == L"text \x1F600<A" && a.GetAttribute(L"b").GetValue() == L"\x20AC&";
      }
      ASSERT_EQ(seen, 3u) << place;
      if (place % 10 != 0) continue;
      try {
        parseUtf8("<r>" + filler + units + "&x;</r>");
        FAIL() << "accepted";
      } catch (const ParsingException& e) {
        ASSERT_EQ(Place(e.GetLine(), e.GetColumn()), Place(4, 1)) << place;
      }
    }
  }
}

TEST(TokenLimit, RefusesATokenThatHasNoEndAndIsTooLong) {
  for (const std::string before : {"", "<r>", "<r>text\n", "<!--c-->\n"}) {
    for (const std::string begin : {"<a", "<a b='", "<!--", "<?p "}) {
      SCOPED_TRACE(before + begin);
      std::string token = begin;
      token.resize(host::c_maxTokenBytes, ' ');
      EXPECT_THROW(parse(before + token), ParsingException);
      overLimit(before + token + " ");
      overLimit(before + token + std::string(host::c_maxTokenBytes, ' '));
    }
  }
}

TEST(TokenLimit, IsLookedAtBeforeAllOfALongTokenHasBeen) {
  const std::string begin = "<r><a" + std::string(2 * host::c_maxTokenBytes, ' ');
  // If the syntax error is long after the place where the limit is exceeded, the limit is reported.
  // Soon after that place, the syntax error is reported.
  overLimit(begin + std::string(3 * host::c_maxTokenBytes, ' ') + "<");
  EXPECT_THROW(parse(begin + "<"), ParsingException);
}

// Returns a document of `size` bytes with comments of four-byte characters, so that it has few
// characters.
std::wstring documentOfBytes(std::size_t size) {
  const std::size_t commentBytes = 7 + 4 * 200000;
  const std::wstring comment = L"<!--" + std::wstring(200000, L'\x1F600') + L"-->";
  std::wstring text = L"<r>";
  std::size_t bytes = 7;
  for (; bytes + commentBytes <= size; bytes += commentBytes) text += comment;
  for (; bytes < size; ++bytes) text += L' ';
  return text + L"</r>";
}

// Shows: limit-bytes
TEST(DocumentLimit, AllowsTheLargestText) {
  const test::DocumentPtr document = parse(documentOfBytes(host::c_maxDocumentBytes));
  EXPECT_NE(document, nullptr);
}

// Shows: limit-bytes
TEST(DocumentLimit, RefusesOneByteMore) {
  const std::wstring text = documentOfBytes(host::c_maxDocumentBytes + 1);
  try {
    parse(text);
    ADD_FAILURE() << "accepted";
  } catch (const ReadWriteException& e) {
    EXPECT_EQ(e.GetErrorCode(), ReadWriteException::LIMIT_EXCEEDED);
    EXPECT_EQ(e.GetLine(), 0u);
    EXPECT_STREQ(e.what(), "document over the limit: number of bytes");
  }
}

}  // namespace
