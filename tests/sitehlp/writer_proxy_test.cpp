#include <gmock/gmock.h>

#include <cwchar>
#include <iterator>
#include <string>
#include <vector>

#include "tests/sitehlp/writer_fixture.h"

namespace {

using sitehlp::tag_Site;
using test::newSite;
using test::put;
using testing::HasSubstr;
using testing::Not;

class WriterProxy : public test::WriterTest {
 protected:
  static tag_Site* withHosts(const std::wstring& hosts) {
    tag_Site* site = newSite(sitehlp::SITE_KIND_PROXY);
    put(site->proxy.szExclusionList, hosts);
    return site;
  }
  // Returns the "ExclusionList" element of a record with these hosts.
  std::string exclusions(const std::wstring& hosts) {
    const std::string text = siteOf(withHosts(hosts));
    const std::size_t begin = text.find("<ExclusionList>");
    const std::string end = "</ExclusionList>";
    return text.substr(begin, text.find(end) + end.size() - begin);
  }
};

// Shows: site-fields, written-password
TEST_F(WriterProxy, FilledRecord) {
  tag_Site* site = newSite(sitehlp::SITE_KIND_PROXY);
  site->bEnabled = 1;
  site->bLocal = 0;
  site->iOrder = 4;
  put(site->szType, L"master");
  put(site->proxy.szElement, L"ignored");
  put(site->proxy.szName, L"p");
  put(site->proxy.szHttpProxyServer, L"h");
  site->proxy.iHttpProxyPort = 3128;
  put(site->proxy.szFtpProxyServer, L"f");
  site->proxy.iFtpProxyPort = 2121;
  site->proxy.bAllowUserToConfigureProxy = 1;
  site->proxy.bBypassLocalAddress = 2;
  site->proxy.bUseIEConfig = 5;
  site->proxy.iExclusionCount = 99;
  put(site->proxy.szExclusionList, L"a;b;c");
  site->proxy.bFtpUseAuth = 3;
  site->proxy.bHttpUseAuth = 4;
  put(site->proxy.szHttpProxyUser, L"hu");
  put(site->proxy.szHttpProxyPassword, L"hp");
  put(site->proxy.szFtpProxyUser, L"fu");
  put(site->proxy.szFtpProxyPassword, L"fp");
  site->proxy.bAlternateFtpUseAuth = 6;
  site->proxy.bAlternateHttpUseAuth = -7;
  put(site->proxy.szAlternateHttpProxyUser, L"ahu");
  put(site->proxy.szAlternateHttpProxyPassword, L"ahp");
  put(site->proxy.szAlternateFtpProxyUser, L"afu");
  put(site->proxy.szAlternateFtpProxyPassword, L"afp");
  EXPECT_EQ(siteOf(site),
            R"(<ProxyConfigList><ProxyConfig Name="p" UseIEConfig="1" Local="1")"
            R"( HttpProxyServer="h" HttpProxyPort="3128" FtpProxyServer="f" FtpProxyPort="2121">)"
            "<AllowUserToConfigureProxy>1</AllowUserToConfigureProxy>"
            "<BypassLocalAddress>2</BypassLocalAddress>"
            "<ExclusionList><ExclusionHost>a</ExclusionHost><ExclusionHost>b</ExclusionHost>"
            "<ExclusionHost>c</ExclusionHost></ExclusionList>"
            "<FtpUseAuth>3</FtpUseAuth><HttpUseAuth>4</HttpUseAuth>"
            "<HttpProxyUser>hu</HttpProxyUser>"
            R"(<HttpProxyPassword Encrypted="1">hp</HttpProxyPassword>)"
            "<FtpProxyUser>fu</FtpProxyUser>"
            R"(<FtpProxyPassword Encrypted="1">fp</FtpProxyPassword>)"
            "<AlternateFtpUseAuth>6</AlternateFtpUseAuth>"
            "<AlternateHttpUseAuth>-7</AlternateHttpUseAuth>"
            "<AlternateHttpProxyUser>ahu</AlternateHttpProxyUser>"
            R"(<AlternateHttpProxyPassword Encrypted="1">ahp</AlternateHttpProxyPassword>)"
            "<AlternateFtpProxyUser>afu</AlternateFtpProxyUser>"
            R"(<AlternateFtpProxyPassword Encrypted="1">afp</AlternateFtpProxyPassword>)"
            "</ProxyConfig></ProxyConfigList>");
}

TEST_F(WriterProxy, EmptyRecordHasAllFifteenChildren) {
  EXPECT_EQ(siteOf(newSite(sitehlp::SITE_KIND_PROXY)),
            R"(<ProxyConfigList><ProxyConfig Name="" Local="1">)"
            "<AllowUserToConfigureProxy>0</AllowUserToConfigureProxy>"
            "<BypassLocalAddress>0</BypassLocalAddress><ExclusionList></ExclusionList>"
            "<FtpUseAuth>0</FtpUseAuth><HttpUseAuth>0</HttpUseAuth><HttpProxyUser></HttpProxyUser>"
            R"(<HttpProxyPassword Encrypted="1"></HttpProxyPassword><FtpProxyUser></FtpProxyUser>)"
            R"(<FtpProxyPassword Encrypted="1"></FtpProxyPassword>)"
            "<AlternateFtpUseAuth>0</AlternateFtpUseAuth>"
            "<AlternateHttpUseAuth>0</AlternateHttpUseAuth>"
            "<AlternateHttpProxyUser></AlternateHttpProxyUser>"
            R"(<AlternateHttpProxyPassword Encrypted="1"></AlternateHttpProxyPassword>)"
            "<AlternateFtpProxyUser></AlternateFtpProxyUser>"
            R"(<AlternateFtpProxyPassword Encrypted="1"></AlternateFtpProxyPassword>)"
            "</ProxyConfig></ProxyConfigList>");
}

TEST_F(WriterProxy, PortIsWrittenWithItsServerAlone) {
  tag_Site* site = newSite(sitehlp::SITE_KIND_PROXY);
  site->proxy.iHttpProxyPort = 1;
  site->proxy.iFtpProxyPort = 2;
  EXPECT_THAT(siteOf(site), HasSubstr(R"(<ProxyConfig Name="" Local="1"><Allow)"));
  site = newSite(sitehlp::SITE_KIND_PROXY);
  put(site->proxy.szFtpProxyServer, L"f");
  site->proxy.iHttpProxyPort = 1;
  EXPECT_THAT(siteOf(site), HasSubstr(R"( Local="1" FtpProxyServer="f" FtpProxyPort="0"><Allow)"));
  site = newSite(sitehlp::SITE_KIND_PROXY);
  put(site->proxy.szHttpProxyServer, L"h");
  EXPECT_THAT(siteOf(site),
              HasSubstr(R"( Local="1" HttpProxyServer="h" HttpProxyPort="0"><Allow)"));
}

TEST_F(WriterProxy, PortIsWrittenWithoutASign) {
  tag_Site* site = newSite(sitehlp::SITE_KIND_PROXY);
  put(site->proxy.szHttpProxyServer, L"h");
  site->proxy.iHttpProxyPort = -1;
  EXPECT_THAT(siteOf(site), HasSubstr(R"( HttpProxyPort="4294967295")"));
}

TEST_F(WriterProxy, ProxyConfigListHasNoAttributes) {
  tag_Site* site = newSite(sitehlp::SITE_KIND_PROXY);
  site->bEnabled = site->bLocal = site->iOrder = 1;
  put(site->szType, L"mirror");
  EXPECT_THAT(siteOf(site), testing::StartsWith("<ProxyConfigList><ProxyConfig "));
}

TEST_F(WriterProxy, LocalAddressRangesAreNeverWritten) {
  EXPECT_THAT(siteOf(newSite(sitehlp::SITE_KIND_PROXY)), Not(HasSubstr("LocalAddrRange")));
}

// --- The exclusion list
// ---------------------------------------------------------------------------

TEST_F(WriterProxy, EmptyPiecesAreSkipped) {
  EXPECT_EQ(exclusions(L";;a;;b;"),
            "<ExclusionList><ExclusionHost>a</ExclusionHost><ExclusionHost>b</ExclusionHost>"
            "</ExclusionList>");
  EXPECT_EQ(exclusions(L""), "<ExclusionList></ExclusionList>");
  EXPECT_EQ(exclusions(L";;;"), "<ExclusionList></ExclusionList>");
  EXPECT_EQ(exclusions(L"one"),
            "<ExclusionList><ExclusionHost>one</ExclusionHost></ExclusionList>");
  EXPECT_EQ(exclusions(L" a ; b"),
            "<ExclusionList><ExclusionHost> a </ExclusionHost><ExclusionHost> b</ExclusionHost>"
            "</ExclusionList>");
}

TEST_F(WriterProxy, HostsKeepTheirOrder) {
  std::wstring hosts;
  std::string expected = "<ExclusionList>";
  for (int i = 0; i < 400; ++i) {
    hosts += L"h" + std::to_wstring(i) + L";";
    expected += "<ExclusionHost>h" + std::to_string(i) + "</ExclusionHost>";
  }
  EXPECT_EQ(exclusions(hosts), expected + "</ExclusionList>");
}

TEST_F(WriterProxy, RecordHoldsOnlyItsFirstHostAfterwards) {
  const test::ListPtr list(withHosts(L"a;b;c"));
  EXPECT_THAT(sitesOf(list), HasSubstr("<ExclusionHost>c</ExclusionHost>"));
  EXPECT_STREQ(list->proxy.szExclusionList, L"a");
  EXPECT_THAT(sitesOf(list),
              HasSubstr("<ExclusionList><ExclusionHost>a</ExclusionHost></ExclusionList>"));
}

// Shows: macro, expanded-macro
TEST_F(WriterProxy, MacrosOfServersAndHostsAreFormatted) {
  tag_Site* site = withHosts(L"%%lt%%A%%gt%%.x;b%%lt%%");
  put(site->proxy.szHttpProxyServer, L"%%lt%%H%%gt%%");
  put(site->proxy.szFtpProxyServer, L"%%lt%%F%%gt%%");
  put(site->proxy.szName, L"%%lt%%N%%gt%%");
  put(site->proxy.szHttpProxyUser, L"%%lt%%U%%gt%%");
  const test::ListPtr list(site);
  sitesOf(list);
  EXPECT_STREQ(site->proxy.szHttpProxyServer, L"<H>");
  EXPECT_STREQ(site->proxy.szFtpProxyServer, L"<F>");
  EXPECT_STREQ(site->proxy.szExclusionList, L"<A>.x");
  EXPECT_STREQ(site->proxy.szName, L"%%lt%%N%%gt%%");
  EXPECT_STREQ(site->proxy.szHttpProxyUser, L"%%lt%%U%%gt%%");
  const Read back = readPath(outPath());
  ASSERT_NE(back.list, nullptr);
  EXPECT_STREQ(back.list->proxy.szHttpProxyServer, L"<H>");
  EXPECT_STREQ(back.list->proxy.szExclusionList, L"<A>.x;b<");
  EXPECT_STREQ(back.list->proxy.szName, L"%%lt%%N%%gt%%");
}

TEST_F(WriterProxy, ExclusionListIsFormattedToFourThousandCharacters) {
  const test::ListPtr list(withHosts(std::wstring(4000, L'a')));
  EXPECT_THAT(sitesOf(list),
              HasSubstr("<ExclusionHost>" + std::string(3999, 'a') + "</ExclusionHost>"));
  EXPECT_EQ(std::wstring(list->proxy.szExclusionList), std::wstring(3999, L'a'));
  const test::ListPtr fits(withHosts(std::wstring(3999, L'a')));
  EXPECT_THAT(sitesOf(fits),
              HasSubstr("<ExclusionHost>" + std::string(3999, 'a') + "</ExclusionHost>"));
}

TEST_F(WriterProxy, OpensItsScopes) {
  tag_Site* site = newSite(sitehlp::SITE_KIND_PROXY);
  put(site->proxy.szHttpProxyServer, L"h");
  const test::ListPtr list(site);
  agent.clearLog();
  write(list);
  std::vector<std::wstring> entered;
  for (const test::LogLine& line : scopes()) {
    if (line.text.rfind(L"Enter: ", 0) == 0) entered.push_back(line.text.substr(7));
  }
  EXPECT_THAT(entered, testing::ElementsAre(L"Creating Sitelist", L"Adding Proxy site",
                                            L"Formatting environment symbols",
                                            L"Formatting environment symbols"));
}

TEST_F(WriterProxy, ServerWithoutATerminatorShowsNothingOfThePortBehindIt) {
  tag_Site* site = newSite(sitehlp::SITE_KIND_PROXY);
  auto& server = site->proxy.szHttpProxyServer;
  const std::wstring macro = L"%%lt%%";
  std::wmemset(server, L'x', std::size(server));
  macro.copy(server, macro.size());
  site->proxy.iHttpProxyPort = 'P';
  const std::string rest(std::size(server) - 1 - macro.size(), 'x');
  EXPECT_THAT(siteOf(site), HasSubstr("Server=\"&lt;" + rest + "\""));
}

TEST_F(WriterProxy, BytesBehindTheTextOfAServerAreNotTouched) {
  tag_Site* site = newSite(sitehlp::SITE_KIND_PROXY);
  const test::ListPtr list(site);
  const std::wstring text(L"f\0rest", 6);
  text.copy(site->proxy.szHttpProxyServer, text.size());
  text.copy(site->proxy.szFtpProxyServer, text.size());
  sitesOf(list);
  EXPECT_EQ(std::wstring(site->proxy.szHttpProxyServer, text.size()), text);
  EXPECT_EQ(std::wstring(site->proxy.szFtpProxyServer, text.size()), text);
}

}  // namespace
