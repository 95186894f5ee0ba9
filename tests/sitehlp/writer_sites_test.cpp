#include <gmock/gmock.h>

#include <regex>
#include <string>
#include <vector>

#include "tests/sitehlp/site_generator.h"
#include "tests/sitehlp/writer_fixture.h"

// The element of each repository and server record.
namespace {

using sitehlp::tag_Site;
using test::newSite;
using test::put;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

class WriterSites : public test::WriterTest {
 protected:
  // A record of the HTTP family with every field filled.
  static tag_Site* filledHttp(const std::wstring& element) {
    tag_Site* site = newSite(sitehlp::SITE_KIND_HTTP);
    fillHeader(site);
    put(site->http.szElement, element);
    put(site->http.szName, L"n");
    put(site->http.szServer, L"srv");
    put(site->http.szServerIP, L"10.0.0.1");
    site->http.uServerPort = 81;
    site->http.uServerIPPort = 83;
    site->http.uServerNamePort = 82;
    put(site->http.szRelativePath, L"/p");
    put(site->http.szServerName, L"PC1");
    site->http.iUseAuth = 7;
    put(site->http.szUserName, L"u");
    put(site->http.szPassword, L"w");
    put(site->http.szVersion, L"5.6");
    site->http.uSecurePort = 443;
    return site;
  }
  static void fillHeader(tag_Site* site) {
    site->bEnabled = 1;
    site->bLocal = 1;
    site->iOrder = 9;
    put(site->szType, L"master");
  }
  static tag_Site* withType(sitehlp::SiteKind kind, const std::wstring& type) {
    tag_Site* site = newSite(kind);
    put(site->szType, type);
    site->iOrder = 5;
    return site;
  }
};

const std::string c_httpChildren =
    "<RelativePath>/p</RelativePath><UseAuth>7</UseAuth><UserName>u</UserName>"
    R"(<Password Encrypted="1">w</Password>)";

// --- The HTTP family
// ------------------------------------------------------------------------------

// Shows: site-fields, written-password
TEST_F(WriterSites, HttpSite) {
  EXPECT_EQ(siteOf(filledHttp(L"HttpSite")),
            R"(<HttpSite Type="master" Name="n" Order="9" Enabled="1" Local="1" SecurePort="443")"
            R"( Server="srv:81">)" +
                c_httpChildren + "</HttpSite>");
}

// Shows: site-fields, written-password
TEST_F(WriterSites, ManagementServer) {
  EXPECT_EQ(siteOf(filledHttp(L"VestaSite")),
            R"(<VestaSite Type="master" Name="n" Order="9" Enabled="1" Local="1" SecurePort="443")"
            R"( Server="srv:81" ServerName="PC1:82" ServerIP="10.0.0.1:83" Version="5.6">)" +
                c_httpChildren + "</VestaSite>");
}

// Shows: site-fields, written-password
TEST_F(WriterSites, AgentRepository) {
  EXPECT_EQ(
      siteOf(filledHttp(L"KeystoneSite")),
      R"(<KeystoneSite Type="master" Name="n" Order="9" Enabled="1" Local="1" SecurePort="443")"
      R"( Server="srv:81" ServerName="PC1:82" ServerIP="10.0.0.1:83">)" +
          c_httpChildren + "</KeystoneSite>");
}

TEST_F(WriterSites, EmptyHttpRecord) {
  EXPECT_EQ(siteOf(newSite(sitehlp::SITE_KIND_HTTP)),
            R"(<HttpSite Type="repository" Name="" Order="0" Enabled="0" Local="0" Server=":0">)"
            R"(<RelativePath></RelativePath><UseAuth>0</UseAuth><UserName></UserName>)"
            R"(<Password Encrypted="1"></Password></HttpSite>)");
}

TEST_F(WriterSites, EmptyManagementServerStillNamesItsServer) {
  tag_Site* site = newSite(sitehlp::SITE_KIND_HTTP);
  put(site->http.szElement, L"VestaSite");
  site->http.uServerNamePort = 82;
  site->http.uServerIPPort = 83;
  EXPECT_THAT(siteOf(site), HasSubstr(R"( Server=":0" ServerName=":82" ServerIP=":83"><Relative)"));
}

TEST_F(WriterSites, EmptyAgentRepositoryNamesNoServer) {
  tag_Site* site = newSite(sitehlp::SITE_KIND_HTTP);
  put(site->http.szElement, L"KeystoneSite");
  site->http.uServerNamePort = 82;
  site->http.uServerIPPort = 83;
  EXPECT_THAT(siteOf(site), HasSubstr(R"( Server=":0"><RelativePath>)"));
}

TEST_F(WriterSites, AgentRepositoryNamesWhatItKnows) {
  tag_Site* named = newSite(sitehlp::SITE_KIND_HTTP);
  put(named->http.szElement, L"KeystoneSite");
  put(named->http.szServerName, L"PC1");
  tag_Site* addressed = newSite(sitehlp::SITE_KIND_HTTP);
  put(addressed->http.szElement, L"KeystoneSite");
  put(addressed->http.szServerIP, L"1.2.3.4");
  const std::string text = sitesOf(test::chain({named, addressed}));
  EXPECT_THAT(text, HasSubstr(R"( Server=":0" ServerName="PC1:0"><RelativePath>)"));
  EXPECT_THAT(text, HasSubstr(R"( Server=":0" ServerIP="1.2.3.4:0"><RelativePath>)"));
  EXPECT_THAT(text, Not(HasSubstr("ServerDNS")));
}

// Shows: server-dns-written
TEST_F(WriterSites, DnsNameOfAnAgentRepositoryIsWrittenAsItsServer) {
  const Read list = read(
      test::documentWithSites(R"(<KeystoneSite Server="srv:81" ServerDNS="dns.example:82"/>)"));
  ASSERT_EQ(test::lengthOf(list.list.get()), 1);
  const std::string text = sitesOf(list.list);
  EXPECT_THAT(text, HasSubstr(R"( Server="dns.example:82")"));
  EXPECT_THAT(text, Not(HasSubstr("ServerDNS")));
}

TEST_F(WriterSites, ElementsAreToldApartInAnyCase) {
  const std::string vesta = siteOf(filledHttp(L"vestaSITE"));
  EXPECT_THAT(vesta, testing::StartsWith("<vestaSITE "));
  EXPECT_THAT(vesta, HasSubstr(R"( ServerName="PC1:82" ServerIP="10.0.0.1:83" Version="5.6">)"));
  const std::string keystone = siteOf(filledHttp(L"KEYSTONEsite"));
  EXPECT_THAT(keystone, HasSubstr(R"( ServerName="PC1:82" ServerIP="10.0.0.1:83">)"));
}

TEST_F(WriterSites, AnyOtherElementNameIsWrittenAsItStands) {
  EXPECT_EQ(siteOf(filledHttp(L"OtherSite")),
            R"(<OtherSite Type="master" Name="n" Order="9" Enabled="1" Local="1" SecurePort="443")"
            R"( Server="srv:81">)" +
                c_httpChildren + "</OtherSite>");
}

TEST_F(WriterSites, NumbersAreWrittenAsTheyAre) {
  tag_Site* site = newSite(sitehlp::SITE_KIND_HTTP);
  site->bEnabled = 5;
  site->bLocal = -1;
  site->iOrder = -3;
  site->http.iUseAuth = -2147483647 - 1;
  site->http.uServerPort = 4294967295u;
  site->http.uSecurePort = 4294967294u;
  const std::string text = siteOf(site);
  EXPECT_THAT(text, HasSubstr(R"( Order="-3" Enabled="5" Local="-1" SecurePort="4294967294")"
                              R"( Server=":4294967295">)"));
  EXPECT_THAT(text, HasSubstr("<UseAuth>-2147483648</UseAuth>"));
}

// --- FTP, UNC, local
// ------------------------------------------------------------------------------

// Shows: site-fields, written-password
TEST_F(WriterSites, FtpSite) {
  tag_Site* site = newSite(sitehlp::SITE_KIND_FTP);
  fillHeader(site);
  put(site->ftp.szName, L"n");
  put(site->ftp.szServer, L"srv");
  site->ftp.uServerPort = 2121;
  site->ftp.uSecurePort = 990;
  put(site->ftp.szRelativePath, L"/p");
  put(site->ftp.szUserName, L"u");
  put(site->ftp.szPassword, L"w");
  EXPECT_EQ(siteOf(site),
            R"(<FTPSite Type="master" Name="n" Order="9" Server="srv:2121" Enabled="1")"
            R"( SecurePort="990" Local="1"><RelativePath>/p</RelativePath><UserName>u</UserName>)"
            R"(<Password Encrypted="1">w</Password></FTPSite>)");
}

TEST_F(WriterSites, EmptyFtpRecord) {
  EXPECT_EQ(siteOf(newSite(sitehlp::SITE_KIND_FTP)),
            R"(<FTPSite Type="repository" Name="" Order="0" Server=":0" Enabled="0" Local="0">)"
            R"(<RelativePath></RelativePath><UserName></UserName>)"
            R"(<Password Encrypted="1"></Password></FTPSite>)");
}

// Shows: site-fields, written-password
TEST_F(WriterSites, UncSite) {
  tag_Site* site = newSite(sitehlp::SITE_KIND_UNC);
  fillHeader(site);
  put(site->unc.szName, L"n");
  put(site->unc.szServer, L"srv:1");
  put(site->unc.szRelativePath, L"\\p");
  put(site->unc.szDomainName, L"DOM");
  put(site->unc.szUserName, L"u");
  put(site->unc.szPassword, L"w");
  site->unc.iUseLoggedonUserAccount = 2;
  put(site->unc.szShareName, L"share$");
  EXPECT_EQ(siteOf(site),
            R"(<UNCSite Type="master" Name="n" Order="9" Server="srv:1" Enabled="1" Local="1">)"
            R"(<ShareName>share$</ShareName><RelativePath>\p</RelativePath>)"
            R"(<UseLoggedonUserAccount>2</UseLoggedonUserAccount><DomainName>DOM</DomainName>)"
            R"(<UserName>u</UserName><Password Encrypted="1">w</Password></UNCSite>)");
}

TEST_F(WriterSites, EmptyUncRecord) {
  EXPECT_EQ(siteOf(newSite(sitehlp::SITE_KIND_UNC)),
            R"(<UNCSite Type="repository" Name="" Order="0" Server="" Enabled="0" Local="0">)"
            R"(<ShareName></ShareName><RelativePath></RelativePath>)"
            R"(<UseLoggedonUserAccount>0</UseLoggedonUserAccount><DomainName></DomainName>)"
            R"(<UserName></UserName><Password Encrypted="1"></Password></UNCSite>)");
}

// Shows: local-site, site-fields, written-password
TEST_F(WriterSites, LocalSite) {
  tag_Site* site = newSite(sitehlp::SITE_KIND_LOCAL);
  fillHeader(site);
  put(site->local.szName, L"n");
  put(site->local.szRelativePath, L"/p");
  put(site->local.szDomainName, L"DOM");
  put(site->local.szUserName, L"u");
  put(site->local.szPassword, L"w");
  site->local.iUseLoggedonUserAccount = -1;
  EXPECT_EQ(
      siteOf(site),
      R"(<LocalSite Type="master" Name="n" Order="9" Enabled="1" Local="1" Server="127.0.0.1">)"
      R"(<RelativePath>/p</RelativePath><UseLoggedonUserAccount>-1</UseLoggedonUserAccount>)"
      R"(<DomainName>DOM</DomainName><UserName>u</UserName>)"
      R"(<Password Encrypted="1">w</Password></LocalSite>)");
}

TEST_F(WriterSites, EmptyLocalRecord) {
  EXPECT_EQ(
      siteOf(newSite(sitehlp::SITE_KIND_LOCAL)),
      R"(<LocalSite Type="repository" Name="" Order="0" Enabled="0" Local="0" Server="127.0.0.1">)"
      R"(<RelativePath></RelativePath><UseLoggedonUserAccount>0</UseLoggedonUserAccount>)"
      R"(<DomainName></DomainName><UserName></UserName>)"
      R"(<Password Encrypted="1"></Password></LocalSite>)");
}

// --- All of them
// ----------------------------------------------------------------------------------

const sitehlp::SiteKind c_siteKinds[] = {sitehlp::SITE_KIND_HTTP, sitehlp::SITE_KIND_FTP,
                                         sitehlp::SITE_KIND_UNC, sitehlp::SITE_KIND_LOCAL};

// Shows: attribute-order
TEST_F(WriterSites, MirrorHasNoOrder) {
  for (const sitehlp::SiteKind kind : c_siteKinds) {
    for (const wchar_t* type : {L"mirror", L"Mirror", L"MIRROR"}) {
      const std::string text = siteOf(withType(kind, type));
      EXPECT_THAT(text, HasSubstr("Type=\"" + test::narrow(type) + "\" Name=\"\" "));
      EXPECT_THAT(text, Not(HasSubstr("Order")));
    }
    for (const wchar_t* type : {L"mirrors", L"master", L"fallback"}) {
      EXPECT_THAT(siteOf(withType(kind, type)), HasSubstr(R"( Order="5")"));
    }
  }
}

// Shows: attribute-type
TEST_F(WriterSites, RemediationIsATypeLikeAnyOther) {
  for (const sitehlp::SiteKind kind : c_siteKinds) {
    const std::string text = siteOf(withType(kind, L"remediation"));
    EXPECT_THAT(text, HasSubstr(R"(Type="remediation" Name="" Order="5")"));
    EXPECT_EQ(text, std::regex_replace(siteOf(withType(kind, L"any text")), std::regex("any text"),
                                       "remediation"));
  }
  const auto expected = decode(R"(<HttpSite Type="any text" Name="n"/>)");
  const auto site = decode(R"(<HttpSite Type="remediation" Name="n"/>)");
  EXPECT_STREQ(site->szType, L"remediation");
  put(site->szType, L"any text");
  EXPECT_EQ(test::fieldsOf(*site), test::fieldsOf(*expected));
}

TEST_F(WriterSites, EmptyTypeIsWrittenAsRepositoryAndStaysEmpty) {
  for (const sitehlp::SiteKind kind : c_siteKinds) {
    const test::ListPtr list(withType(kind, L""));
    EXPECT_THAT(sitesOf(list), HasSubstr(R"(Type="repository" Name="" Order="5")"));
    EXPECT_STREQ(list->szType, L"");
  }
}

// Shows: unprotected-password
TEST_F(WriterSites, WithoutTheServicePasswordsAreEmptyButMarked) {
  makeKeysUnobtainable();
  tag_Site* http = newSite(sitehlp::SITE_KIND_HTTP);
  put(http->http.szPassword, L"w");
  tag_Site* ftp = newSite(sitehlp::SITE_KIND_FTP);
  put(ftp->ftp.szPassword, L"w");
  tag_Site* unc = newSite(sitehlp::SITE_KIND_UNC);
  put(unc->unc.szPassword, L"w");
  tag_Site* local = newSite(sitehlp::SITE_KIND_LOCAL);
  put(local->local.szPassword, L"w");
  tag_Site* proxy = newSite(sitehlp::SITE_KIND_PROXY);
  put(proxy->proxy.szHttpProxyPassword, L"w");
  put(proxy->proxy.szFtpProxyPassword, L"w");
  put(proxy->proxy.szAlternateHttpProxyPassword, L"w");
  put(proxy->proxy.szAlternateFtpProxyPassword, L"w");
  EXPECT_EQ(write(test::chain({http, ftp, unc, local, proxy})), 0);
  std::size_t passwords = 0;
  const std::string text = outText();
  for (std::size_t at = text.find("Password "); at != std::string::npos;
       at = text.find("Password ", at + 1)) {
    const std::string rest = text.substr(at, 60);
    EXPECT_THAT(rest, testing::MatchesRegex("Password Encrypted=\"1\"( ?/>|></).*"));
    ++passwords;
  }
  EXPECT_EQ(passwords, 8u);
}

TEST_F(WriterSites, SitesStandInTheOrderOfTheList) {
  const auto named = [](sitehlp::SiteKind kind, int order) {
    tag_Site* site = newSite(kind);
    site->iOrder = order;
    return site;
  };
  const std::string text =
      sitesOf(test::chain({named(sitehlp::SITE_KIND_LOCAL, 3), named(sitehlp::SITE_KIND_HTTP, 1),
                           newSite(sitehlp::SITE_KIND_PROXY), named(sitehlp::SITE_KIND_UNC, 2),
                           named(sitehlp::SITE_KIND_FTP, 4), named(sitehlp::SITE_KIND_HTTP, 0)}));
  std::vector<std::size_t> places;
  for (const char* start :
       {R"(<LocalSite Type="repository" Name="" Order="3")",
        R"(<HttpSite Type="repository" Name="" Order="1")", "<ProxyConfigList><ProxyConfig ",
        R"(</ProxyConfigList><UNCSite Type="repository" Name="" Order="2")",
        R"(</UNCSite><FTPSite Type="repository" Name="" Order="4")",
        R"(</FTPSite><HttpSite Type="repository" Name="" Order="0")"}) {
    places.push_back(text.find(start));
    EXPECT_NE(places.back(), std::string::npos) << start << " in " << text;
  }
  EXPECT_TRUE(std::is_sorted(places.begin(), places.end()));
}

TEST_F(WriterSites, WritersOpenTheirScopesAndFormatWhatTheyShould) {
  agent.clearLog();
  helper.CreateSiteList(
      test::chain({filledHttp(L"HttpSite"), filledHttp(L"VestaSite"),
                   newSite(sitehlp::SITE_KIND_FTP), newSite(sitehlp::SITE_KIND_UNC),
                   newSite(sitehlp::SITE_KIND_LOCAL)})
          .get(),
      outPath(), L"G", L"L", L"T", {});
  std::vector<std::wstring> entered;
  for (const test::LogLine& line : scopes()) {
    if (line.text.rfind(L"Enter: ", 0) == 0) entered.push_back(line.text.substr(7));
  }
  const std::wstring format = L"Formatting environment symbols";
  entered.pop_back();  // the list is released when this statement ends
  EXPECT_THAT(entered, ElementsAre(L"Creating Sitelist", L"Adding HTTP site", format, format,
                                   L"Adding HTTP site", format, format, format, format, format,
                                   L"Adding FTP site", format, format, L"Adding UNC site", format,
                                   format, format, L"Adding local site", format, format));
  EXPECT_THAT(messages(), ElementsAre(info(L"Command to mesh service to load new sitelist.")));
}

}  // namespace
