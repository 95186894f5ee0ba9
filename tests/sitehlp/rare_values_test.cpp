#include <gmock/gmock.h>

#include <algorithm>
#include <cstring>

#include "sitehlp/write/element_writer.h"
#include "tests/sitehlp/sites_helper_fixture.h"

// Values and lists that are longer than the usual buffers, and other rare ones.
namespace {

using testing::IsEmpty;

class RareValues : public test::SitesHelperTest {
 protected:
  test::ListPtr excluding(const std::vector<std::string>& hosts) {
    std::string children;
    for (const std::string& host : hosts) children += "<ExclusionHost>" + host + "</ExclusionHost>";
    return decode("<ProxyConfigList><ProxyConfig><ExclusionList>" + children +
                  "</ExclusionList></ProxyConfig></ProxyConfigList>");
  }
};

TEST_F(RareValues, ThePortBehindAHostOfAnyLengthIsRead) {
  for (const std::size_t length : {258U, 259U, 260U, 515U, 516U, 520U, 5000U}) {
    const std::string host(length, 'h');
    const std::wstring kept(std::min<std::size_t>(length, 259), L'h');
    const auto http = decode("<HttpSite Server=\"" + host + ":8443\"/>");
    EXPECT_EQ(http->http.szServer, kept);
    EXPECT_EQ(http->http.uServerPort, 8443U) << length;
    const auto ftp = decode("<FTPSite Server=\"" + host + "\"/>");
    EXPECT_EQ(ftp->ftp.szServer, kept);
    EXPECT_EQ(ftp->ftp.uServerPort, 80U) << length;
  }
}

TEST_F(RareValues, AKeystoneSiteTakesItsDnsNameWhateverTheLengthOfItsServer) {
  const std::string host(1000, 'h');
  const auto site = decode("<KeystoneSite Server=\"" + host + ":1\" ServerDNS=\"dns:2\"/>");
  EXPECT_STREQ(site->http.szServer, L"dns");
  EXPECT_EQ(site->http.uServerPort, 2U);
}

TEST_F(RareValues, ASecurePortWithLeadingZerosOrSpacesIsRead) {
  for (const std::size_t length : {60U, 61U, 63U, 64U, 1000U}) {
    for (const char filler : {'0', ' '}) {
      const auto site = decode("<HttpSite SecurePort=\"" + std::string(length, filler) + "443\"/>");
      EXPECT_EQ(site->http.uSecurePort, 443U) << length;
    }
  }
}

TEST_F(RareValues, AFullExclusionListTakesNothingMore) {
  const std::string first(2000, 'a');
  const std::string second(1998, 'b');
  const auto full = excluding({first, second});
  const auto more = excluding({first, second, "", "c"});
  EXPECT_EQ(std::memcmp(&more->proxy, &full->proxy, sizeof full->proxy), 0);
  EXPECT_EQ(messages().size(), 2U) << "one for each host that was dropped";
}

TEST_F(RareValues, AHostIsDroppedJustTheSameWhenNothingIsLogged) {
  const std::string tooLong(4000, 'a');
  const auto expected = excluding({tooLong, "b"});
  agent.settings.logLevel = LogLevel::Off;
  agent.apply();
  agent.clearLog();
  const auto site = excluding({tooLong, "b"});
  EXPECT_EQ(std::memcmp(&site->proxy, &expected->proxy, sizeof expected->proxy), 0);
  EXPECT_STREQ(site->proxy.szExclusionList, L"b");
  EXPECT_THAT(agent.log(), IsEmpty());
}

TEST_F(RareValues, ASecondSiteElementInAProxyListLeavesNothingOfTheFirst) {
  for (const char* kind : {"HttpSite", "VestaSite", "KeystoneSite", "FTPSite", "UNCSite"}) {
    const auto element = [&](const std::string& attributes, const std::string& user) {
      return std::string("<") + kind + " " + attributes + "><UserName>" + user + "</UserName></" +
             kind + ">";
    };
    const std::string first =
        element(R"(Name="a longer name" Server="longer.example:81" ServerName="LONGER:82")"
                R"( ServerIP="10.20.30.40:83" Version="5.6.7" SecurePort="444")",
                "a longer user");
    const std::string second =
        element(R"(Name="n" Server="s" ServerName="N" ServerIP="::1" Version="5")", "u");
    const auto both = decode("<ProxyConfigList>" + first + second + "</ProxyConfigList>");
    const auto alone = decode("<ProxyConfigList>" + second + "</ProxyConfigList>");
    EXPECT_EQ(std::memcmp(&both->proxy, &alone->proxy, sizeof alone->proxy), 0) << kind;
  }
}

TEST_F(RareValues, AnUnknownChildOfAShareIsPassedOver) {
  const auto site = decode(
      R"(<UNCSite Name="n" Server="s"><Unknown>x</Unknown><ShareName>h</ShareName></UNCSite>)");
  const auto without = decode(R"(<UNCSite Name="n" Server="s"><ShareName>h</ShareName></UNCSite>)");
  EXPECT_EQ(std::memcmp(&site->unc, &without->unc, sizeof site->unc), 0);
  EXPECT_STREQ(site->unc.szShareName, L"h");
}

TEST_F(RareValues, AnAttributeOfNoElementIsNotWritten) {
  sitehlp::TreeElementWriter writer(AdvXMLParser::Element(), 0);
  writer.open(L"HttpSite");
  writer.addAttribute(L"Name", L"value");
  writer.close();
  EXPECT_TRUE(writer.added().IsNull());
  EXPECT_THAT(messages(), IsEmpty());
}

}  // namespace
