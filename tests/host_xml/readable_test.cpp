#include "host/xml/readable.h"

#include <gtest/gtest.h>

#include "host/xml/limits.h"
#include "tests/host_xml/documents.h"

// The length of tokens, judged by the distances between the characters "<".
namespace {

using host::c_maxTokenBytes;
using host::hasOnlyShortTokens;
using test::repeated;

constexpr const char* c_head = "<?xml version=\"1.0\"?>";

// More than a token may have, in short tokens.
std::string filler() { return repeated("<b c=\"d\">e</b>", c_maxTokenBytes / 10); }

std::string listWith(const std::string& content) {
  return c_head + ("<a>" + filler()) + content + "</a>";
}

TEST(ShortTokens, AreAllOfAShortText) {
  EXPECT_TRUE(hasOnlyShortTokens("<a/>"));
  EXPECT_TRUE(hasOnlyShortTokens("<a><!--" + std::string(1000, '<') + "--></a>"));
}

TEST(ShortTokens, AreThoseOfALongTextWithShortTagsAndTexts) {
  ASSERT_GT(filler().size(), c_maxTokenBytes);
  EXPECT_TRUE(hasOnlyShortTokens(listWith("")));
}

TEST(ShortTokens, EndAtTheLimitToTheByte) {
  const std::string tag = "<f>";
  const std::string atLimit = tag + std::string(c_maxTokenBytes - tag.size(), 'x') + "</f>";
  EXPECT_TRUE(hasOnlyShortTokens(listWith(atLimit)));
  EXPECT_FALSE(hasOnlyShortTokens(listWith("<f>x" + atLimit.substr(tag.size()))));
  const std::string attribute = "<f g=\"" + std::string(c_maxTokenBytes, 'x') + "\"/>";
  EXPECT_FALSE(hasOnlyShortTokens(listWith(attribute)));
  EXPECT_FALSE(hasOnlyShortTokens(c_head + std::string(c_maxTokenBytes, ' ') + "<a/>"));
}

TEST(ShortTokens, AreNotJudgedWhereATokenMayHaveTheCharacterInside) {
  const std::string many(c_maxTokenBytes + 1, '<');
  for (const std::string& token : {"<!--" + many + "-->", "<![CDATA[" + many + "]]>",
                                   "<?p " + many + "?>", std::string("<!---->")}) {
    EXPECT_FALSE(hasOnlyShortTokens(listWith(token))) << token.substr(0, 9);
  }
}

}  // namespace
