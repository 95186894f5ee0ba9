#include <gtest/gtest.h>

#include "tests/host_xml/documents.h"

// One-line well-formed documents and the text that writing them gives.
namespace {

struct Case {
  const char* xml;
  const char* written;  // null: exactly as it was read
};

constexpr Case c_cases[] = {
    // elements
    {"<a/>", nullptr},
    {"<a></a>", "<a/>"},
    {"<a />", "<a/>"},
    {"<a\n/>", "<a/>"},
    {"<a></a >", "<a/>"},
    {"<a><b/></a>", nullptr},
    {"<a><b/><b/><c/></a>", nullptr},
    {"<a><a><a/></a></a>", nullptr},
    {"<_/>", nullptr},
    {"<:/>", nullptr},
    {"<a-b.c_d1/>", nullptr},
    {"<ns:SiteLists xmlns:ns=\"wxSiteList\"/>", nullptr},
    {"<undeclared:a/>", nullptr},
    {"<a:b:c/>", nullptr},
    {"<\xC3\xA9l\xC3\xA9ment/>", nullptr},
    {"<xmlish/>", nullptr},
    // attributes
    {"<a b=\"c\"/>", nullptr},
    {"<a b='c'/>", "<a b=\"c\"/>"},
    {"<a b=\"\"/>", nullptr},
    {"<a b = \"c\" />", "<a b=\"c\"/>"},
    {"<a z=\"1\" y=\"2\" x=\"3\"/>", nullptr},
    {"<a b='\"'/>", "<a b=\"&quot;\"/>"},
    {"<a b=\"'\"/>", nullptr},
    {"<a b=\">\"/>", nullptr},
    {"<a b=\"&lt;&amp;&gt;&apos;&quot;\"/>", "<a b=\"&lt;&amp;>'&quot;\"/>"},
    {"<a b=\"1\n2\t3\r\n4\"/>", "<a b=\"1 2 3 4\"/>"},
    {"<a b=\"1&#10;2&#9;3&#13;4\"/>", "<a b=\"1&#10;2&#09;3&#13;4\"/>"},
    {"<a b=\"  c  \"/>", nullptr},
    {"<a xml:space=\"preserve\"/>", nullptr},
    {"<a B=\"1\" b=\"2\"/>", nullptr},
    // text
    {"<a>text</a>", nullptr},
    {"<a> text </a>", nullptr},
    {"<a> </a>", nullptr},
    {"<a>\n  <b/>\n</a>", nullptr},
    {"<a>one<b/>two<c/>three</a>", nullptr},
    {"<a>1\r\n2\r3\n4</a>", "<a>1\n2\n3\n4</a>"},
    {"<a>1&#13;&#10;2</a>", "<a>1&#13;\n2</a>"},
    {"<a>&lt;b&gt; &amp;&quot;&apos;</a>", "<a>&lt;b&gt; &amp;\"'</a>"},
    {"<a>&#65;&#x42;&#x1F600;</a>", "<a>AB\xF0\x9F\x98\x80</a>"},
    {"<a>]] ></a>", "<a>]] &gt;</a>"},
    {"<a>]]&gt;</a>", nullptr},
    {"<a>\"quoted' > </a>", "<a>\"quoted' &gt; </a>"},
    {"<a>\xE2\x82\xAC \xF4\x8F\xBF\xBD</a>", nullptr},
    {"<a>\x7F\xC2\x80\xC2\x9F</a>", nullptr},
    {"<a>&#x10FFFF;</a>", "<a>\xF4\x8F\xBF\xBF</a>"},
    {"<a>\xEF\xBB\xBF</a>", nullptr},
    // CDATA
    {"<a><![CDATA[x]]></a>", nullptr},
    {"<a><![CDATA[]]></a>", nullptr},
    {"<a><![CDATA[<b>&amp;</b>]]></a>", nullptr},
    {"<a><![CDATA[]]]]></a>", nullptr},
    {"<a><![CDATA[]]]]><![CDATA[>]]></a>", nullptr},
    {"<a>one<![CDATA[two]]>three</a>", nullptr},
    {"<a><![CDATA[1\r\n2\r3]]></a>", "<a><![CDATA[1\n2\n3]]></a>"},
    {"<a> <![CDATA[ ]]> </a>", nullptr},
    // comments
    {"<!--c--><a/>", nullptr},
    {"<a/><!--c-->", nullptr},
    {"<a><!--c--></a>", nullptr},
    {"<a><!----></a>", nullptr},
    {"<a><!-- <b> & ]]> - -></b> --></a>", nullptr},
    {"<a>1<!-- c -->2</a>", nullptr},
    {"<a><!--1\r\n2--></a>", "<a><!--1\n2--></a>"},
    // processing instructions
    {"<?p?><a/>", nullptr},
    {"<?p d ?><a/>", nullptr},
    {"<a><?p  d?></a>", "<a><?p d?></a>"},
    {"<a/><?p d=\"<&>\"?>", nullptr},
    {"<?xml-stylesheet href=\"s\"?><a/>", nullptr},
    // around the root
    {"\n<a/>", nullptr},
    {"<a/>\n", nullptr},
    {" \t<!--1-->\n\n<a/>\n<!--2-->\n", nullptr},
};

class WellFormed : public testing::TestWithParam<Case> {};

TEST_P(WellFormed, IsReadAndWrittenAgain) {
  const Case& c = GetParam();
  const test::DocumentPtr document = test::parse(std::string(c.xml));
  ASSERT_NE(document, nullptr);
  EXPECT_FALSE(document->GetRoot().IsNull());
  EXPECT_EQ(test::written(*document), c.written ? c.written : c.xml);
}

TEST_P(WellFormed, IsReadAlikeEveryTime) {
  ASSERT_TRUE(test::startRemembering());
  const test::DocumentPtr first = test::parseUtf8(GetParam().xml);
  const test::DocumentPtr second = test::parseUtf8(GetParam().xml);
  EXPECT_EQ(second->GenerateXML(false), first->GenerateXML(false));
}

// What was written is read as the same document.
TEST_P(WellFormed, IsWrittenInAStableForm) {
  const test::DocumentPtr document = test::parse(std::string(GetParam().xml));
  ASSERT_NE(document, nullptr);
  const test::DocumentPtr again = test::parse(document->GenerateXML(false));
  ASSERT_NE(again, nullptr);
  EXPECT_EQ(again->GenerateXML(false), document->GenerateXML(false));
}

INSTANTIATE_TEST_SUITE_P(Parser, WellFormed, testing::ValuesIn(c_cases),
                         [](const testing::TestParamInfo<Case>& param) {
                           return std::to_string(param.index);
                         });

struct Declaration {
  const char* xml;
  const char* written;
};

constexpr Declaration c_declarations[] = {
    {"<?xml version=\"1.0\"?><a/>", "<?xml version=\"1.0\" encoding=\"UTF-8\"?><a/>"},
    {"<?xml version='1.0' encoding='utf-8'?><a/>",
     "<?xml version=\"1.0\" encoding=\"UTF-8\"?><a/>"},
    {"<?xml version=\"1.0\" encoding=\"UTF-16\"?><a/>",
     "<?xml version=\"1.0\" encoding=\"UTF-8\"?><a/>"},
    {"<?xml version=\"1.0\" encoding=\"ISO-8859-1\"?><a>\xC3\xA9</a>",
     "<?xml version=\"1.0\" encoding=\"UTF-8\"?><a>\xC3\xA9</a>"},
    {"<?xml version=\"1.0\" encoding=\"no-such-encoding\"?><a/>",
     "<?xml version=\"1.0\" encoding=\"UTF-8\"?><a/>"},
    {"<?xml version=\"1.0\" standalone=\"yes\"?><a/>",
     "<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"yes\"?><a/>"},
    {"<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"no\"?>\n<a/>\n",
     "<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"no\"?>\n<a/>\n"},
};

class XmlDeclaration : public testing::TestWithParam<Declaration> {};

// The text is already wide, so the declared encoding is ignored.
TEST_P(XmlDeclaration, IsReplacedByTheOneThatIsTrue) {
  const test::DocumentPtr document = test::parse(std::string(GetParam().xml));
  ASSERT_NE(document, nullptr);
  EXPECT_EQ(test::narrow(document->GenerateXML(false)), GetParam().written);
}

INSTANTIATE_TEST_SUITE_P(Parser, XmlDeclaration, testing::ValuesIn(c_declarations),
                         [](const testing::TestParamInfo<Declaration>& param) {
                           return std::to_string(param.index);
                         });

}  // namespace
