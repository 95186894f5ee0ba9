#include <gmock/gmock.h>

#include <cstdlib>
#include <ctime>
#include <set>
#include <string>

#include "tests/sitehlp/writer_fixture.h"

// The document around the sites.
namespace {

using test::Probe;
using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;

class WriterDocument : public test::WriterTest {
 protected:
  static std::wstring localTime() {
    const std::time_t now = std::time(nullptr);
    wchar_t text[260];
    std::wcsftime(text, 260, L"%Y%m%d%H%M%S", std::localtime(&now));
    return text;
  }
  // The value of an attribute of the written root.
  std::string rootAttribute(const std::string& name) const {
    const std::string text = outText();
    const std::string start = " " + name + "=\"";
    const std::size_t at = text.find(start);
    if (at == std::string::npos || at > text.find("<SiteList")) return "none";
    return text.substr(at + start.size(), text.find('"', at + start.size()) - at - start.size());
  }
};

// Shows: written-declaration, written-doctype, CreateSiteList=0
TEST_F(WriterDocument, OfAnEmptyListIsWhole) {
  EXPECT_EQ(write(nullptr), 0);
  EXPECT_EQ(written(), emptyList());
  EXPECT_THAT(outText(), StartsWith(test::c_declaration + "<ns:SiteLists "));
}

// Shows: written-encoding
TEST_F(WriterDocument, HasNoByteOrderMarkAndNoWhiteSpaceBetweenElements) {
  write(test::chain(
      {test::newSite(sitehlp::SITE_KIND_HTTP), test::newSite(sitehlp::SITE_KIND_PROXY)}));
  EXPECT_THAT(outText(), Not(HasSubstr("> <")));
  EXPECT_THAT(outText(), Not(HasSubstr("\n")));
  EXPECT_THAT(outText(), Not(HasSubstr("\t")));
  EXPECT_THAT(outText(), StartsWith("<?xml"));
  EXPECT_THAT(outText(), EndsWith("</ns:SiteLists>"));
}

// Shows: written-encoding
TEST_F(WriterDocument, IsUtf8) {
  helper.CreateSiteList(nullptr, outPath(), L"\u00FC\u65E5\U0001F600", L"L", L"T", {});
  EXPECT_THAT(outText(), HasSubstr("GlobalVersion=\"\xC3\xBC\xE6\x97\xA5\xF0\x9F\x98\x80\""));
}

TEST_F(WriterDocument, EscapesWhatMarkupCannotHold) {
  const std::wstring text = L"a<b>&\"'c]]>";
  helper.m_policySettings[text] = text;
  ASSERT_EQ(helper.CreateSiteList(nullptr, outPath(), text, text, text, {text}), 0);
  Probe back(outPath());
  EXPECT_EQ(back.m_strGlobalVersion, text);
  EXPECT_EQ(back.m_strLocalVersion, text);
  EXPECT_EQ(back.m_strSiteListType, text);
  sitehlp::tag_Site* list = nullptr;
  EXPECT_EQ(back.ReadSiteList(L"", &list, true), 0);
  EXPECT_THAT(back.m_policySettings, ElementsAre(testing::Pair(text, text)));
}

TEST_F(WriterDocument, GoesToTheOwnFileWithoutAPath) {
  Probe own(path("own.xml"));
  EXPECT_EQ(own.CreateSiteList(nullptr, L"", L"G", L"L", L"T", {}), 0);
  EXPECT_EQ(comparable(test::readFile(test::narrow(path("own.xml")))), emptyList());
}

TEST_F(WriterDocument, GoesToTheNamedFileAlone) {
  Probe own(path("own.xml"));
  EXPECT_EQ(own.CreateSiteList(nullptr, outPath(), L"G", L"L", L"T", {}), 0);
  EXPECT_TRUE(test::exists(test::narrow(outPath())));
  EXPECT_FALSE(test::exists(test::narrow(path("own.xml"))));
}

TEST_F(WriterDocument, ReplacesTheOldFileWhole) {
  store(std::string(100000, 'x'), "out.xml");
  EXPECT_EQ(write(nullptr), 0);
  EXPECT_EQ(written(), emptyList());
}

// --- Certificates and policies
// --------------------------------------------------------------------

TEST_F(WriterDocument, HoldsTheCertificatesInTheirOrder) {
  EXPECT_EQ(write(nullptr, {L"second", L"first", L"", L"second"}), 0);
  EXPECT_THAT(written(), HasSubstr(R"(Type="T"><CaBundle><CaCertificate>second</CaCertificate>)"
                                   "<CaCertificate>first</CaCertificate><CaCertificate>"
                                   "</CaCertificate><CaCertificate>second</CaCertificate>"
                                   R"(</CaBundle><SiteList Default="1" Name="SomeGUID">)"));
}

TEST_F(WriterDocument, HoldsThePoliciesByName) {
  helper.m_policySettings = {{L"b", L"2"}, {L"a", L""}, {L"B", L"3"}, {L"", L"4"}};
  EXPECT_EQ(write(nullptr), 0);
  EXPECT_THAT(written(),
              HasSubstr(R"(Type="T"><Policies><Setting name="">4</Setting>)"
                        R"(<Setting name="B">3</Setting><Setting name="a"></Setting>)"
                        R"(<Setting name="b">2</Setting></Policies><SiteList Default="1")"));
  EXPECT_EQ(helper.m_policySettings.size(), 4u);
}

// Shows: grammar
TEST_F(WriterDocument, HoldsCertificatesBeforePoliciesBeforeSites) {
  helper.m_policySettings = {{L"a", L"1"}};
  EXPECT_EQ(write(nullptr, {L"c"}), 0);
  EXPECT_EQ(
      written(),
      test::c_declaration +
          R"(<ns:SiteLists xmlns:ns="wxSiteList" GlobalVersion="G" LocalVersion="L" Type="T">)"
          R"(<CaBundle><CaCertificate>c</CaCertificate></CaBundle>)"
          R"(<Policies><Setting name="a">1</Setting></Policies>)"
          R"(<SiteList Default="1" Name="SomeGUID"></SiteList></ns:SiteLists>)");
}

TEST_F(WriterDocument, NeverHoldsTheFipsMode) {
  Probe own(store(test::documentWithRoot("<SiteList/>", R"(FipsMode="1" GlobalVersion="7")")));
  EXPECT_EQ(own.CreateSiteList(nullptr, L"", L"", L"", L"", {}), 0);
  EXPECT_THAT(test::readFile(test::narrow(own.m_strSiteListFile)), Not(HasSubstr("FipsMode")));
}

// --- Versions and type
// ----------------------------------------------------------------------------

TEST_F(WriterDocument, ArgumentsGoBeforeWhatIsRemembered) {
  Probe own(
      store(test::documentWithRoot("", R"(GlobalVersion="rg" LocalVersion="rl" Type="Server")")));
  EXPECT_EQ(own.CreateSiteList(nullptr, outPath(), L"G", L"L", L"T", {}), 0);
  EXPECT_EQ(written(), emptyList());
}

TEST_F(WriterDocument, RememberedGlobalVersionAndTypeStandIn) {
  Probe own(
      store(test::documentWithRoot("", R"(GlobalVersion="rg" LocalVersion="rl" Type="Server")")));
  EXPECT_EQ(own.CreateSiteList(nullptr, outPath(), L"", L"L", L"", {}), 0);
  EXPECT_EQ(rootAttribute("GlobalVersion"), "rg");
  EXPECT_EQ(rootAttribute("LocalVersion"), "L");
  EXPECT_EQ(rootAttribute("Type"), "Server");
}

TEST_F(WriterDocument, LocalVersionStandsInForAGlobalOne) {
  EXPECT_EQ(helper.CreateSiteList(nullptr, outPath(), L"", L"L", L"", {}), 0);
  EXPECT_EQ(rootAttribute("GlobalVersion"), "L");
  EXPECT_EQ(rootAttribute("LocalVersion"), "L");
  EXPECT_EQ(rootAttribute("Type"), "Client");
}

TEST_F(WriterDocument, TypeIsClientWhenNothingIsRemembered) {
  helper.m_strSiteListType.clear();
  EXPECT_EQ(helper.CreateSiteList(nullptr, outPath(), L"G", L"L", L"", {}), 0);
  EXPECT_EQ(rootAttribute("Type"), "Client");
}

TEST_F(WriterDocument, GivenLocalVersionIsNotLogged) {
  write(nullptr);
  EXPECT_THAT(agent.texts(LogLevel::Detail),
              Not(testing::Contains(StartsWith(L"Local version of "))));
}

// Shows: new-local-version
TEST_F(WriterDocument, StampIsTheLocalTimeInFourteenDigits) {
  Probe own(store(test::documentWithRoot("", R"(LocalVersion="rl")")));
  agent.clearLog();
  const std::wstring before = localTime();
  EXPECT_EQ(own.CreateSiteList(nullptr, outPath(), L"", L"", L"", {}), 0);
  const std::wstring after = localTime();
  const std::wstring stamp = test::wide(rootAttribute("LocalVersion"));
  EXPECT_EQ(stamp.size(), 14u);
  EXPECT_EQ(stamp.find_first_not_of(L"0123456789"), std::wstring::npos);
  EXPECT_LE(before, stamp);
  EXPECT_LE(stamp, after);
  EXPECT_EQ(rootAttribute("GlobalVersion"), test::narrow(stamp));
  EXPECT_THAT(messages(), ElementsAre(detail(L"Local version of " + outPath() + L" is " + stamp),
                                      info(L"Command to mesh service to load new sitelist.")));
}

TEST_F(WriterDocument, StampNamesTheOwnFileInTheLog) {
  Probe own(path("own.xml"));
  agent.clearLog();
  EXPECT_EQ(own.CreateSiteList(nullptr, L"", L"G", L"", L"T", {}), 0);
  EXPECT_THAT(messages()[0].text, StartsWith(L"Local version of " + path("own.xml") + L" is 2"));
}

TEST_F(WriterDocument, WritingDoesNotChangeWhatIsRemembered) {
  Probe own(store(test::documentWithRoot("", R"(GlobalVersion="rg" LocalVersion="rl")")));
  EXPECT_EQ(own.CreateSiteList(nullptr, L"", L"G", L"L", L"T", {}), 0);
  EXPECT_EQ(own.m_strGlobalVersion, L"rg");
  EXPECT_EQ(own.m_strLocalVersion, L"rl");
  EXPECT_EQ(own.m_strSiteListType, L"Client");
}

TEST_F(WriterDocument, SameListIsWrittenTheSameWay) {
  makeKeysUnobtainable();
  std::string first;
  for (int i = 0; i < 2; ++i) {
    sitehlp::tag_Site* proxy = test::newSite(sitehlp::SITE_KIND_PROXY);
    test::put(proxy->proxy.szExclusionList, L"a;b;c");
    EXPECT_EQ(write(test::chain({test::newSite(sitehlp::SITE_KIND_HTTP), proxy,
                                 test::newSite(sitehlp::SITE_KIND_UNC)}),
                    {L"c"}),
              0);
    if (i == 0) first = outText();
  }
  EXPECT_EQ(outText(), first);
}

TEST_F(WriterDocument, StampFollowsAChangeOfTheTimeZone) {
  const char* const former = std::getenv("TZ");
  const std::string restored = former ? former : "";
  std::set<std::string> days;
  // The time zones are 26 hours apart, so the day always differs.
  for (const char* zone : {"AAA12", "BBB-14"}) {
    ::setenv("TZ", zone, 1);
    EXPECT_EQ(helper.CreateSiteList(nullptr, outPath(), L"", L"", L"", {}), 0);
    days.insert(rootAttribute("LocalVersion").substr(0, 8));
  }
  EXPECT_EQ(days.size(), 2u);
  former ? ::setenv("TZ", restored.c_str(), 1) : ::unsetenv("TZ");
  ::tzset();
}

}  // namespace
