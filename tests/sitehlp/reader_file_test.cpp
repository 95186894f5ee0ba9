#include <gmock/gmock.h>

#include <cstdio>
#include <filesystem>
#include <string>

#include "tests/sitehlp/document_bytes.h"
#include "tests/sitehlp/sites_helper_fixture.h"

// Which file is read, and the results for unusable documents.
namespace {

using sitehlp::tag_Site;
using test::Probe;
using testing::ElementsAre;
using testing::IsEmpty;

const std::string c_oneSite = test::documentWithSites(R"(<HttpSite Name="one"/>)");

class ReaderFile : public test::SitesHelperTest {
 protected:
  // Reads a file with these bytes and expects a failure that leaves the list unchanged.
  void expectUntouched(const std::wstring& file, int code) {
    for (const bool useLock : {true, false}) {
      tag_Site* list = test::untouched();
      EXPECT_EQ(helper.ReadSiteList(file, &list, useLock), code);
      EXPECT_EQ(list, test::untouched());
    }
    EXPECT_THAT(messages(), IsEmpty());
  }
  // Does the same, but expects a null list.
  void expectNull(const std::string& bytes, int code) {
    const std::wstring file = store(bytes);
    tag_Site* list = test::untouched();
    EXPECT_EQ(helper.ReadSiteList(file, &list, true), code) << bytes.substr(0, 200);
    EXPECT_EQ(list, nullptr) << bytes.substr(0, 200);
    EXPECT_THAT(messages(), IsEmpty());
  }
};

// --- The path
// -------------------------------------------------------------------------------------

// Shows: ReadSiteList=-2
TEST_F(ReaderFile, WithoutAnyPathIsRefused) { expectUntouched(L"", -2); }

TEST_F(ReaderFile, WithoutAnyPathForgetsTheCurrentFile) {
  helper.m_strCurrentFile = L"earlier";
  tag_Site* list = nullptr;
  EXPECT_EQ(helper.ReadSiteList(L"", &list, true), -2);
  EXPECT_EQ(helper.m_strCurrentFile, L"");
}

// Shows: ReadSiteList=0
TEST_F(ReaderFile, EmptyPathReadsTheOwnFile) {
  Probe own(store(c_oneSite));
  tag_Site* list = nullptr;
  EXPECT_EQ(own.ReadSiteList(L"", &list, true), 0);
  const test::ListPtr owner(list);
  ASSERT_EQ(test::lengthOf(list), 1);
  EXPECT_STREQ(list->http.szName, L"one");
  EXPECT_EQ(own.m_strCurrentFile, own.m_strSiteListFile);
}

TEST_F(ReaderFile, NamedPathGoesBeforeTheOwnFile) {
  Probe own(store(test::documentWithSites(""), "own.xml"));
  const std::wstring named = store(c_oneSite, "named.xml");
  tag_Site* list = nullptr;
  EXPECT_EQ(own.ReadSiteList(named, &list, true), 0);
  const test::ListPtr owner(list);
  EXPECT_EQ(test::lengthOf(list), 1);
  EXPECT_EQ(own.m_strCurrentFile, named);
  EXPECT_EQ(own.m_strSiteListFile, path("own.xml"));
}

TEST_F(ReaderFile, PathMayHoldEveryScript) {
  const Read result = readPath(store(c_oneSite, "\u65E5\u672C/\U0001F600 \u00FC.xml"));
  EXPECT_EQ(result.code, 0);
  EXPECT_EQ(test::lengthOf(result.list.get()), 1);
}

// Shows: ReadSiteList=-4
TEST_F(ReaderFile, MissingFileIsToldApart) {
  expectUntouched(path("missing.xml"), -4);
  expectUntouched(path("no/such/directory/list.xml"), -4);
  EXPECT_EQ(helper.m_strCurrentFile, path("no/such/directory/list.xml"));
}

TEST_F(ReaderFile, LinkToNowhereCountsAsMissing) {
  std::filesystem::create_symlink("nowhere", test::narrow(path("link.xml")));
  expectUntouched(path("link.xml"), -4);
}

TEST_F(ReaderFile, LinkToAListIsRead) {
  store(c_oneSite, "target.xml");
  std::filesystem::create_symlink("target.xml", test::narrow(path("link.xml")));
  EXPECT_EQ(readPath(path("link.xml")).code, 0);
}

// Shows: ReadSiteList=-10
TEST_F(ReaderFile, DirectoryCannotBeRead) {
  std::filesystem::create_directory(test::narrow(path("directory.xml")));
  expectUntouched(path("directory.xml"), -10);
}

TEST_F(ReaderFile, OpensItsScopeOnEveryWay) {
  agent.clearLog();
  tag_Site* list = nullptr;
  helper.ReadSiteList(L"", &list, true);
  helper.ReadSiteList(path("missing.xml"), &list, true);
  EXPECT_THAT(agent.log(),
              ElementsAre(detail(L"Enter: Reading Sitelist"), detail(L"Leave: Reading Sitelist"),
                          detail(L"Enter: Reading Sitelist"), detail(L"Leave: Reading Sitelist")));
}

TEST_F(ReaderFile, OpensOneScopeForEachSite) {
  const std::wstring file = store(test::documentWithSites("<HttpSite/><FTPSite/>"));
  agent.clearLog();
  const Read result = readPath(file);
  EXPECT_THAT(agent.log(), ElementsAre(detail(L"Enter: Reading Sitelist"),
                                       detail(L"Enter: Reading site from SiteList"),
                                       detail(L"Leave: Reading site from SiteList"),
                                       detail(L"Enter: Reading site from SiteList"),
                                       detail(L"Leave: Reading site from SiteList"),
                                       detail(L"Leave: Reading Sitelist")));
}

TEST_F(ReaderFile, WritesNothing) {
  const std::wstring file = store(c_oneSite);
  const std::string before = test::readFile(test::narrow(file));
  readPath(file);
  EXPECT_EQ(test::readFile(test::narrow(file)), before);
}

// --- Encodings
// ------------------------------------------------------------------------------------

// Shows: read-encodings
TEST_F(ReaderFile, EveryEncodingIsRecognised) {
  const std::wstring name = L"Z\u00FCrich \u65E5\u672C\u8A9E \u0645\u0631 \U0001F600";
  for (const test::Encoding& encoding : test::c_encodings) {
    for (const bool mark : {false, true}) {
      for (const bool declared : {false, true}) {
        const std::wstring declaration =
            L"<?xml version=\"1.0\" encoding=\"" + std::wstring(encoding.name) + L"\"?>\n";
        const Read result = read(test::encode(
            (declared ? declaration : std::wstring()) +
                L"<ns:SiteLists xmlns:ns=\"wxSiteList\"><SiteList><HttpSite Name=\"" + name +
                L"\"><UserName>" + name + L"</UserName></HttpSite></SiteList></ns:SiteLists>",
            encoding, mark));
        const std::string where = test::narrow(encoding.name) + (encoding.bigEndian ? "BE" : "LE") +
                                  (mark ? " mark" : "") + (declared ? " declared" : "");
        EXPECT_EQ(result.code, 0) << where;
        ASSERT_EQ(test::lengthOf(result.list.get()), 1) << where;
        EXPECT_EQ(std::wstring(result.list->http.szName), name) << where;
        EXPECT_EQ(std::wstring(result.list->http.szUserName), name) << where;
      }
    }
  }
}

// Shows: ReadSiteList=-10
TEST_F(ReaderFile, BytesThatAreNotValidInTheirEncodingCannotBeRead) {
  const std::string head = test::c_declaration + "<a b=\"";
  for (const char* bytes :
       {"\xFF", "\xE9t\xE9", "\xC0\x80", "\xED\xA0\x80", "\xF4\x90\x80\x80", "\xE6\x97", "\x80"}) {
    expectUntouched(store(head + bytes + "\"/>"), -10);
  }
}

TEST_F(ReaderFile, WideBytesThatAreNotValidCannotBeRead) {
  const test::Encoding& utf16 = test::c_encodings[1];
  const std::string text = test::encode(L"<a b=\"x\"/>", utf16, true);
  std::string lonelySurrogate = text;
  lonelySurrogate[14] = '\x00';
  lonelySurrogate[15] = '\xD8';
  expectUntouched(store(lonelySurrogate), -10);
  expectUntouched(store(text.substr(0, text.size() - 1)), -10);
  const test::Encoding& utf32 = test::c_encodings[3];
  std::string tooLarge = test::encode(L"<a b=\"x\"/>", utf32, true);
  tooLarge[7 * 4 + 2] = '\x11';
  expectUntouched(store(tooLarge), -10);
  expectUntouched(store(tooLarge.substr(0, tooLarge.size() - 2)), -10);
}

// --- Broken documents
// -----------------------------------------------------------------------------

TEST_F(ReaderFile, TextThatIsNotXmlHasNoList) {
  expectNull("this is not XML", -5);
  expectNull("{\"SiteList\": []}", -5);
  expectNull("invalid", -5);
}

TEST_F(ReaderFile, EmptyFileHasNoList) {
  expectNull("", -5);
  expectNull(" \r\n\t ", -5);
  expectNull("\xEF\xBB\xBF", -5);
}

// Shows: ReadSiteList=-5
TEST_F(ReaderFile, IllFormedDocumentsHaveNoList) {
  for (const char* bytes : {"<",
                            "<a",
                            "<a>",
                            "</a>",
                            "<a></b>",
                            "<a/><b/>",
                            "<a/>text",
                            "<a b/>",
                            "<a b=c/>",
                            "<a b=\"1\" b=\"2\"/>",
                            "<a>&nbsp;</a>",
                            "<a>&</a>",
                            "<a b=\"<\"/>",
                            "<a>]]></a>",
                            "<a><!-- -- --></a>",
                            "<?xml version=\"1.0\"?>",
                            "<!-- only -->",
                            "<a>\x01</a>",
                            "< a/>",
                            "<1/>",
                            "<a>&#0;</a>",
                            "<a>&#xD800;</a>",
                            "<a><![CDATA[</a>"}) {
    expectNull(bytes, -5);
  }
}

TEST_F(ReaderFile, EveryTruncationHasNoList) {
  const std::string whole = test::documentWithSites(
      R"(<HttpSite Name="one"><UserName>u</UserName></HttpSite><!-- c --><![CDATA[x]]>)");
  ASSERT_EQ(read(whole).code, 0);
  for (std::size_t length = 0; length < whole.size(); ++length) {
    expectNull(whole.substr(0, length), -5);
  }
}

TEST_F(ReaderFile, FaultBehindTheSitesHasNoList) {
  expectNull(test::documentWithSites(R"(<HttpSite Name="one"/>)") + "<again/>", -5);
  expectNull(test::documentWithRoot("<SiteList><HttpSite/></SiteList><open>"), -5);
}

// Shows: read-doctype, ReadSiteList=-5
TEST_F(ReaderFile, DocumentTypeIsRefused) {
  expectNull("<!DOCTYPE a><a/>", -5);
  expectNull("<?xml version=\"1.0\"?><!DOCTYPE a [<!ENTITY e \"x\">]><a>&e;</a>", -5);
  expectNull("<!DOCTYPE a SYSTEM \"file:///etc/passwd\"><a><SiteList/></a>", -5);
}

TEST_F(ReaderFile, ZeroCharactersAreRefused) {
  std::string bytes = c_oneSite;
  bytes.insert(bytes.find("one"), 1, '\0');
  expectNull(bytes, -5);
  expectNull(c_oneSite + std::string(1, '\0'), -5);
}

TEST_F(ReaderFile, IllFormedDocumentLoadsNoPolicies) {
  expectNull(test::documentWithRoot(R"(<Policies><Setting name="a">1</Setting></Policies><open>)"),
             -5);
  EXPECT_THAT(helper.m_policySettings, IsEmpty());
}

// --- Limits
// ---------------------------------------------------------------------------------------

constexpr int c_limit = AdvXMLParser::ReadWriteException::LIMIT_EXCEEDED;

// Shows: ReadSiteList=-104, limit-read
TEST_F(ReaderFile, TooDeepADocumentGivesTheParsersCode) {
  std::string open;
  std::string close;
  for (int i = 0; i < 100000; ++i) {
    open += "<a>";
    close += "</a>";
  }
  expectNull(test::documentWithRoot(open + close + "<SiteList><HttpSite/></SiteList>"), c_limit);
}

// Shows: ReadSiteList=-104, limit-read
TEST_F(ReaderFile, TooManyAttributesGiveTheParsersCode) {
  std::string attributes;
  for (int i = 0; i < 20000; ++i) attributes += " a" + std::to_string(i) + "=\"\"";
  expectNull(test::documentWithSites("<HttpSite" + attributes + "/>"), c_limit);
}

// Shows: ReadSiteList=-104, limit-read
TEST_F(ReaderFile, TooLongATokenGivesTheParsersCode) {
  expectNull(test::documentWithSites("<HttpSite><UserName>" + std::string(20u << 20, 'x') +
                                     "</UserName></HttpSite>"),
             c_limit);
}

// Shows: ReadSiteList=-10, limit-read
TEST_F(ReaderFile, TooLargeAFileCannotBeRead) {
  const std::wstring file = store(c_oneSite);
  std::filesystem::resize_file(test::narrow(file), std::uintmax_t{1} << 30);
  expectUntouched(file, -10);
}

}  // namespace
