#include <gmock/gmock.h>

#include <string>

#include "tests/sitehlp/sites_helper_fixture.h"

// Decoding of the attributes and children of one repository or management server.
namespace {

using sitehlp::tag_Site;
using testing::ElementsAre;
using testing::IsEmpty;

class DecodeSites : public test::SitesHelperTest {
 protected:
  // An element of the HTTP family with these attributes and children.
  test::ListPtr http(const std::string& attributes, const std::string& children = "",
                     const std::string& element = "HttpSite") {
    return decode("<" + element + " " + attributes + ">" + children + "</" + element + ">");
  }
};

const char* const c_httpFamily[] = {"HttpSite", "VestaSite", "KeystoneSite"};

// --- The HTTP family
// ------------------------------------------------------------------------------

// Shows: attribute-name, site-fields
TEST_F(DecodeSites, HttpFamilyIsReadWhole) {
  for (const char* element : c_httpFamily) {
    const auto site =
        http(R"(Name="a name" Server="srv:81" ServerName="PC1:82" ServerIP="10.0.0.1:83")"
             R"( SecurePort="443" Version="5.6")",
             "<RelativePath>/a/b</RelativePath><UseAuth>1</UseAuth><UserName>u</UserName>"
             "<Password/>",
             element);
    EXPECT_EQ(site->eSiteKind, sitehlp::SITE_KIND_HTTP);
    EXPECT_EQ(test::narrow(site->http.szElement), element);
    EXPECT_STREQ(site->http.szName, L"a name");
    EXPECT_STREQ(site->http.szServer, L"srv");
    EXPECT_EQ(site->http.uServerPort, 81u);
    EXPECT_STREQ(site->http.szServerName, L"PC1");
    EXPECT_EQ(site->http.uServerNamePort, 82u);
    EXPECT_STREQ(site->http.szServerIP, L"10.0.0.1");
    EXPECT_EQ(site->http.uServerIPPort, 83u);
    EXPECT_EQ(site->http.uSecurePort, 443u);
    EXPECT_STREQ(site->http.szRelativePath, L"/a/b");
    EXPECT_EQ(site->http.iUseAuth, 1);
    EXPECT_STREQ(site->http.szUserName, L"u");
    EXPECT_STREQ(site->http.szPassword, L"");
  }
  EXPECT_THAT(messages(), IsEmpty());
}

TEST_F(DecodeSites, OnlyTheManagementServerHasAVersion) {
  EXPECT_STREQ(http(R"(Version="5.6")", "", "VestaSite")->http.szVersion, L"5.6");
  EXPECT_STREQ(http(R"(Version="5.6")", "", "HttpSite")->http.szVersion, L"");
  EXPECT_STREQ(http(R"(Version="5.6")", "", "KeystoneSite")->http.szVersion, L"");
}

// Shows: missing-values, nothing-required
TEST_F(DecodeSites, AbsentValuesAreEmptyAndAbsentPortsAreEighty) {
  for (const char* element : c_httpFamily) {
    const auto site = http("", "", element);
    EXPECT_STREQ(site->http.szName, L"");
    EXPECT_STREQ(site->http.szServer, L"");
    EXPECT_STREQ(site->http.szServerName, L"");
    EXPECT_STREQ(site->http.szServerIP, L"");
    EXPECT_EQ(site->http.uServerPort, 80u);
    EXPECT_EQ(site->http.uServerNamePort, 80u);
    EXPECT_EQ(site->http.uServerIPPort, 80u);
    EXPECT_EQ(site->http.uSecurePort, 0u);
    EXPECT_EQ(site->http.iUseAuth, 0);
    EXPECT_STREQ(site->http.szRelativePath, L"");
    EXPECT_STREQ(site->http.szUserName, L"");
    EXPECT_STREQ(site->http.szPassword, L"");
    EXPECT_STREQ(site->http.szVersion, L"");
  }
}

// Shows: format-address
TEST_F(DecodeSites, AddressWithoutPortGetsEighty) {
  const auto site = http(R"(Server="REPO1" ServerName="PC" ServerIP="10.0.0.1")");
  EXPECT_STREQ(site->http.szServer, L"REPO1");
  EXPECT_EQ(site->http.uServerPort, 80u);
  EXPECT_EQ(site->http.uServerNamePort, 80u);
  EXPECT_EQ(site->http.uServerIPPort, 80u);
  EXPECT_EQ(http(R"(Server="REPO1:8443")")->http.uServerPort, 8443u);
}

// Shows: format-address
TEST_F(DecodeSites, AddressIsSplitAtItsLastColon) {
  const auto site = http(R"(Server="[fe80::1]:443" ServerName="a:b:1" ServerIP="fe80::1")");
  EXPECT_STREQ(site->http.szServer, L"[fe80::1]");
  EXPECT_EQ(site->http.uServerPort, 443u);
  EXPECT_STREQ(site->http.szServerName, L"a:b");
  EXPECT_EQ(site->http.uServerNamePort, 1u);
  EXPECT_STREQ(site->http.szServerIP, L"fe80:");
  EXPECT_EQ(site->http.uServerIPPort, 1u);
}

TEST_F(DecodeSites, HostBeforeABareColonIsTaken) {
  EXPECT_STREQ(http(R"(Server="REPO1:")")->http.szServer, L"REPO1");
  EXPECT_STREQ(http(R"(Server=":8080")")->http.szServer, L"");
  EXPECT_EQ(http(R"(Server=":8080")")->http.uServerPort, 8080u);
}

TEST_F(DecodeSites, PortsUpToTheLargestAreRead) {
  EXPECT_EQ(http(R"(Server="s:4294967295")")->http.uServerPort, 4294967295u);
  EXPECT_EQ(http(R"(SecurePort="4294967295")")->http.uSecurePort, 4294967295u);
  EXPECT_EQ(http(R"(Server="s:0")")->http.uServerPort, 0u);
}

// Shows: format-port
TEST_F(DecodeSites, SecurePortIsReadAsAStreamDoes) {
  EXPECT_EQ(http(R"(SecurePort="443")")->http.uSecurePort, 443u);
  EXPECT_EQ(http(R"(SecurePort="  443x")")->http.uSecurePort, 443u);
  EXPECT_EQ(http(R"(SecurePort="0443")")->http.uSecurePort, 443u);
  EXPECT_EQ(http(R"(SecurePort="x")")->http.uSecurePort, 0u);
  EXPECT_EQ(http(R"(SecurePort="")")->http.uSecurePort, 0u);
}

// Shows: format-port
TEST_F(DecodeSites, PortWithASignIsNotRead) {
  for (const char* port : {"-1", "+80", " -80", "-"}) {
    const std::string text = port;
    const auto site = http("Server=\"a:" + text + "\" SecurePort=\"" + text + "\"");
    EXPECT_STREQ(site->http.szServer, L"a");
    EXPECT_EQ(site->http.uServerPort, 0u) << text;
    EXPECT_EQ(site->http.uSecurePort, 0u) << text;
  }
}

// Shows: server-dns
TEST_F(DecodeSites, KeystoneNeverTakesThePortOfItsOtherName) {
  for (const char* port : {"", "x", "-1", "4294967296"}) {
    const auto site =
        http("Server=\"a:7\" ServerDNS=\"d:" + std::string(port) + "\"", "", "KeystoneSite");
    EXPECT_STREQ(site->http.szServer, L"d");
    EXPECT_EQ(site->http.uServerPort, 0u) << port;
  }
}

// Shows: server-dns
TEST_F(DecodeSites, KeystonePrefersTheDnsName) {
  const char* both = R"(Server="srv:81" ServerDNS="dns.example:82")";
  const auto site = http(both, "", "KeystoneSite");
  EXPECT_STREQ(site->http.szServer, L"dns.example");
  EXPECT_EQ(site->http.uServerPort, 82u);
  for (const char* element : {"HttpSite", "VestaSite"}) {
    EXPECT_STREQ(http(both, "", element)->http.szServer, L"srv");
    EXPECT_EQ(http(both, "", element)->http.uServerPort, 81u);
  }
}

TEST_F(DecodeSites, KeystoneDnsNameBringsItsOwnDefaultPort) {
  const auto site = http(R"(Server="srv:81" ServerDNS="dns.example")", "", "KeystoneSite");
  EXPECT_STREQ(site->http.szServer, L"dns.example");
  EXPECT_EQ(site->http.uServerPort, 80u);
  const auto empty = http(R"(Server="srv:81" ServerDNS="")", "", "KeystoneSite");
  EXPECT_STREQ(empty->http.szServer, L"");
  EXPECT_EQ(empty->http.uServerPort, 80u);
  EXPECT_STREQ(http(R"(Server="srv:81")", "", "KeystoneSite")->http.szServer, L"srv");
}

// Shows: computer-name
TEST_F(DecodeSites, ServerNameIsCutToItsNetbiosForm) {
  const auto site = http(R"(ServerName="PC1.BRANCH1.LOCAL:81")");
  EXPECT_STREQ(site->http.szServerName, L"PC1");
  EXPECT_EQ(site->http.uServerNamePort, 81u);
  EXPECT_THAT(messages(), ElementsAre(detail(L"truncated PC1 NetBIOS name at dot")));
  agent.clearLog();
  EXPECT_STREQ(http(R"(ServerName="PC1.BRANCH1.LOCAL")")->http.szServerName, L"PC1");
  EXPECT_STREQ(http(R"(ServerName=".LOCAL")")->http.szServerName, L"");
  EXPECT_THAT(messages(), ElementsAre(detail(L"truncated PC1 NetBIOS name at dot"),
                                      detail(L"truncated  NetBIOS name at dot")));
}

TEST_F(DecodeSites, OtherAddressesKeepTheirDots) {
  const auto site = http(R"(Server="a.b.c:1" ServerIP="1.2.3.4:2")");
  EXPECT_STREQ(site->http.szServer, L"a.b.c");
  EXPECT_STREQ(site->http.szServerIP, L"1.2.3.4");
  EXPECT_THAT(messages(), IsEmpty());
}

// Shows: format-number
TEST_F(DecodeSites, UseAuthIsTheNumberAsItComes) {
  const std::pair<const char*, int> cases[] = {{"1", 1},   {"7", 7},  {"-3", -3},
                                               {" 2 ", 2}, {"x", 0},  {"", 0},
                                               {"yes", 0}, {"4x", 4}, {"2147483647", 2147483647}};
  for (const auto& one : cases) {
    EXPECT_EQ(http("", std::string("<UseAuth>") + one.first + "</UseAuth>")->http.iUseAuth,
              one.second)
        << one.first;
  }
}

// Shows: format-text
TEST_F(DecodeSites, HttpFieldsAreCutAtTheirCapacities) {
  const auto text = [](char letter, int length) {
    return std::string(static_cast<std::size_t>(length), letter);
  };
  const auto kept = [](wchar_t letter, int length) {
    return std::wstring(static_cast<std::size_t>(length), letter);
  };
  const auto fits = http("Name=\"" + text('n', 259) + "\" Server=\"" + text('s', 259) +
                             ":1\" ServerName=\"" + text('m', 260) + "\" ServerIP=\"" +
                             text('i', 99) + "\" Version=\"" + text('v', 259) + "\"",
                         "<RelativePath>" + text('r', 519) + "</RelativePath><UserName>" +
                             text('u', 259) + "</UserName>",
                         "VestaSite");
  EXPECT_THAT(messages(), IsEmpty());
  const auto cut = http("Name=\"" + text('n', 260) + "\" Server=\"" + text('s', 260) +
                            ":1\" ServerName=\"" + text('m', 261) + "\" ServerIP=\"" +
                            text('i', 100) + "\" Version=\"" + text('v', 260) + "\"",
                        "<RelativePath>" + text('r', 520) + "</RelativePath><UserName>" +
                            text('u', 260) + "</UserName>",
                        "VestaSite");
  for (const auto* site : {fits.get(), cut.get()}) {
    EXPECT_EQ(std::wstring(site->http.szName), kept(L'n', 259));
    EXPECT_EQ(std::wstring(site->http.szServer), kept(L's', 259));
    EXPECT_EQ(std::wstring(site->http.szServerName), kept(L'm', 260));
    EXPECT_EQ(std::wstring(site->http.szServerIP), kept(L'i', 99));
    EXPECT_EQ(std::wstring(site->http.szVersion), kept(L'v', 259));
    EXPECT_EQ(std::wstring(site->http.szRelativePath), kept(L'r', 519));
    EXPECT_EQ(std::wstring(site->http.szUserName), kept(L'u', 259));
    EXPECT_EQ(site->http.uServerPort, 1u);
    EXPECT_EQ(site->http.uServerNamePort, 80u);
  }
  const auto line = [&](wchar_t letter, int capacity) {
    return detail(L"String " + kept(letter, capacity) + L" is truncated to " +
                  kept(letter, capacity - 1) + L" in CopyWStr");
  };
  EXPECT_THAT(messages(),
              ElementsAre(line(L'v', 260), line(L's', 260), line(L'n', 260), line(L'm', 261),
                          line(L'i', 100), line(L'r', 520), line(L'u', 260)));
}

TEST_F(DecodeSites, NetbiosLineStandsBetweenNameAndServerName) {
  http("Name=\"" + std::string(260, 'n') + "\" ServerName=\"" + std::string(261, 'm') + ".x\"");
  ASSERT_EQ(messages().size(), 3u);
  EXPECT_EQ(messages()[0].text.substr(0, 10), L"String nnn");
  EXPECT_EQ(messages()[1].text, L"truncated " + std::wstring(261, L'm') + L" NetBIOS name at dot");
  EXPECT_EQ(messages()[2].text.substr(0, 10), L"String mmm");
}

// --- FTP
// ------------------------------------------------------------------------------------------

// Shows: attribute-name, site-fields
TEST_F(DecodeSites, FtpSiteIsReadWhole) {
  const auto site = decode(
      R"(<FTPSite Name="n" Server="ftp.example:2121" SecurePort="990" ServerName="no.where")"
      R"( Version="1"><RelativePath>/p</RelativePath><UserName>u</UserName><Passive>1</Passive>)"
      "<Password/></FTPSite>");
  EXPECT_EQ(site->eSiteKind, sitehlp::SITE_KIND_FTP);
  EXPECT_STREQ(site->ftp.szName, L"n");
  EXPECT_STREQ(site->ftp.szServer, L"ftp.example");
  EXPECT_EQ(site->ftp.uServerPort, 2121u);
  EXPECT_EQ(site->ftp.uSecurePort, 990u);
  EXPECT_STREQ(site->ftp.szRelativePath, L"/p");
  EXPECT_STREQ(site->ftp.szUserName, L"u");
  EXPECT_STREQ(site->ftp.szPassword, L"");
  EXPECT_THAT(messages(), IsEmpty());
}

// Shows: format-address, nothing-required
TEST_F(DecodeSites, FtpServerWithoutPortGetsEightyToo) {
  EXPECT_EQ(decode(R"(<FTPSite Server="ftp.example"/>)")->ftp.uServerPort, 80u);
  EXPECT_EQ(decode("<FTPSite/>")->ftp.uServerPort, 80u);
  EXPECT_EQ(decode("<FTPSite/>")->ftp.uSecurePort, 0u);
}

// Shows: format-text
TEST_F(DecodeSites, FtpFieldsAreCutAtTheirCapacities) {
  const auto site =
      decode("<FTPSite Name=\"" + std::string(300, 'n') + "\" Server=\"" + std::string(300, 's') +
             "\"><RelativePath>" + std::string(600, 'r') + "</RelativePath><UserName>" +
             std::string(300, 'u') + "</UserName></FTPSite>");
  EXPECT_EQ(std::wstring(site->ftp.szName), std::wstring(259, L'n'));
  EXPECT_EQ(std::wstring(site->ftp.szServer), std::wstring(259, L's'));
  EXPECT_EQ(std::wstring(site->ftp.szRelativePath), std::wstring(519, L'r'));
  EXPECT_EQ(std::wstring(site->ftp.szUserName), std::wstring(259, L'u'));
  ASSERT_EQ(messages().size(), 4u);
  EXPECT_EQ(messages()[0].text.substr(0, 10), L"String sss");
  EXPECT_EQ(messages()[1].text.substr(0, 10), L"String nnn");
}

// --- UNC
// ------------------------------------------------------------------------------------------

// Shows: attribute-name, site-fields
TEST_F(DecodeSites, UncSiteIsReadWhole) {
  const auto site = decode(
      R"(<UNCSite Name="n" Server="srv:81" SecurePort="1"><RelativePath>\p</RelativePath>)"
      "<ShareName>share$</ShareName><DomainName>DOM</DomainName><UserName>u</UserName><Password/>"
      "<UseLoggedonUserAccount>2</UseLoggedonUserAccount></UNCSite>");
  EXPECT_EQ(site->eSiteKind, sitehlp::SITE_KIND_UNC);
  EXPECT_STREQ(site->unc.szName, L"n");
  EXPECT_STREQ(site->unc.szServer, L"srv:81");
  EXPECT_STREQ(site->unc.szRelativePath, L"\\p");
  EXPECT_STREQ(site->unc.szShareName, L"share$");
  EXPECT_STREQ(site->unc.szDomainName, L"DOM");
  EXPECT_STREQ(site->unc.szUserName, L"u");
  EXPECT_STREQ(site->unc.szPassword, L"");
  EXPECT_EQ(site->unc.iUseLoggedonUserAccount, 2);
}

// Shows: format-text
TEST_F(DecodeSites, UncFieldsAreCutAtTheirCapacities) {
  const auto site =
      decode("<UNCSite Name=\"" + std::string(300, 'n') + "\" Server=\"" + std::string(300, 's') +
             "\"><RelativePath>" + std::string(600, 'r') + "</RelativePath><ShareName>" +
             std::string(300, 'h') + "</ShareName><DomainName>" + std::string(300, 'd') +
             "</DomainName><UserName>" + std::string(300, 'u') + "</UserName></UNCSite>");
  EXPECT_EQ(std::wstring(site->unc.szName), std::wstring(259, L'n'));
  EXPECT_EQ(std::wstring(site->unc.szServer), std::wstring(259, L's'));
  EXPECT_EQ(std::wstring(site->unc.szRelativePath), std::wstring(519, L'r'));
  EXPECT_EQ(std::wstring(site->unc.szShareName), std::wstring(259, L'h'));
  EXPECT_EQ(std::wstring(site->unc.szDomainName), std::wstring(259, L'd'));
  EXPECT_EQ(std::wstring(site->unc.szUserName), std::wstring(259, L'u'));
  EXPECT_EQ(messages().size(), 6u);
}

// --- Local
// ----------------------------------------------------------------------------------------

// Shows: attribute-name, site-fields
TEST_F(DecodeSites, LocalSiteIsReadWhole) {
  const auto site = decode(
      R"(<LocalSite Name="n" Server="127.0.0.1"><DomainName>DOM</DomainName><UserName>u</UserName>)"
      "<Password/><UseLoggedonUserAccount>-1</UseLoggedonUserAccount><RelativePath>/p"
      "</RelativePath><ShareName>no</ShareName></LocalSite>");
  EXPECT_EQ(site->eSiteKind, sitehlp::SITE_KIND_LOCAL);
  EXPECT_STREQ(site->local.szName, L"n");
  EXPECT_STREQ(site->local.szRelativePath, L"/p");
  EXPECT_STREQ(site->local.szDomainName, L"DOM");
  EXPECT_STREQ(site->local.szUserName, L"u");
  EXPECT_STREQ(site->local.szPassword, L"");
  EXPECT_EQ(site->local.iUseLoggedonUserAccount, -1);
}

// Shows: format-text
TEST_F(DecodeSites, LocalFieldsAreCutAtTheirCapacities) {
  const auto site =
      decode("<LocalSite Name=\"" + std::string(300, 'n') + "\"><RelativePath>" +
             std::string(600, 'r') + "</RelativePath><DomainName>" + std::string(300, 'd') +
             "</DomainName><UserName>" + std::string(300, 'u') + "</UserName></LocalSite>");
  EXPECT_EQ(std::wstring(site->local.szName), std::wstring(259, L'n'));
  EXPECT_EQ(std::wstring(site->local.szRelativePath), std::wstring(519, L'r'));
  EXPECT_EQ(std::wstring(site->local.szDomainName), std::wstring(259, L'd'));
  EXPECT_EQ(std::wstring(site->local.szUserName), std::wstring(259, L'u'));
  EXPECT_EQ(messages().size(), 4u);
}

// --- All of them
// ----------------------------------------------------------------------------------

TEST_F(DecodeSites, OrderOfTheChildrenDoesNotMatter) {
  const auto site = http("",
                         "<Password/><UserName>u</UserName><Other>x</Other>text<UseAuth>1</UseAuth>"
                         "<!-- c --><RelativePath>/p</RelativePath>");
  EXPECT_STREQ(site->http.szRelativePath, L"/p");
  EXPECT_EQ(site->http.iUseAuth, 1);
  EXPECT_STREQ(site->http.szUserName, L"u");
}

// Shows: repeated-child
TEST_F(DecodeSites, LaterChildReplacesTheEarlier) {
  const auto site = http("",
                         "<UserName>a much longer first</UserName><UserName>b</UserName>"
                         "<UseAuth>1</UseAuth><UseAuth/><RelativePath>/p</RelativePath>"
                         "<RelativePath/>");
  EXPECT_EQ(std::wstring(site->http.szUserName, 22), L"b" + std::wstring(21, L'\0'));
  EXPECT_EQ(site->http.iUseAuth, 0);
  EXPECT_STREQ(site->http.szRelativePath, L"");
}

// Shows: exact-names
TEST_F(DecodeSites, ChildrenAreTakenByTheirExactName) {
  const auto site = http("",
                         "<username>a</username><ns:UserName>b</ns:UserName>"
                         "<Other><UserName>c</UserName></Other>");
  EXPECT_STREQ(site->http.szUserName, L"");
}

TEST_F(DecodeSites, AttributesAreNoChildrenAndChildrenNoAttributes) {
  const auto site = http(R"(UserName="a" RelativePath="/p" UseAuth="1")",
                         "<Name>n</Name><Server>s:1</Server><SecurePort>1</SecurePort>");
  EXPECT_STREQ(site->http.szUserName, L"");
  EXPECT_STREQ(site->http.szRelativePath, L"");
  EXPECT_EQ(site->http.iUseAuth, 0);
  EXPECT_STREQ(site->http.szName, L"");
  EXPECT_STREQ(site->http.szServer, L"");
  EXPECT_EQ(site->http.uSecurePort, 0u);
}

// Shows: macro
TEST_F(DecodeSites, TextIsKeptAsTheDocumentHoldsIt) {
  const auto site = http(R"(Name="&lt;A&gt; &amp; %%lt%%B%%gt%%")",
                         "<RelativePath>&lt;PATH&gt;/%%lt%%x%%gt%%</RelativePath><UserName>  u "
                         "<![CDATA[<v>]]>\n</UserName>");
  EXPECT_STREQ(site->http.szName, L"<A> & %%lt%%B%%gt%%");
  EXPECT_STREQ(site->http.szRelativePath, L"<PATH>/%%lt%%x%%gt%%");
  EXPECT_STREQ(site->http.szUserName, L"  u <v>\n");
}

TEST_F(DecodeSites, EveryScriptIsKept) {
  const auto site = http("Name=\"\u00FC \u65E5\u672C\u8A9E \u0645\U0001F600\"");
  EXPECT_STREQ(site->http.szName, L"\u00FC \u65E5\u672C\u8A9E \u0645\U0001F600");
}

}  // namespace
