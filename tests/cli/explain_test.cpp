#include "tests/cli/edit_fixture.h"
#include "tests/cli/json_report.h"

namespace test {
namespace {

using testing::AllOf;
using testing::Each;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

constexpr const char* c_on = "Type=\"repository\" Enabled=\"1\" Server=\"h.example\"";

std::string on(const std::string& name, const std::string& order) {
  return siteElement("HttpSite", name, order, c_on);
}

std::string ofType(const std::string& type, const std::string& name, const std::string& order) {
  return siteElement("HttpSite", name, order,
                     "Type=\"" + type + "\" Enabled=\"1\" Server=\"h.example\"");
}

class CliExplain : public CliTest {
 protected:
  JsonReport explain(const std::string& sites, int status = 0) {
    const Output output = sitelist({"explain", "--json", write("list.xml", document(sites))});
    EXPECT_EQ(output.status, status) << output.err;
    return readReport(output.out);
  }

  // The names of the sites that are tried, in that order.
  static std::vector<std::string> tried(const JsonReport& report) {
    std::vector<std::string> names;
    for (const auto& row : report.rows) {
      if (row.at("tried") == "false") continue;
      names.push_back(row.at("name"));
      EXPECT_EQ(row.at("place"), std::to_string(names.size()));
    }
    return names;
  }

  static JsonReport::Record site(const JsonReport& report, const std::string& name) {
    for (const auto& row : report.rows) {
      if (row.at("name") == name) return row;
    }
    ADD_FAILURE() << "no site " << name;
    return {};
  }
};

TEST_F(CliExplain, TriesSitesByAscendingOrderAndEqualOnesAsTheListHasThem) {
  const JsonReport report =
      explain(on("last", "20") + on("tie one", "3") + on("first", "-1") + on("tie two", "3"));
  EXPECT_THAT(tried(report), ElementsAre("first", "tie one", "tie two", "last"));
  EXPECT_THAT(site(report, "first").at("reason"),
              AllOf(HasSubstr("order -1"), HasSubstr("lowest")));
  EXPECT_THAT(site(report, "tie one").at("reason"), Not(HasSubstr("same")));
  EXPECT_THAT(site(report, "tie two").at("reason"),
              AllOf(HasSubstr("order 3"), HasSubstr("the site before has the same order")));
}

TEST_F(CliExplain, TriesAFallbackLastUnlessItHasAnOrder) {
  const JsonReport report =
      explain(ofType("Fallback", "spare", "") + on("a", "9") + ofType("fallback", "early", "1"));
  EXPECT_THAT(tried(report), ElementsAre("early", "a", "spare"));
  EXPECT_THAT(site(report, "spare").at("reason"), HasSubstr("has the order 65535"));
  EXPECT_THAT(site(report, "early").at("reason"), HasSubstr("fallback with the order 1"));
}

TEST_F(CliExplain, SaysWhyASiteIsNotTried) {
  const JsonReport report = explain(
      siteElement("FTPSite", "off", "1", "Enabled=\"0\"") + ofType("mirror", "mirror", "2") +
      siteElement("WhatSite", "what", "3", "Enabled=\"1\"") + on("tried", "4"));
  EXPECT_THAT(tried(report), ElementsAre("tried"));
  EXPECT_THAT(site(report, "off").at("reason"), HasSubstr("disabled"));
  EXPECT_THAT(site(report, "mirror").at("reason"), HasSubstr("mirror"));
  EXPECT_EQ(site(report, "mirror").count("place"), 0U);
  ASSERT_EQ(report.rows.size(), 4U);
  EXPECT_THAT(report.column("reason"), testing::Contains(HasSubstr("unknown kind")));
}

TEST_F(CliExplain, AnUnknownElementAtTheEndIsAnInvalidDocument) {
  const Output output = sitelist(
      {"explain", write("list.xml", document(on("a", "1") + siteElement("WhatSite", "w", "2")))});
  EXPECT_EQ(output.status, 3);
  EXPECT_THAT(output.err, HasSubstr("unknown kind"));
}

TEST_F(CliExplain, TellsSitesThatOnlyThisAgentKnows) {
  const std::string path = write(
      "list.xml", document(siteElement("LocalSite", "mine", "1", "Enabled=\"1\" Local=\"1\"") +
                           on("every agent's", "2")));
  const std::string out = sitelist({"explain", path}).out;
  const std::size_t second = out.find("\n2. ");
  EXPECT_THAT(out.substr(0, second), HasSubstr("only this agent uses it"));
  EXPECT_THAT(out.substr(second), Not(HasSubstr("only this agent uses it")));
}

TEST_F(CliExplain, HavingNoSiteToTryIsANegativeAnswer) {
  EXPECT_THAT(explain("", 1).rows, IsEmpty());
  const JsonReport report = explain(ofType("mirror", "mirror", ""), 1);
  EXPECT_THAT(report.column("tried"), ElementsAre("false"));
}

// Returns proxy settings for all hosts except the excluded ones.
std::string proxies(const std::string& attributes, const std::string& children = "") {
  return "<ProxyConfigList><ProxyConfig Name=\"p\" " + attributes + ">" + children +
         "</ProxyConfig></ProxyConfigList>";
}
constexpr const char* c_http = "HttpProxyServer=\"web.example\" HttpProxyPort=\"3128\"";
constexpr const char* c_both =
    "HttpProxyServer=\"web.example\" HttpProxyPort=\"3128\" "
    "FtpProxyServer=\"ftp.example\" FtpProxyPort=\"2121\"";

std::string excluding(const std::vector<std::string>& hosts) {
  std::string text;
  for (const std::string& host : hosts) text += "<ExclusionHost>" + host + "</ExclusionHost>";
  return "<ExclusionList>" + text + "</ExclusionList>";
}

std::string everyKind() {
  std::string text;
  for (const char* element :
       {"VestaSite", "KeystoneSite", "HttpSite", "FTPSite", "UNCSite", "LocalSite"}) {
    text += siteElement(element, element, "1",
                        "Enabled=\"1\" Server=\"h.example\" "
                        "ServerDNS=\"h.example\"");
  }
  return text;
}

TEST_F(CliExplain, SendsEachKindThroughTheProxyOfItsProtocol) {
  EXPECT_THAT(explain(everyKind() + proxies(c_both)).column("proxy"),
              ElementsAre("web.example:3128", "web.example:3128", "web.example:3128",
                          "ftp.example:2121", "", ""));
  EXPECT_THAT(explain(everyKind() + proxies(c_http)).column("proxy"),
              ElementsAre("web.example:3128", "web.example:3128", "web.example:3128", "", "", ""));
}

TEST_F(CliExplain, ReachesEverySiteDirectlyWithoutAProxy) {
  for (const std::string& settings : {std::string(), proxies("")}) {
    const JsonReport report = explain(everyKind() + settings);
    EXPECT_EQ(report.facts.at("proxyMode"), "none");
    EXPECT_THAT(report.column("proxy"), Each(""));
  }
}

TEST_F(CliExplain, LeavesTheProxyToTheSystemWhereTheListSaysSo) {
  const JsonReport report =
      explain(everyKind() + proxies(std::string("UseIEConfig=\"1\" ") + c_both));
  EXPECT_EQ(report.facts.at("proxyMode"), "system");
  EXPECT_THAT(report.column("proxy"), ElementsAre("system settings", "system settings",
                                                  "system settings", "system settings", "", ""));
}

TEST_F(CliExplain, TheFirstProxySettingsOfAListCount) {
  const JsonReport report = explain(on("a", "1") +
                                    proxies("HttpProxyServer=\"one.example\" "
                                            "HttpProxyPort=\"1\"") +
                                    proxies("HttpProxyServer=\"two.example\" HttpProxyPort=\"2\""));
  EXPECT_EQ(report.facts.at("httpProxy"), "one.example:1");
  EXPECT_THAT(report.column("proxy"), ElementsAre("one.example:1"));
}

class CliExplainHost : public CliTest {
 protected:
  void useProxies(const std::string& text) { m_path = write("list.xml", document(text)); }

  // Returns whether the host bypasses the proxy over HTTP, as the exit status reports it.
  bool bypasses(const std::string& host) {
    const Output output = sitelist({"explain", "--host", host, m_path});
    EXPECT_THAT(output.status, testing::AnyOf(0, 1)) << output.err;
    EXPECT_THAT(output.out, HasSubstr(host + "  over HTTP  "));
    return output.status == 0;
  }

  JsonReport routes(const std::string& host) {
    return readReport(sitelist({"explain", "--json", "--host", host, m_path}).out);
  }

  std::string m_path;
};

TEST_F(CliExplainHost, AnExclusionNamesHostsByPatternAndWithoutRegardToCase) {
  useProxies(proxies(c_http, excluding({"one.example", "*.TUI.example", "h?.example", "[::2]"})));
  EXPECT_TRUE(bypasses("one.example"));
  EXPECT_TRUE(bypasses("ONE.Example"));
  EXPECT_TRUE(bypasses("a.b.tui.example"));
  EXPECT_TRUE(bypasses("hö.example"));
  EXPECT_TRUE(bypasses("[::2]")) << "brackets are ordinary characters";
  EXPECT_FALSE(bypasses("tui.example"));
  EXPECT_FALSE(bypasses("one.example.org")) << "an exclusion matches only a whole name";
  EXPECT_FALSE(bypasses("h.example"));
  EXPECT_THAT(routes("one.example").column("reason"),
              testing::Contains(HasSubstr("\"one.example\"")));
}

TEST_F(CliExplainHost, LocalAddressesBypassTheProxyWhereTheListSaysSo) {
  for (const bool isBypassed : {false, true}) {
    useProxies(proxies(c_http, isBypassed ? "<BypassLocalAddress>1</BypassLocalAddress>" : ""));
    for (const char* host : {"intranet", "localhost", "127.0.0.1", "[::1]"}) {
      EXPECT_EQ(bypasses(host), isBypassed) << host;
    }
    EXPECT_FALSE(bypasses("a.example"));
    EXPECT_FALSE(bypasses("192.0.2.1"));
  }
}

TEST_F(CliExplainHost, TellsEachProtocolAndAnswersForHttp) {
  useProxies(proxies("FtpProxyServer=\"ftp.example\" FtpProxyPort=\"2121\""));
  EXPECT_TRUE(bypasses("a.example")) << "there is no HTTP proxy";
  const JsonReport report = routes("a.example");
  EXPECT_EQ(report.facts.at("host"), "a.example");
  EXPECT_THAT(report.column("protocol"), ElementsAre("http", "ftp"));
  EXPECT_THAT(report.column("bypassesProxy"), ElementsAre("true", "false"));
  EXPECT_THAT(report.column("proxy"), ElementsAre("", "ftp.example:2121"));
}

TEST_F(CliExplainHost, TakesPortsAndUrlsApart) {
  useProxies(proxies(std::string(c_http) + " FtpProxyServer=\"ftp.example\" FtpProxyPort=\"21\"",
                     excluding({"one.example", "[fe80::1]"})));
  for (const char* given :
       {"one.example:8080", "http://one.example", "HTTPS://user@one.example:443/a:b/c?d@e#f",
        "ftp://one.example/", "http://one.example?x"}) {
    const Output output = sitelist({"explain", "--host", given, m_path});
    EXPECT_EQ(output.status, 0) << given << output.err;
    EXPECT_THAT(output.out, HasSubstr("one.example  over HTTP  directly: ")) << given;
    EXPECT_EQ(routes(given).facts.at("host"), "one.example") << given;
  }
  for (const char* given : {"fe80::1", "[fe80::1]", "[fe80::1]:80", "http://[fe80::1]:80/"}) {
    EXPECT_EQ(sitelist({"explain", "--host", given, m_path}).status, 0) << given;
    EXPECT_EQ(routes(given).facts.at("host"), "[fe80::1]") << given;
  }
  EXPECT_FALSE(bypasses("two.example"));
  useProxies(proxies(c_http));
  EXPECT_EQ(sitelist({"explain", "--host", "http://one.example/", m_path}).status, 1);
  EXPECT_EQ(sitelist({"explain", "--host", "ftp://one.example/", m_path}).status, 0)
      << "there is no FTP proxy";
}

TEST_F(CliExplainHost, RefusesWhatIsNoHost) {
  useProxies("");
  for (const char* given :
       {"",        ":",       ":80",     "a:",        "a:b",         "a:0",
        "a:65536", "a:80:90", "http://", "http:///a", "http://:80/", "gopher://a/",
        "://a",    "a/b",     "a b",     "a@b",       "a\\b",        "a\tb",
        "[a]",     "[::1",    "[::1]x",  "[::1]:",    "x[::1]",      "a\xE2\x80\x8B"}) {
    const Output output = sitelist({"explain", "--host", given, m_path});
    EXPECT_EQ(output.status, 2) << given;
    EXPECT_EQ(output.out, "") << given;
    EXPECT_THAT(output.err, HasSubstr("sitelist: --host: ")) << given;
  }
  EXPECT_THAT(sitelist({"explain", "--host", "a:b", m_path}).err,
              HasSubstr("\"a:b\" is not a host: its port is not a number from 1 to 65535\n  next: "
                        "give a name such as depot.example, "));
}

TEST_F(CliExplainHost, AnswersNoWhereTheSystemDecidesAndYesWithoutAProxy) {
  useProxies("<ProxyConfigList UseIEConfig=\"1\"/>");
  EXPECT_FALSE(bypasses("a.example"));
  useProxies("");
  EXPECT_TRUE(bypasses("a.example"));
}

}  // namespace
}  // namespace test
