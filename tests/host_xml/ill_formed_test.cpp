#include <gtest/gtest.h>

#include "tests/host_xml/documents.h"

// One-line texts that begin as markup and are not well formed.
namespace {

using AdvXMLParser::ParsingException;

class IllFormed : public testing::TestWithParam<const char*> {};

TEST_P(IllFormed, IsRefused) {
  EXPECT_THROW(test::parse(std::string(GetParam())), ParsingException);
}

TEST_P(IllFormed, IsRefusedAlikeEveryTime) {
  ASSERT_TRUE(test::startRemembering());
  std::vector<std::string> refusals;
  for (int i = 0; i < 3; ++i) {
    try {
      test::parseUtf8(GetParam());
    } catch (const ParsingException& e) {
      refusals.push_back(e.what());
    }
  }
  EXPECT_EQ(refusals, std::vector<std::string>(3, refusals.at(0)));
}

INSTANTIATE_TEST_SUITE_P(
    Elements, IllFormed,
    testing::Values("<", "<a", "<a ", "<a/", "<a>", "<a><b>", "<a></b>", "<a></A>",
                    "<a><b></a></b>", "</a>", "<a></a", "<a></a b='c'>", "<a></a/>", "< a/>",
                    "<a/ >", "<a></ a>", "<1a/>", "<-a/>", "<.a/>", "<a$/>", "<>", "</>",
                    "<a/><b/>", "<a/><a/>", "<a/>text", "<a/></a>", "<a/>&amp;", "<a/><![CDATA[]]>",
                    "<a/>&#32;", "<![CDATA[]]><a/>", "<!-- only a comment -->", "<?p only?>",
                    "<a<b/>", "<a><b/</a>", "<a\x01/>", "<\xC3\x97/>"));

INSTANTIATE_TEST_SUITE_P(Attributes, IllFormed,
                         testing::Values("<a b/>", "<a b=/>", "<a b=c/>", "<a b=\"c/>",
                                         "<a b='c\"/>", "<a b=\"c/><d>", "<a b=\"<\"/>",
                                         "<a b=\"&\"/>", "<a b=\"&x;\"/>", "<a b=\"&#0;\"/>",
                                         "<a b=\"1\" b=\"2\"/>", "<a b=\"1\" b=\"1\"/>",
                                         "<a b=\"1\"c=\"2\"/>", "<a =\"b\"/>", "<a 1=\"b\"/>",
                                         "<a b:=c/>", "<a b=\"c\" d/>", "<a \"b\"/>",
                                         "<a b==\"c\"/>", "<a></a b=\"c\">", "<a b=\"\x02\"/>"));

INSTANTIATE_TEST_SUITE_P(
    Text, IllFormed,
    testing::Values("<a>&</a>", "<a>& </a>", "<a>&lt</a>", "<a>&x;</a>", "<a>&nbsp;</a>",
                    "<a>&;</a>", "<a>&#;</a>", "<a>&#x;</a>", "<a>&#xG;</a>", "<a>&#12a;</a>",
                    "<a>&#0;</a>", "<a>&#x0;</a>", "<a>&#8;</a>", "<a>&#x1F;</a>",
                    "<a>&#xD800;</a>", "<a>&#xDFFF;</a>", "<a>&#xFFFE;</a>", "<a>&#xFFFF;</a>",
                    "<a>&#x110000;</a>", "<a>&#99999999999;</a>", "<a>&#X41;</a>", "<a>]]></a>",
                    "<a>\x01</a>", "<a>\x08</a>", "<a>\x0B</a>", "<a>\x0C</a>", "<a>\x1F</a>",
                    "<a>\xEF\xBF\xBE</a>", "<a>\xEF\xBF\xBF</a>", "<a><</a>", "<a>1 < 2</a>",
                    "<a>text"));

INSTANTIATE_TEST_SUITE_P(Sections, IllFormed,
                         testing::Values("<a><![CDATA[</a>", "<a><![CDATA[x]]</a>",
                                         "<a><![CDATA[x]]", "<a><![CDATA[", "<a><![CDATA x]]></a>",
                                         "<a><![cdata[x]]></a>", "<a><! [CDATA[x]]></a>",
                                         "<a><![CDATA[\x01]]></a>", "<a><![CDATA[x]]>]]></a>",
                                         "<a><!--</a>", "<a><!-- -- --></a>", "<a><!-- ---></a>",
                                         "<a><!-></a>", "<a><!--></a>", "<a><!--->", "<!--",
                                         "<!-- <a/>", "<a/><!--", "<!-a-><a/>",
                                         "<a><!--\x01--></a>", "<a><?", "<a><?p", "<a><?p d</a>",
                                         "<a><?p d>", "<a><? p?></a>", "<a><?1?></a>",
                                         "<a><?xml?></a>", "<a><?XML d?></a>", "<a><?xMl d?></a>"));

INSTANTIATE_TEST_SUITE_P(
    Declarations, IllFormed,
    testing::Values(
        "<?xml?><a/>", "<?xml version?><a/>", "<?xml version=1.0?><a/>",
        "<?xml version=\"1.0\"><a/>", "<?xml version=\"1.0\"?>", "<?xml encoding=\"UTF-8\"?><a/>",
        "<?xml encoding=\"UTF-8\" version=\"1.0\"?><a/>",
        "<?xml version=\"1.0\" encoding=\"\"?><a/>", "<?xml version=\"1.0\" encoding=\"a b\"?><a/>",
        "<?xml version=\"1.0\" standalone=\"maybe\"?><a/>",
        "<?xml version=\"1.0\" standalone=\"YES\"?><a/>", "<?xml version=\"1.0\" other=\"x\"?><a/>",
        " <?xml version=\"1.0\"?><a/>", "\n<?xml version=\"1.0\"?><a/>",
        "<!-- --><?xml version=\"1.0\"?><a/>", "<?xml version=\"1.0\"?><?xml version=\"1.0\"?><a/>",
        "<a/><?xml version=\"1.0\"?>", "<?XML version=\"1.0\"?><a/>"));

INSTANTIATE_TEST_SUITE_P(DocumentTypes, IllFormed,
                         testing::Values("<!DOCTYPE a><a/>", "<!DOCTYPE a []><a/>",
                                         "<!DOCTYPE a SYSTEM \"a.dtd\"><a/>",
                                         "<!DOCTYPE a PUBLIC \"p\" \"a.dtd\"><a/>",
                                         "<?xml version=\"1.0\"?>\n<!DOCTYPE a>\n<a/>",
                                         "<!DOCTYPE a [<!ELEMENT a ANY>]><a/>",
                                         "<!DOCTYPE a [<!ENTITY x \"y\">]><a>&x;</a>",
                                         "<!DOCTYPE a [<!ENTITY % p SYSTEM \"p\"> %p;]><a/>",
                                         "<!DOCTYPE", "<!DOCTYPE a", "<!doctype a><a/>",
                                         "<a><!DOCTYPE a></a>", "<a/><!DOCTYPE a>",
                                         "<!ENTITY x \"y\"><a/>", "<!ELEMENT a ANY><a/>"));

}  // namespace
