#include <gmock/gmock.h>

#include <cstring>
#include <string>
#include <vector>

#include "tests/sitehlp/sites_helper_fixture.h"

namespace {

using sitehlp::tag_ProxySite;
using test::LogLine;
using testing::ElementsAre;
using testing::IsEmpty;

class DecodeProxy : public test::SitesHelperTest {
 protected:
  test::ListPtr proxy(const std::string& attributes, const std::string& children = "") {
    return decode("<ProxyConfigList><ProxyConfig " + attributes + ">" + children +
                  "</ProxyConfig></ProxyConfigList>");
  }
  test::ListPtr withHosts(const std::vector<std::size_t>& lengths) {
    std::string children;
    char letter = 'a';
    for (const std::size_t length : lengths) {
      children += "<ExclusionHost>" + std::string(length, letter++) + "</ExclusionHost>";
    }
    return proxy("", "<ExclusionList>" + children + "</ExclusionList>");
  }
  static LogLine dropped(const std::wstring& kept) {
    return detail(L"Exclusion list of proxy settings is truncated to " + kept +
                  L" in ReadSiteFromSiteList");
  }
};

// --- ProxyConfig
// ----------------------------------------------------------------------------------

// Shows: site-fields
TEST_F(DecodeProxy, IsReadWhole) {
  const auto site =
      proxy(R"(Name="p" Local="1" HttpProxyServer="h.example" HttpProxyPort="3128")"
            R"( FtpProxyServer="f.example" FtpProxyPort="2121" UseIEConfig="1")",
            "<AllowUserToConfigureProxy>1</AllowUserToConfigureProxy>"
            "<BypassLocalAddress>1</BypassLocalAddress><FtpUseAuth>1</FtpUseAuth>"
            "<HttpUseAuth>1</HttpUseAuth><HttpProxyUser>hu</HttpProxyUser>"
            "<FtpProxyUser>fu</FtpProxyUser><AlternateFtpUseAuth>1</AlternateFtpUseAuth>"
            "<AlternateHttpUseAuth>1</AlternateHttpUseAuth>"
            "<AlternateHttpProxyUser>ahu</AlternateHttpProxyUser>"
            "<AlternateFtpProxyUser>afu</AlternateFtpProxyUser>"
            "<ExclusionList><ExclusionHost>x</ExclusionHost><ExclusionHost>y</ExclusionHost>"
            "</ExclusionList>");
  EXPECT_EQ(site->eSiteKind, sitehlp::SITE_KIND_PROXY);
  EXPECT_EQ(site->bVestaSite, 0);
  EXPECT_EQ(site->bLocal, 0);
  const tag_ProxySite& data = site->proxy;
  EXPECT_STREQ(data.szElement, L"FtpHttp");
  EXPECT_STREQ(data.szName, L"p");
  EXPECT_STREQ(data.szHttpProxyServer, L"h.example");
  EXPECT_EQ(data.iHttpProxyPort, 3128);
  EXPECT_STREQ(data.szFtpProxyServer, L"f.example");
  EXPECT_EQ(data.iFtpProxyPort, 2121);
  EXPECT_EQ(data.bAllowUserToConfigureProxy, 1);
  EXPECT_EQ(data.bBypassLocalAddress, 1);
  EXPECT_EQ(data.bUseIEConfig, 1);
  EXPECT_EQ(data.iExclusionCount, 2);
  EXPECT_STREQ(data.szExclusionList, L"x;y");
  EXPECT_EQ(data.bFtpUseAuth, 1);
  EXPECT_EQ(data.bHttpUseAuth, 1);
  EXPECT_STREQ(data.szHttpProxyUser, L"hu");
  EXPECT_STREQ(data.szFtpProxyUser, L"fu");
  EXPECT_EQ(data.bAlternateFtpUseAuth, 1);
  EXPECT_EQ(data.bAlternateHttpUseAuth, 1);
  EXPECT_STREQ(data.szAlternateHttpProxyUser, L"ahu");
  EXPECT_STREQ(data.szAlternateFtpProxyUser, L"afu");
  EXPECT_THAT(messages(), IsEmpty());
}

TEST_F(DecodeProxy, ElementTellsWhichProxiesAreGiven) {
  EXPECT_STREQ(proxy("")->proxy.szElement, L"");
  EXPECT_STREQ(proxy(R"(HttpProxyServer="h")")->proxy.szElement, L"HttpSite");
  EXPECT_STREQ(proxy(R"(FtpProxyServer="f")")->proxy.szElement, L"FTPSite");
  EXPECT_STREQ(proxy(R"(HttpProxyServer="h" FtpProxyServer="f")")->proxy.szElement, L"FtpHttp");
  EXPECT_STREQ(proxy(R"(HttpProxyServer="" FtpProxyServer="f")")->proxy.szElement, L"FTPSite");
}

TEST_F(DecodeProxy, PortOfAProxyThatIsNotGivenIsNotRead) {
  const auto site = proxy(R"(HttpProxyPort="1" FtpProxyServer="" FtpProxyPort="2")");
  EXPECT_EQ(site->proxy.iHttpProxyPort, 0);
  EXPECT_EQ(site->proxy.iFtpProxyPort, 0);
}

TEST_F(DecodeProxy, PortIsTheNumberAsItComes) {
  const auto port = [this](const std::string& text) {
    return proxy("HttpProxyServer=\"h:1\" HttpProxyPort=\"" + text + "\"")->proxy.iHttpProxyPort;
  };
  EXPECT_EQ(port("3128"), 3128);
  EXPECT_EQ(port("-1"), -1);
  EXPECT_EQ(port(" 80x"), 80);
  EXPECT_EQ(port("x"), 0);
  EXPECT_EQ(port(""), 0);
  EXPECT_EQ(port("2147483647"), 2147483647);
  EXPECT_STREQ(proxy(R"(HttpProxyServer="h:1")")->proxy.szHttpProxyServer, L"h:1");
  EXPECT_EQ(proxy(R"(FtpProxyServer="f" FtpProxyPort="-7")")->proxy.iFtpProxyPort, -7);
}

TEST_F(DecodeProxy, FlagsAreReducedToOneAndZero) {
  const struct {
    const char* name;
    std::int32_t tag_ProxySite::*field;
  } flags[] = {{"AllowUserToConfigureProxy", &tag_ProxySite::bAllowUserToConfigureProxy},
               {"BypassLocalAddress", &tag_ProxySite::bBypassLocalAddress},
               {"FtpUseAuth", &tag_ProxySite::bFtpUseAuth},
               {"HttpUseAuth", &tag_ProxySite::bHttpUseAuth},
               {"AlternateFtpUseAuth", &tag_ProxySite::bAlternateFtpUseAuth},
               {"AlternateHttpUseAuth", &tag_ProxySite::bAlternateHttpUseAuth}};
  const std::pair<const char*, int> values[] = {{"1", 1},    {"0", 0}, {"5", 1},  {"-1", 1},
                                                {"true", 0}, {"", 0},  {" 2 ", 1}};
  for (const auto& flag : flags) {
    for (const auto& value : values) {
      const auto site =
          proxy("", std::string("<") + flag.name + ">" + value.first + "</" + flag.name + ">");
      for (const auto& other : flags) {
        EXPECT_EQ(site->proxy.*other.field, other.field == flag.field ? value.second : 0)
            << flag.name << "=" << value.first << ": " << other.name;
      }
    }
  }
}

TEST_F(DecodeProxy, FlagPassesThroughAFieldOfItsCapacity) {
  const std::string zeros(258, '0');
  EXPECT_EQ(proxy("", "<HttpUseAuth>" + zeros + "1</HttpUseAuth>")->proxy.bHttpUseAuth, 1);
  EXPECT_THAT(messages(), IsEmpty());
  EXPECT_EQ(proxy("", "<HttpUseAuth>" + zeros + "01</HttpUseAuth>")->proxy.bHttpUseAuth, 0);
  const std::wstring kept(259, L'0');
  EXPECT_THAT(messages(), ElementsAre(detail(L"String " + kept + L"1 is truncated to " + kept +
                                             L" in CopyWStr")));
}

TEST_F(DecodeProxy, EveryFlagChildPassesThroughSuchAField) {
  const std::string value = std::string(259, '0') + "1";
  for (const char* name : {"AllowUserToConfigureProxy", "BypassLocalAddress", "FtpUseAuth",
                           "HttpUseAuth", "AlternateFtpUseAuth", "AlternateHttpUseAuth"}) {
    agent.clearLog();
    const auto site = proxy("", std::string("<") + name + ">" + value + "</" + name + ">");
    EXPECT_EQ(messages().size(), 1u) << name;
    const tag_ProxySite& data = site->proxy;
    EXPECT_EQ(data.bAllowUserToConfigureProxy + data.bBypassLocalAddress + data.bFtpUseAuth +
                  data.bHttpUseAuth + data.bAlternateFtpUseAuth + data.bAlternateHttpUseAuth,
              0)
        << name;
  }
}

TEST_F(DecodeProxy, UseIEConfigIsAFlagOfAnyLength) {
  EXPECT_EQ(proxy(R"(UseIEConfig="1")")->proxy.bUseIEConfig, 1);
  EXPECT_EQ(proxy(R"(UseIEConfig="7")")->proxy.bUseIEConfig, 1);
  EXPECT_EQ(proxy(R"(UseIEConfig="0")")->proxy.bUseIEConfig, 0);
  EXPECT_EQ(proxy(R"(UseIEConfig="yes")")->proxy.bUseIEConfig, 0);
  EXPECT_EQ(proxy(R"(UseIEConfig="")")->proxy.bUseIEConfig, 0);
  EXPECT_EQ(proxy("UseIEConfig=\"" + std::string(300, '0') + "1\"")->proxy.bUseIEConfig, 1);
  EXPECT_EQ(proxy("", "<UseIEConfig>1</UseIEConfig>")->proxy.bUseIEConfig, 0);
  EXPECT_THAT(messages(), IsEmpty());
}

TEST_F(DecodeProxy, FieldsAreCutAtTheirCapacities) {
  const std::string text(260, 'x');
  const std::wstring kept(259, L'x');
  const auto site = proxy(
      "Name=\"" + text + "\" HttpProxyServer=\"" + text + "\" FtpProxyServer=\"" + text + "\"",
      "<HttpProxyUser>" + text + "</HttpProxyUser><FtpProxyUser>" + text +
          "</FtpProxyUser><AlternateHttpProxyUser>" + text +
          "</AlternateHttpProxyUser><AlternateFtpProxyUser>" + text + "</AlternateFtpProxyUser>");
  const tag_ProxySite& data = site->proxy;
  for (const wchar_t* field :
       {data.szName, data.szHttpProxyServer, data.szFtpProxyServer, data.szHttpProxyUser,
        data.szFtpProxyUser, data.szAlternateHttpProxyUser, data.szAlternateFtpProxyUser}) {
    EXPECT_EQ(std::wstring(field), kept);
  }
  EXPECT_EQ(messages(), std::vector<LogLine>(7, detail(L"String " + kept + L"x is truncated to " +
                                                       kept + L" in CopyWStr")));
}

// Shows: repeated-child
TEST_F(DecodeProxy, LaterChildReplacesTheEarlier) {
  const auto site = proxy("",
                          "<HttpProxyUser>long one</HttpProxyUser><HttpProxyUser>b"
                          "</HttpProxyUser><HttpUseAuth>1</HttpUseAuth><HttpUseAuth>0"
                          "</HttpUseAuth>");
  EXPECT_STREQ(site->proxy.szHttpProxyUser, L"b");
  EXPECT_EQ(site->proxy.bHttpUseAuth, 0);
}

TEST_F(DecodeProxy, LocalAddressRangesAndOtherChildrenAreIgnored) {
  const auto site = proxy(
      "",
      "<LocalAddrRangeList><LocalAddrRange><IPAddrStart>1.1.1.1</IPAddrStart><IPAddrEnd>2.2.2.2"
      "</IPAddrEnd><UseIPMask>1</UseIPMask></LocalAddrRange></LocalAddrRangeList><Other/>");
  const test::ListPtr empty(test::newSite(sitehlp::SITE_KIND_PROXY));
  EXPECT_EQ(std::memcmp(&site->proxy, &empty->proxy, sizeof(tag_ProxySite)), 0);
}

// --- The exclusion list
// ---------------------------------------------------------------------------

// Shows: exclusion-hosts
TEST_F(DecodeProxy, HostsAreJoinedInTheirOrder) {
  const auto site = proxy("",
                          "<ExclusionList><ExclusionHost>a</ExclusionHost><Other>no</Other>"
                          "<ExclusionHost> b </ExclusionHost></ExclusionList>"
                          "<ExclusionList><ExclusionHost>c</ExclusionHost></ExclusionList>"
                          "<ExclusionHost>no</ExclusionHost>");
  EXPECT_STREQ(site->proxy.szExclusionList, L"a; b ;c");
  EXPECT_EQ(site->proxy.iExclusionCount, 3);
}

TEST_F(DecodeProxy, EmptyHostsCount) {
  const auto site = withHosts({0, 1, 0});
  EXPECT_STREQ(site->proxy.szExclusionList, L";b;");
  EXPECT_EQ(site->proxy.iExclusionCount, 3);
}

TEST_F(DecodeProxy, EmptyExclusionListHoldsNothing) {
  const auto site = withHosts({});
  EXPECT_STREQ(site->proxy.szExclusionList, L"");
  EXPECT_EQ(site->proxy.iExclusionCount, 0);
}

TEST_F(DecodeProxy, FirstHostIsTestedWithADelimiter) {
  const auto fits = withHosts({3998});
  EXPECT_EQ(std::wstring(fits->proxy.szExclusionList), std::wstring(3998, L'a'));
  EXPECT_EQ(fits->proxy.iExclusionCount, 1);
  EXPECT_THAT(messages(), IsEmpty());
  for (const std::size_t length : {3999u, 4000u, 4001u, 9000u}) {
    agent.clearLog();
    const auto tooLong = withHosts({length});
    EXPECT_STREQ(tooLong->proxy.szExclusionList, L"") << length;
    EXPECT_EQ(tooLong->proxy.iExclusionCount, 0) << length;
    EXPECT_THAT(messages(), ElementsAre(dropped(L""))) << length;
  }
}

// Shows: exclusion-hosts, dropped-host
TEST_F(DecodeProxy, HostsTogetherReachThreeThousandNineHundredAndNinetyNine) {
  const auto fits = withHosts({2000, 1998});
  EXPECT_EQ(std::wstring(fits->proxy.szExclusionList),
            std::wstring(2000, L'a') + L";" + std::wstring(1998, L'b'));
  EXPECT_EQ(fits->proxy.iExclusionCount, 2);
  EXPECT_THAT(messages(), IsEmpty());
  const auto tooLong = withHosts({2000, 1999});
  EXPECT_EQ(std::wstring(tooLong->proxy.szExclusionList), std::wstring(2000, L'a'));
  EXPECT_EQ(tooLong->proxy.iExclusionCount, 1);
  EXPECT_THAT(messages(), ElementsAre(dropped(std::wstring(2000, L'a'))));
}

// Shows: dropped-host
TEST_F(DecodeProxy, ShorterHostIsTakenBehindADroppedOne) {
  const auto site = withHosts({2000, 3000, 1000, 2000, 10});
  const std::wstring first = std::wstring(2000, L'a');
  const std::wstring second = first + L";" + std::wstring(1000, L'c');
  EXPECT_EQ(std::wstring(site->proxy.szExclusionList), second + L";" + std::wstring(10, L'e'));
  EXPECT_EQ(site->proxy.iExclusionCount, 3);
  EXPECT_THAT(messages(), ElementsAre(dropped(first), dropped(second)));
}

TEST_F(DecodeProxy, DroppedFirstHostLeavesNoDelimiter) {
  const auto site = withHosts({4000, 1});
  EXPECT_STREQ(site->proxy.szExclusionList, L"b");
  EXPECT_EQ(site->proxy.iExclusionCount, 1);
}

TEST_F(DecodeProxy, ManyHostsFillTheListToTheLastThatFits) {
  std::string children;
  std::wstring expected;
  int kept = 0;
  for (int i = 0; i < 1000; ++i) {
    const std::string host = "host" + std::to_string(1000 + i);
    children += "<ExclusionHost>" + host + "</ExclusionHost>";
    if (expected.size() + host.size() + 1 < 4000) {
      expected += (kept++ == 0 ? L"" : L";") + test::wide(host);
    }
  }
  const auto site = proxy("", "<ExclusionList>" + children + "</ExclusionList>");
  EXPECT_EQ(std::wstring(site->proxy.szExclusionList), expected);
  EXPECT_EQ(site->proxy.iExclusionCount, kept);
  EXPECT_EQ(messages(),
            std::vector<LogLine>(static_cast<std::size_t>(1000 - kept), dropped(expected)));
}

// --- ProxyConfigList
// ------------------------------------------------------------------------------

// Shows: last-proxy
TEST_F(DecodeProxy, TheLastProxyConfigWins) {
  const auto site =
      decode(R"(<ProxyConfigList><ProxyConfig Name="first" HttpProxyServer="h"><HttpProxyUser>u)"
             R"(</HttpProxyUser></ProxyConfig><ProxyConfig Name="second"/></ProxyConfigList>)");
  EXPECT_STREQ(site->proxy.szName, L"second");
  EXPECT_STREQ(site->proxy.szHttpProxyServer, L"");
  EXPECT_STREQ(site->proxy.szHttpProxyUser, L"");
  EXPECT_STREQ(site->proxy.szElement, L"");
}

TEST_F(DecodeProxy, CommonAttributesAreThoseOfTheProxyConfigList) {
  const auto site = decode(R"(<ProxyConfigList Type="mirror" Enabled="1" Local="1" Order="9">)"
                           R"(<ProxyConfig Type="x" Enabled="0" Order="1"/></ProxyConfigList>)");
  EXPECT_STREQ(site->szType, L"mirror");
  EXPECT_EQ(site->bMirror, 1);
  EXPECT_EQ(site->bEnabled, 1);
  EXPECT_EQ(site->bLocal, 1);
  EXPECT_EQ(site->iOrder, 9);
}

// Shows: system-proxy
TEST_F(DecodeProxy, EmptyListTakesUseIEConfigFromItself) {
  const auto useIE = [this](const std::string& element) {
    const auto site = decode(element);
    EXPECT_EQ(site->eSiteKind, sitehlp::SITE_KIND_PROXY);
    return site->proxy.bUseIEConfig;
  };
  EXPECT_EQ(useIE(R"(<ProxyConfigList UseIEConfig="1"/>)"), 1);
  EXPECT_EQ(useIE(R"(<ProxyConfigList UseIEConfig="2"> text </ProxyConfigList>)"), 1);
  EXPECT_EQ(useIE(R"(<ProxyConfigList UseIEConfig="0"/>)"), 0);
  EXPECT_EQ(useIE(R"(<ProxyConfigList UseIEConfig="yes"/>)"), 0);
  EXPECT_EQ(useIE("<ProxyConfigList/>"), 0);
}

// Shows: system-proxy
TEST_F(DecodeProxy, ListWithAChildDoesNotTakeUseIEConfigFromItself) {
  EXPECT_EQ(decode(R"(<ProxyConfigList UseIEConfig="1"><ProxyConfig/></ProxyConfigList>)")
                ->proxy.bUseIEConfig,
            0);
  const Read other = read(
      test::documentWithSites(R"(<ProxyConfigList UseIEConfig="1"><Other/></ProxyConfigList>)"));
  EXPECT_EQ(other.code, -1);
  ASSERT_NE(other.list, nullptr);
  EXPECT_EQ(other.list->proxy.bUseIEConfig, 0);
}

TEST_F(DecodeProxy, UnknownChildLeavesTheDataOfTheOneBefore) {
  const Read result = read(test::documentWithSites(
      R"(<ProxyConfigList><ProxyConfig Name="p"/><Other/></ProxyConfigList>)"));
  EXPECT_EQ(result.code, -1);
  ASSERT_NE(result.list, nullptr);
  EXPECT_STREQ(result.list->proxy.szName, L"p");
}

TEST_F(DecodeProxy, SiteElementInTheListIsDecodedByItsOwnName) {
  const auto http =
      decode(R"(<ProxyConfigList><VestaSite Name="v" Server="s:81"/></ProxyConfigList>)");
  EXPECT_EQ(http->eSiteKind, sitehlp::SITE_KIND_PROXY);
  EXPECT_EQ(http->bVestaSite, 0);
  EXPECT_STREQ(http->http.szElement, L"VestaSite");
  EXPECT_STREQ(http->http.szName, L"v");
  EXPECT_EQ(http->http.uServerPort, 81u);
  EXPECT_STREQ(decode(R"(<ProxyConfigList><FTPSite Name="f"/></ProxyConfigList>)")->ftp.szName,
               L"f");
  EXPECT_STREQ(decode(R"(<ProxyConfigList><UNCSite Name="u"/></ProxyConfigList>)")->unc.szName,
               L"u");
  EXPECT_STREQ(decode(R"(<ProxyConfigList><LocalSite Name="l"/></ProxyConfigList>)")->local.szName,
               L"l");
}

// Shows: site-in-proxy-list
TEST_F(DecodeProxy, SiteElementInTheListReplacesNoMoreThanItsOwnRecord) {
  const std::string config =
      R"(<ProxyConfig Name="p"><FtpProxyUser>fu</FtpProxyUser><AlternateFtpProxyUser>afu)"
      "</AlternateFtpProxyUser></ProxyConfig>";
  const std::pair<const char*, std::size_t> elements[] = {
      {"HttpSite", sizeof(sitehlp::tag_HttpSite)},
      {"FTPSite", sizeof(sitehlp::tag_FtpSite)},
      {"UNCSite", sizeof(sitehlp::tag_UncSite)},
      {"LocalSite", sizeof(sitehlp::tag_LocalSite)}};
  const auto alone = decode("<ProxyConfigList>" + config + "</ProxyConfigList>");
  for (const auto& element : elements) {
    const std::string foreign = std::string("<") + element.first + R"( Name="foreign"/>)";
    const auto mixed = decode("<ProxyConfigList>" + config + foreign + "</ProxyConfigList>");
    const auto other = decode("<ProxyConfigList>" + foreign + "</ProxyConfigList>");
    const auto* mixedData = reinterpret_cast<const unsigned char*>(&mixed->proxy);
    EXPECT_EQ(std::memcmp(mixedData, &other->proxy, element.second), 0) << element.first;
    EXPECT_EQ(std::memcmp(mixedData + element.second,
                          reinterpret_cast<const unsigned char*>(&alone->proxy) + element.second,
                          sizeof(tag_ProxySite) - element.second),
              0)
        << element.first;
    EXPECT_STREQ(mixed->proxy.szAlternateFtpProxyUser, L"afu") << element.first;
  }
}

TEST_F(DecodeProxy, ProxyConfigBehindASiteElementReplacesItWhole) {
  const auto site = decode(
      R"(<ProxyConfigList><HttpSite Name="h" Server="s"/><ProxyConfig Name="p"/></ProxyConfigList>)");
  const auto alone = decode(R"(<ProxyConfigList><ProxyConfig Name="p"/></ProxyConfigList>)");
  EXPECT_EQ(std::memcmp(&site->proxy, &alone->proxy, sizeof(tag_ProxySite)), 0);
}

}  // namespace
