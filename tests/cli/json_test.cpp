#include <nlohmann/json.hpp>
#include <set>

#include "tests/cli/cli_fixture.h"
#include "tests/cli/documents.h"

namespace test {
namespace {

using nlohmann::json;

class CliJson : public CliTest {
 protected:
  json show(const std::string& text, int status = 0) {
    const Output output = sitelist({"show", "--json", write("list.xml", text)});
    EXPECT_EQ(output.status, status) << output.err;
    return json::parse(output.out);
  }
};

std::set<std::string> keysOf(const json& object) {
  std::set<std::string> keys;
  for (const auto& item : object.items()) keys.insert(item.key());
  return keys;
}

std::set<std::string> withCommon(std::set<std::string> keys) {
  keys.insert({"kind", "enabled", "vestaSite", "mirror", "local", "order", "type", "name"});
  return keys;
}

TEST_F(CliJson, TellsTheResultAndTheVersions) {
  const json list = show(document(httpSite("depot"), "",
                                  "GlobalVersion=\"g\" LocalVersion=\"l\" Type=\"Server\" "
                                  "FipsMode=\"1\""));
  EXPECT_EQ(list["file"], file("list.xml"));
  EXPECT_EQ(list["result"], 0);
  EXPECT_EQ(list["globalVersion"], "g");
  EXPECT_EQ(list["localVersion"], "l");
  EXPECT_EQ(list["type"], "Server");
  EXPECT_EQ(list["fipsMode"], "1");
  EXPECT_EQ(list["sites"].size(), 1U);
  EXPECT_TRUE(show(document(httpSite("depot")))["fipsMode"].is_null());
}

TEST_F(CliJson, KeepsTheOrderOfTheListAndTheProxyAmongTheSites) {
  const json list = show(document(httpSite("b", "9") +
                                  "<ProxyConfigList><ProxyConfig Name=\"p\"/></ProxyConfigList>" +
                                  httpSite("a", "1")));
  ASSERT_EQ(list["sites"].size(), 3U);
  EXPECT_EQ(list["sites"][0]["name"], "b");
  EXPECT_EQ(list["sites"][1]["kind"], "proxy");
  EXPECT_EQ(list["sites"][1]["name"], "p");
  EXPECT_EQ(list["sites"][2]["name"], "a");
}

TEST_F(CliJson, GivesEveryFieldOfEveryKind) {
  const json sites =
      show(document(httpSite("h") +
                    "<FTPSite Name=\"f\" Order=\"2\"/><UNCSite Name=\"u\" Order=\"3\"/>"
                    "<LocalSite Name=\"l\" Order=\"4\"/>"
                    "<ProxyConfigList><ProxyConfig Name=\"p\"/></ProxyConfigList>"))["sites"];
  ASSERT_EQ(sites.size(), 5U);
  EXPECT_EQ(keysOf(sites[0]),
            withCommon({"element", "server", "serverPort", "serverIP", "serverIPPort", "serverName",
                        "serverNamePort", "securePort", "relativePath", "useAuth", "userName",
                        "password", "version"}));
  EXPECT_EQ(keysOf(sites[1]), withCommon({"server", "serverPort", "securePort", "relativePath",
                                          "userName", "password"}));
  EXPECT_EQ(keysOf(sites[2]), withCommon({"server", "shareName", "relativePath", "domainName",
                                          "userName", "password", "useLoggedonUserAccount"}));
  EXPECT_EQ(keysOf(sites[3]), withCommon({"relativePath", "domainName", "userName", "password",
                                          "useLoggedonUserAccount"}));
  EXPECT_EQ(keysOf(sites[4]), withCommon({"element",
                                          "useIEConfig",
                                          "allowUserToConfigureProxy",
                                          "bypassLocalAddress",
                                          "exclusionCount",
                                          "exclusionList",
                                          "httpProxyServer",
                                          "httpProxyPort",
                                          "httpUseAuth",
                                          "httpProxyUser",
                                          "httpProxyPassword",
                                          "alternateHttpUseAuth",
                                          "alternateHttpProxyUser",
                                          "alternateHttpProxyPassword",
                                          "ftpProxyServer",
                                          "ftpProxyPort",
                                          "ftpUseAuth",
                                          "ftpProxyUser",
                                          "ftpProxyPassword",
                                          "alternateFtpUseAuth",
                                          "alternateFtpProxyUser",
                                          "alternateFtpProxyPassword"}));
}

TEST_F(CliJson, GivesTheValuesOfTheRecord) {
  const json site = show(document(serverSite({{"Name", "東京 &quot;1&quot;"},
                                              {"Version", "5.9"},
                                              {"SecurePort", "8443"},
                                              {"Order", "-3"}})))["sites"][0];
  EXPECT_EQ(site["kind"], "server");
  EXPECT_EQ(site["name"], "東京 \"1\"");
  EXPECT_EQ(site["element"], "VestaSite");
  EXPECT_EQ(site["vestaSite"], true);
  EXPECT_EQ(site["mirror"], false);
  EXPECT_EQ(site["enabled"], true);
  EXPECT_EQ(site["order"], -3);
  EXPECT_EQ(site["type"], "master");
  EXPECT_EQ(site["server"], "pyx.example");
  EXPECT_EQ(site["serverPort"], 80);
  EXPECT_EQ(site["serverIP"], "192.0.2.1");
  EXPECT_EQ(site["securePort"], 8443);
  EXPECT_EQ(site["version"], "5.9");
  EXPECT_EQ(site["relativePath"], "Software");
}

TEST_F(CliJson, IsOneObjectAlsoWhenTheListCannotBeRead) {
  const json broken = show("<a><b></a>", 3);
  EXPECT_EQ(broken["result"], -5);
  EXPECT_TRUE(broken["sites"].empty());
  const Output missing = sitelist({"show", "--json", file("none.xml")});
  EXPECT_EQ(missing.status, 4);
  EXPECT_EQ(json::parse(missing.out)["result"], -4);
}

// A table and CSV join these texts into one.
TEST_F(CliJson, GivesSeveralTextsAsAnArray) {
  initAgent();
  const std::string proxy =
      "<ProxyConfigList><ProxyConfig Name=\"p\"><HttpProxyServer>proxy.example</HttpProxyServer>"
      "<ExclusionList><ExclusionHost>a</ExclusionHost><ExclusionHost>*.b</ExclusionHost>"
      "</ExclusionList></ProxyConfig></ProxyConfigList>";
  const std::string path = write("list.xml", document(proxy));
  const json hosts = {"a", "*.b"};
  const auto ask = [&](std::vector<std::string> arguments) {
    arguments.emplace_back("--json");
    return json::parse(sitelist(arguments).out);
  };
  EXPECT_EQ(ask({"show", path})["sites"][0]["exclusionList"], hosts);
  EXPECT_EQ(ask({"get", "exclusionList", path, "--site", "p"})["value"], hosts);
  EXPECT_EQ(ask({"explain", path})["exclusions"], hosts);
  const std::string none =
      write("none.xml", document(std::string(proxy).erase(
                            proxy.find("<ExclusionHost>"),
                            proxy.find("</ExclusionList>") - proxy.find("<ExclusionHost>"))));
  const json difference = ask({"diff", none, path});
  int count = 0;
  for (const json& change : difference["changes"]) {
    if (change["field"] != "exclusionList") continue;
    ++count;
    EXPECT_EQ(change["before"], json::array());
    EXPECT_EQ(change["after"], hosts);
  }
  EXPECT_EQ(count, 1) << difference;
  EXPECT_EQ(sitelist({"get", "exclusionList", path, "--site", "p"}).out, "a;*.b\n");
  EXPECT_THAT(sitelist({"show", path, "--columns", "exclusionList", "--format", "csv"}).out,
              testing::HasSubstr("\na;*.b\n"));
}

// A name may have the character that separates values in a table.
TEST_F(CliJson, GivesEachServerOneValueInEachArray) {
  initAgent();
  setOwnList(
      document(serverSite({{"Name", "b;c"}, {"Order", "2"}, {"ServerIP", "[2001:db8::1]:80"}}) +
               serverSite({{"Name", "a"}, {"Order", "1"}, {"Server", "a.example"}})));
  const json all = json::parse(sitelist({"servers", "--all", "--json"}).out);
  EXPECT_EQ(all["names"], json({"a", "b;c"}));
  EXPECT_EQ(all["servers"], json({"a.example", "pyx.example"}));
  EXPECT_EQ(all["ipAddresses"], json({"192.0.2.1", "2001:db8::1"}));
  EXPECT_EQ(all["versions"], json({"", ""}));
  const json first = json::parse(sitelist({"servers", "--json"}).out);
  EXPECT_EQ(first["names"], json::array({"a"}));
  EXPECT_THAT(sitelist({"servers", "--all"}).out, testing::HasSubstr(" a;b;c\n"));
}

}  // namespace
}  // namespace test
