#include <algorithm>
#include <filesystem>
#include <nlohmann/json.hpp>

#include "tests/cli/cli_fixture.h"
#include "tests/cli/documents.h"

namespace test {
namespace {

using nlohmann::json;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Pair;
using testing::StartsWith;

constexpr const char* c_version = R"( GlobalVersion="20260101000000")";

// A document with an element on each line. Content before "SiteList" begins in line 3, column 3.
// Without such content, the sites begin in line 4, column 5.
std::string lines(const std::vector<std::string>& sites,
                  const std::vector<std::string>& beforeSites = {},
                  const std::string& rootAttributes = c_version, const std::string& behind = "") {
  std::string text =
      "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<ns:SiteLists xmlns:ns=\"wxSiteList\"" +
      rootAttributes + ">\n";
  for (const std::string& element : beforeSites) text += "  " + element + "\n";
  text += "  <SiteList>\n";
  for (const std::string& site : sites) text += "    " + site + "\n";
  return text + "  </SiteList>\n" + behind + "</ns:SiteLists>\n";
}

// A list with a complete server in line 4 and this site in line 5.
std::string withSite(const std::string& site) { return lines({serverSite(), site}); }

// A list with a complete server in line 4, and in line 5, column 24, this "ProxyConfig".
std::string withProxy(const std::string& attributes, const std::string& children = "") {
  return withSite("<ProxyConfigList><ProxyConfig" + attributes + ">" + children +
                  "</ProxyConfig></ProxyConfigList>");
}

std::string manyHosts() {
  std::string hosts = "<ExclusionList>\n";
  for (int i = 0; i < 401; ++i) hosts += "<ExclusionHost>a23456789</ExclusionHost>\n";
  return hosts + "<ExclusionHost>b</ExclusionHost><ExclusionHost/></ExclusionList>";
}

class CliValidate : public CliTest {
 protected:
  // The lines of the output for a document, without the file name in front of each.
  std::vector<std::string> faultsOf(const std::string& text, int status,
                                    std::vector<std::string> options = {}) {
    const std::string path = write("lists/list.xml", text);
    options.insert(options.begin(), {"validate", path});
    const Output output = sitelist(options);
    EXPECT_EQ(output.status, status) << output.err;
    EXPECT_EQ(output.err, "");
    std::vector<std::string> faults;
    for (std::size_t at = 0; at < output.out.size();) {
      const std::size_t end = output.out.find('\n', at);
      const std::string line = output.out.substr(at, end - at);
      EXPECT_THAT(line, StartsWith(path + ":"));
      faults.push_back(line.substr(std::min(line.size(), path.size() + 1)));
      at = end + 1;
    }
    return faults;
  }
};

struct Case {
  const char* rule;
  std::string document;
  int line;
  int column;
  std::string text;  // the beginning of the text
};

std::vector<Case> errorCases() {
  const auto server = [](const std::map<std::string, std::string>& changes) {
    return lines({serverSite(changes)});
  };
  return {
      {"not-well-formed", "<list>\n  <a></b>\n</list>", 2, 8, "mismatched tag"},
      {"invalid-encoding", "<a>\xC3\x28</a>", 0, 0, ""},
      {"over-limit",
       std::string(300, ' ') + "<a>" +
           [] {
             std::string deep;
             for (int i = 0; i < 256; ++i) deep += "\n<a>";
             for (int i = 0; i < 256; ++i) deep += "</a>";
             return deep;
           }() +
           "</a>",
       257, 1, "the elements are nested deeper than 256 levels"},
      {"unknown-site", withSite("<OtherSite/>"), 5, 5,
       "the last site of the list is of unknown kind"},
      {"no-server", lines({httpSite("depot", "2")}), 3, 3, "the list has no management server"},
      {"server-not-local", server({{"Local", "1"}}), 4, 5,
       "the management server must not be local"},
      {"server-type-master", server({{"Type", "mirror"}}), 4, 5,
       "the type of the management server must be \"master\", not \"mirror\""},
      {"server-name", server({{"Name", ""}}), 4, 5, "the management server has no \"Name\""},
      {"server-address", server({{"Server", ""}}), 4, 5, "the management server has no \"Server\""},
      {"server-ip-address", server({{"ServerIP", ""}}), 4, 5,
       "the management server has no \"ServerIP\""},
      {"server-computer-name", server({{"ServerName", ""}}), 4, 5,
       "the management server has no \"ServerName\""},
      {"server-path", server({{"RelativePath", ""}}), 4, 5,
       "the management server has no \"RelativePath\""},
  };
}

std::vector<Case> warningCases() {
  const std::vector<std::string> complete = {serverSite()};
  return {
      {"root-element",
       "<SiteLists" + std::string(c_version) + ">\n<SiteList>" + serverSite() +
           "</SiteList></SiteLists>",
       1, 1, "the root \"SiteLists\" is not \"ns:SiteLists\" with xmlns:ns=\"wxSiteList\""},
      {"missing-global-version", lines(complete, {}, ""), 2, 1,
       "the list has no \"GlobalVersion\""},
      {"policies-after-sites", lines(complete, {}, c_version, "  <Policies/>\n"), 6, 3,
       "these settings are after the \"SiteList\" in line 3 and are not loaded"},
      {"second-site-list", lines(complete, {}, c_version, "<SiteList><What/></SiteList>"), 6, 1,
       "only the \"SiteList\" in line 3 is read"},
      {"second-ca-bundle", lines(complete, {"<CaBundle/>", "<CaBundle><What/></CaBundle>"}), 4, 3,
       "only the \"CaBundle\" in line 3 is read"},
      {"second-proxy-config",
       withSite("<ProxyConfigList><ProxyConfig/>\n<ProxyConfig/></ProxyConfigList>"), 6, 1,
       "this \"ProxyConfig\" replaces the one in line 5"},
      {"unknown-element", lines({"<httpSite/>", serverSite()}), 4, 5,
       "\"httpSite\" is not a known site element; did you mean HttpSite?"},
      {"unknown-child", withSite("<LocalSite Name=\"a\">\n<RelativPath/></LocalSite>"), 6, 1,
       "\"LocalSite\" has no child element \"RelativPath\"; did you mean RelativePath?"},
      {"unknown-attribute", withSite(R"(<LocalSite Name="a" Oder="4"/>)"), 5, 5,
       "\"LocalSite\" has no attribute \"Oder\"; did you mean Order?"},
      {"repeated-child",
       withSite(
           "<LocalSite Name=\"a\"><UserName>x</UserName>\n <UserName>y</UserName></LocalSite>"),
       6, 2, "\"UserName\" replaces the one in line 5"},
      {"site-without-name", withSite("<LocalSite/>"), 5, 5, "the site has no \"Name\""},
      {"site-without-address", withSite(R"(<UNCSite Name="a"/>)"), 5, 5,
       "the site has no \"Server\""},
      {"duplicate-name",
       lines({serverSite(), R"(<LocalSite Name="a"/>)", R"(<LocalSite Name="a"/>)"}), 6, 5,
       "\"a\" is also the name of the local site in line 5"},
      {"duplicate-order", withSite(httpSite("depot", "1")), 5, 5,
       "the order 1 is also that of the site \"Main\" in line 4"},
      {"order-number", withSite(R"(<LocalSite Name="a" Order="3rd"/>)"), 5, 5,
       "\"Order\" is \"3rd\", which is read as 3"},
      {"flag-value", withSite(R"(<LocalSite Name="a" Local="yes"/>)"), 5, 5,
       "\"Local\" is \"yes\", which is read as 0"},
      {"port-number", withSite(R"(<FTPSite Name="a" Server="ftp.example:65536"/>)"), 5, 5,
       "the port \"65536\" of \"Server\" is not a number from 0 to 65535"},
      {"ambiguous-address", withSite(R"(<FTPSite Name="a" Server="[2001:db8::10]"/>)"), 5, 5,
       "\"Server\" is \"[2001:db8::10]\", which is read as the host \"[2001:db8:\"; write "
       "[ADDRESS]:PORT"},
      {"text-cut", withSite("<LocalSite Name=\"" + std::string(260, 'a') + "\"/>"), 5, 5,
       "\"Name\" has 260 characters and is cut to 259"},
      {"password-form", withSite("<LocalSite Name=\"a\">\n<Password>secret</Password></LocalSite>"),
       6, 1, "\"Password\" is not an encrypted password and is read as empty"},
      {"proxy-without-port", withProxy(R"( HttpProxyServer="proxy.example:3128")"), 5, 22,
       "\"HttpProxyServer\" is \"proxy.example:3128\", but \"HttpProxyPort\" is missing or 0"},
      {"exclusions-cut", withProxy("", manyHosts()), 406, 1,
       "3 of 403 exclusion hosts do not fit and are dropped; this is the first of them"},
      {"certificate-unreadable",
       lines(complete, {"<CaBundle>\n<CaCertificate>?</CaCertificate></CaBundle>"}), 4, 1,
       "the text is not a certificate"},
      {"certificate-expired",
       lines(complete, {"<CaBundle><CaCertificate>" + std::string(c_expiredCertificatePem) +
                        "</CaCertificate></CaBundle>"}),
       3, 13,
       "the certificate of O = Tui Instruments, CN = Old authority expired on 2002-01-01 00:00:00 "
       "UTC"},
  };
}

TEST_F(CliValidate, EachRuleIsBrokenByTheSmallestDocumentThatDoes) {
  std::vector<std::string> command = {"validate", "--json"};
  std::vector<Case> cases = errorCases();
  const std::size_t errors = cases.size();
  for (const Case& each : warningCases()) cases.push_back(each);
  for (const Case& each : cases) {
    command.push_back(write(std::string(each.rule) + ".xml", each.document));
  }
  const Output output = sitelist(command);
  EXPECT_EQ(output.status, 3);
  const json report = json::parse(output.out);
  EXPECT_EQ(report["valid"], false);
  EXPECT_EQ(report["faultCount"], errors);
  EXPECT_EQ(report["warningCount"], cases.size() - errors);
  ASSERT_EQ(report["faults"].size(), cases.size()) << "each list must have exactly one fault\n"
                                                   << report["faults"].dump(1);
  for (std::size_t i = 0; i < cases.size(); ++i) {
    const json& fault = report["faults"][i];
    EXPECT_EQ(fault["file"], command[i + 2]);
    EXPECT_EQ(fault["rule"], cases[i].rule);
    EXPECT_EQ(fault["severity"], i < errors ? "error" : "warning") << cases[i].rule;
    EXPECT_EQ(fault["line"], cases[i].line ? json(cases[i].line) : json()) << cases[i].rule;
    EXPECT_EQ(fault["column"], cases[i].line ? json(cases[i].column) : json()) << cases[i].rule;
    EXPECT_THAT(fault["text"].get<std::string>(), StartsWith(cases[i].text));
  }
}

// The cases above and the rules of the tests below are all rules.
TEST_F(CliValidate, NoRuleIsForgotten) {
  std::vector<std::string> expected = {
      "missing-file", "unreadable-file", "no-sites", "server-request-key", "server-public-key",
      "key-files-unchecked",
      // No document can break them, because the library finds the server by these values.
      "server-kind-http", "server-element"};
  for (const Case& each : errorCases()) expected.emplace_back(each.rule);
  for (const Case& each : warningCases()) expected.emplace_back(each.rule);
  std::vector<std::string> rules;
  const json report = json::parse(sitelist({"explain-rule", "--json"}).out);
  for (const json& rule : report["rules"]) {
    rules.push_back(rule["name"]);
  }
  EXPECT_THAT(rules, testing::UnorderedElementsAreArray(expected));
}

TEST_F(CliValidate, PassesACompleteList) {
  EXPECT_THAT(faultsOf(lines({serverSite()}), 0), ElementsAre(" valid"));
}

TEST_F(CliValidate, NamesEveryFaultOfOneListInTheOrderOfTheDocument) {
  EXPECT_THAT(
      faultsOf(lines({R"(<LocalSite Enabled="on"/>)",
                      serverSite({{"Local", "1"}, {"Type", "repository"}, {"ServerIP", ""}}),
                      "<OtherSite/>"}),
               3),
      ElementsAre("4:5: flag-value: \"Enabled\" is \"on\", which is read as 0 [warning]",
                  "4:5: site-without-name: the site has no \"Name\" [warning]",
                  "5:5: server-not-local: the management server must not be local (site \"Main\")",
                  "5:5: server-type-master: the type of the management server must be \"master\", "
                  "not \"repository\" (site \"Main\")",
                  "5:5: server-ip-address: the management server has no \"ServerIP\" (site "
                  "\"Main\")",
                  "6:5: unknown-site: the last site of the list is of unknown kind"));
}

TEST_F(CliValidate, NamesTheSiteOfAFaultInAListOfOneLine) {
  const std::string list = write(
      "list.xml", "<ns:SiteLists xmlns:ns=\"wxSiteList\" GlobalVersion=\"1\" Odd=\"1\"><SiteList>" +
                      serverSite() +
                      "<LocalSite Name=\"Depot\" Order=\"2\"><Odd/></LocalSite>"
                      "<LocalSite Order=\"3rd\"/>"
                      "<ProxyConfigList Odd=\"1\"><ProxyConfig Name=\"Proxy\"><Odd/></ProxyConfig>"
                      "</ProxyConfigList></SiteList><CaBundle><Odd/></CaBundle></ns:SiteLists>");
  std::vector<std::pair<std::string, json>> found;
  const json report = json::parse(sitelist({"validate", "--json", list}).out);
  for (const json& fault : report["faults"]) found.emplace_back(fault["rule"], fault["site"]);
  EXPECT_THAT(found, ElementsAre(Pair("unknown-attribute", json()), Pair("unknown-child", "Depot"),
                                 Pair("order-number", json()), Pair("site-without-name", json()),
                                 Pair("unknown-attribute", json()), Pair("unknown-child", "Proxy"),
                                 Pair("unknown-child", json())));
  EXPECT_THAT(sitelist({"validate", list}).out,
              HasSubstr(" has no child element \"Odd\" (site \"Depot\") "
                        "[warning]\n"));
}

TEST_F(CliValidate, CountsCharactersAndLinesInEveryEncoding) {
  const std::string text =
      "<ns:SiteLists xmlns:ns=\"wxSiteList\" GlobalVersion=\"1\"><SiteList>\r\n" + serverSite() +
      "\n<LocalSite Name=\"東京 Αθήνα 😀\"><RelativePath>é</RelativePath><Pass/></LocalSite>"
      "</SiteList></ns:SiteLists>";
  const auto unknownChild = ElementsAre(
      "3:60: unknown-child: \"LocalSite\" has no child element \"Pass\"; did you mean "
      "Password? (site \"東京 Αθήνα 😀\") [warning]",
      " valid");
  EXPECT_THAT(faultsOf(text, 0), unknownChild);
  EXPECT_THAT(faultsOf("\xEF\xBB\xBF" + text, 0), unknownChild) << "a byte order mark is not text";
  std::string utf32;
  for (const wchar_t c : wide(text)) {
    for (int shift = 24; shift >= 0; shift -= 8) utf32 += static_cast<char>(c >> shift & 0xFF);
  }
  EXPECT_THAT(faultsOf(utf32, 0), unknownChild);
  std::string utf16 = "\xFF\xFE";
  const auto add = [&](unsigned unit) {
    utf16 += static_cast<char>(unit & 0xFF);
    utf16 += static_cast<char>(unit >> 8);
  };
  for (const wchar_t c : wide(text)) {
    const auto code = static_cast<unsigned>(c);
    if (code >= 0x10000) add(0xD800 + ((code - 0x10000) >> 10));
    add(code < 0x10000 ? code : 0xDC00 + (code & 0x3FF));
  }
  EXPECT_THAT(faultsOf(utf16, 0), unknownChild);
}

TEST_F(CliValidate, AsksForTheKeyFilesBesideTheList) {
  const std::string text = lines({serverSite({{"Version", "5.9"}})});
  const std::string noPublicKey =
      "4:5: server-public-key: the directory of the list has neither srpubkey.bin nor "
      "sr2048pubkey.bin, or both are empty (site \"Main\")";
  EXPECT_THAT(faultsOf(text, 1),
              ElementsAre("4:5: server-request-key: the directory of the list has neither "
                          "reqseckey.bin nor req2048seckey.bin, or both are empty (site "
                          "\"Main\")",
                          noPublicKey));
  write("lists/req2048seckey.bin", "key");
  EXPECT_THAT(faultsOf(text, 1), ElementsAre(noPublicKey));
  write("lists/srpubkey.bin", "key");
  EXPECT_THAT(faultsOf(text, 0), ElementsAre(" valid"));
}

TEST_F(CliValidate, AsksForSitesAndForAServer) {
  const std::string noServer = "no-server: the list has no management server";
  EXPECT_THAT(faultsOf(lines({}), 1),
              ElementsAre("3:3: no-sites: the list has no sites", "3:3: " + noServer));
  EXPECT_THAT(faultsOf("<ns:SiteLists xmlns:ns=\"wxSiteList\" GlobalVersion=\"1\"/>", 1),
              ElementsAre("1:1: no-sites: the list has no sites", "1:1: " + noServer))
      << "without a \"SiteList\" the root is the nearest place";
  EXPECT_THAT(faultsOf(lines({httpSite("depot")}), 1, {"--managed"}),
              ElementsAre("3:3: no-server: the list has no management server"));
}

TEST_F(CliValidate, LeavesTheServerOutForAnUnmanagedAgent) {
  EXPECT_THAT(faultsOf(lines({httpSite("depot")}), 0, {"--unmanaged"}), ElementsAre(" valid"));
  EXPECT_THAT(faultsOf(lines({}), 1, {"--unmanaged"}),
              ElementsAre("3:3: no-sites: the list has no sites"));
  EXPECT_THAT(
      faultsOf(lines({serverSite({{"Name", ""}, {"Server", ":80"}})}), 0, {"--unmanaged"}),
      ElementsAre("4:5: site-without-name: the site has no \"Name\" [warning]",
                  "4:5: site-without-address: the site has no \"Server\" [warning]", " valid"));
}

TEST_F(CliValidate, IsNotFooledByATextThatEndsLikeAnotherRule) {
  EXPECT_THAT(faultsOf(lines({serverSite({{"Type", "req2048seckey.bin is invalid"}})}), 1),
              ElementsAre("4:5: server-type-master: the type of the management server must be "
                          "\"master\", not \"req2048seckey.bin is invalid\" (site \"Main\")"));
}

TEST_F(CliValidate, NamesTheSiteThatDecidesTheResultOfReading) {
  const std::string text = "unknown-site: the last site of the list is of unknown kind";
  const std::string server = serverSite();
  EXPECT_THAT(faultsOf(lines({server, "<ProxyConfig/>"}), 3), ElementsAre("5:5: " + text))
      << "proxy settings outside a ProxyConfigList are not a site";
  EXPECT_THAT(faultsOf(lines({server, "<Other/>", "<ProxyConfigList/>"}), 3),
              ElementsAre("5:5: " + text))
      << "an empty proxy list does not determine the result";
  EXPECT_THAT(faultsOf(lines({server, "<ProxyConfigList>", "<Other/>", "</ProxyConfigList>"}), 3),
              ElementsAre("6:5: " + text));
  EXPECT_THAT(
      faultsOf(lines({server, "<Other/>", "<ProxyConfigList><LocalSite/>", "</ProxyConfigList>"}),
               0),
      ElementsAre("5:5: unknown-element: \"Other\" is not a known site element [warning]",
                  "6:22: unknown-child: \"ProxyConfigList\" has no child element "
                  "\"LocalSite\" [warning]",
                  " valid"));
}

TEST_F(CliValidate, SaysWhatAFileIsThatCannotBeRead) {
  const Output text = sitelist({"validate", write("text.xml", "no markup")});
  EXPECT_EQ(text.out, file("text.xml") + ":1:1: not-well-formed: the file has no markup\n");
  const Output device = sitelist({"validate", "/dev/null"});
  EXPECT_EQ(device.status, 4);
  EXPECT_EQ(device.out, "/dev/null: unreadable-file: it is not a regular file\n");
  const Output encoding = sitelist({"validate", write("bytes.xml", "<a>\xC3\x28</a>")});
  EXPECT_EQ(
      encoding.out,
      file("bytes.xml") + ": invalid-encoding: the bytes are not valid UTF-8, UTF-16 or UTF-32\n");
  const Output missing = sitelist({"validate", file("none.xml")});
  EXPECT_EQ(missing.status, 4);
  EXPECT_EQ(missing.out, file("none.xml") + ": missing-file: the file does not exist\n");
}

TEST_F(CliValidate, ChecksSeveralListsAndKeepsTheHighestStatus) {
  const std::string good = write("good.xml", document(serverSite()));
  const std::string incomplete = write("incomplete.xml", document(serverSite({{"Name", ""}})));
  const std::string broken = write("broken.xml", "<a>");
  const Output output = sitelist({"validate", broken, incomplete, good});
  EXPECT_EQ(output.status, 3);
  EXPECT_THAT(output.out, HasSubstr(good + ": valid\n"));
  EXPECT_THAT(output.out, testing::ContainsRegex("incomplete.xml:2:[0-9]+: server-name: "));
  EXPECT_EQ(sitelist({"validate", incomplete, good}).status, 1);
}

// A list that cannot be read is one fault. The faults of the other lists are still reported.
TEST_F(CliValidate, GoesOnAfterAListThatCannotBeRead) {
  std::string unknown;
  for (int i = 0; i < 1025; ++i) unknown += "<Odd/>";
  const std::string incomplete = write("incomplete.xml", document(serverSite({{"Name", ""}})));
  const std::string many = write("many.xml", document(unknown));
  const Output output =
      sitelist({"validate", "--json", incomplete, many, "/dev/null", file("none.xml"), incomplete});
  EXPECT_EQ(output.status, 4);
  EXPECT_EQ(output.err, "sitelist: 2 lists read, 3 failed\n");
  const json report = json::parse(output.out);
  EXPECT_EQ(report["faultCount"], 5);
  ASSERT_EQ(report["faults"].size(), 5U);
  std::vector<std::string> rules;
  for (const json& fault : report["faults"]) rules.push_back(fault["rule"]);
  EXPECT_THAT(rules, ElementsAre("server-name", "over-limit", "unreadable-file", "missing-file",
                                 "server-name"));
  EXPECT_EQ(report["faults"][1]["file"], many);
  EXPECT_EQ(report["faults"][1]["text"], "the list has more than 1024 elements of unknown kind");
  EXPECT_EQ(sitelist({"validate", many, incomplete}).status, 3);
}

TEST_F(CliValidate, StandardInputThatCannotBeReadIsAFault) {
  const std::string good = write("good.xml", document(serverSite()));
  const Output output = shell("exec \"$0\" validate - \"$1\" < /", {good});
  EXPECT_EQ(output.status, 4);
  EXPECT_EQ(output.out,
            "standard input: unreadable-file: it is a directory\n" + good + ": valid\n");
  EXPECT_EQ(output.err, "sitelist: 1 list read, 1 failed\n");
}

TEST_F(CliValidate, CountsWarningsAsFaultsWhenStrict) {
  const std::string text = withSite("<LocalSite/>");
  const std::string warning = "5:5: site-without-name: the site has no \"Name\" [warning]";
  EXPECT_THAT(faultsOf(text, 0), ElementsAre(warning, " valid"));
  EXPECT_THAT(faultsOf(text, 1, {"--strict"}), ElementsAre(warning));
  const json report =
      json::parse(sitelist({"validate", "--strict", "--json", write("list.xml", text)}).out);
  EXPECT_EQ(report["valid"], false);
  EXPECT_EQ(report["faultCount"], 1);
  EXPECT_EQ(report["warningCount"], 0);
  EXPECT_EQ(report["faults"][0]["severity"], "warning");
  EXPECT_THAT(faultsOf(lines({serverSite()}), 0, {"--strict"}), ElementsAre(" valid"));
}

TEST_F(CliValidate, ReadsStandardInput) {
  EXPECT_EQ(sitelist({"validate", "-"}, lines({serverSite()})).out, "standard input: valid\n");
  const Output broken = sitelist({"validate", "-"}, "<a>\n</b>");
  EXPECT_EQ(broken.status, 3);
  EXPECT_EQ(broken.out, "standard input:2:3: not-well-formed: mismatched tag\n");
  const Output keys = sitelist({"validate", "-"}, lines({serverSite({{"Version", "5.9"}})}));
  EXPECT_EQ(keys.status, 0);
  EXPECT_EQ(keys.out,
            "standard input:4:5: key-files-unchecked: the server has a version, but there is no "
            "directory in which to look for its key files (site \"Main\") [warning]\nstandard "
            "input: valid\n");
  const Output twice = sitelist({"validate", "-", "-"}, lines({serverSite()}));
  EXPECT_EQ(twice.status, 2);
  EXPECT_THAT(twice.err, HasSubstr("standard input can be read only once\n  next: "));
}

TEST_F(CliValidate, SaysTheSameInEveryForm) {
  const std::string path =
      write("list.xml", lines({serverSite({{"Name", ""}}), R"(<LocalSite Name="a&lt;&quot;,"/>)"}));
  EXPECT_EQ(sitelist({"validate", "--format", "csv", "none.xml", path}).out,
            "file,line,column,severity,rule,text,site,status,error\n"
            "none.xml,,,error,missing-file,the file does not exist,,,\n" +
                path + ",4,5,error,server-name,\"the management server has no \"\"Name\"\"\",,,\n");
  EXPECT_THAT(sitelist({"validate", "--format", "xml", path}).out,
              HasSubstr("  <valid>false</valid>\n  <faultCount>1</faultCount>\n"
                        "  <warningCount>0</warningCount>\n  <faults>\n    <fault>\n      <file>" +
                        path +
                        "</file>\n      <line>4</line>\n      <column>5</column>\n"
                        "      <severity>error</severity>\n      <rule>server-name</rule>\n"
                        "      <text>the management server has no \"Name\"</text>\n    "
                        "</fault>\n  </faults>\n"));
  const json report = json::parse(sitelist({"validate", "--json", "none.xml"}).out);
  EXPECT_EQ(report["status"], 4);
  EXPECT_EQ(report["faults"][0]["line"], json());
}

TEST_F(CliValidate, ColoursErrorsWarningsAndWhatIsValid) {
  const std::string bad = write("bad.xml", lines({serverSite({{"Name", ""}}), "<LocalSite/>"}));
  const std::string good = write("good.xml", lines({serverSite()}));
  EXPECT_EQ(sitelist({"validate", "--color", "always", bad, good}).out,
            bad + ":4:5: \033[31mserver-name\033[0m: the management server has no \"Name\"\n" +
                bad +
                ":5:5: \033[35msite-without-name\033[0m: the site has no \"Name\" [warning]\n" +
                good + ": \033[32mvalid\033[0m\n");
}

TEST_F(CliValidate, DoesNotWarnOfWhatTheLibraryItselfWrites) {
  initAgent({"--managed"});
  const std::string password = protectedText("clear");
  const std::string source = write(
      "list.xml",
      lines({serverSite(), httpSite("depot", "2", password), R"(<UNCSite Name="a" Server="f"/>)",
             R"(<FTPSite Name="a" Server="f"/>)", R"(<LocalSite Name="a"/>)",
             R"(<KeystoneSite Name="a" ServerDNS="f" Server="x:y:z" ServerIP="[::1]:80"/>)",
             R"(<HttpSite Name="mirror" Type="Mirror" Enabled="1" Order="1" Server="m"/>)",
             R"(<HttpSite Name="last" Type="fallback" Enabled="1" Server="last.example"/>)",
             "<ProxyConfigList><ProxyConfig UseIEConfig=\"1\" FtpProxyServer=\"p\" "
             "FtpProxyPort=\"1\">"
             "<ExclusionList><ExclusionHost>a</ExclusionHost></ExclusionList><FtpProxyPassword>" +
                 password + "</FtpProxyPassword></ProxyConfig></ProxyConfigList>"},
            {"<CaBundle><CaCertificate>" + std::string(c_certificatePem) +
                 "</CaCertificate></CaBundle>",
             "<Policies><Setting name=\"a\">b</Setting></Policies>"},
            std::string(c_version) + R"( LocalVersion="1" Type="Client" FipsMode="1")"));
  EXPECT_EQ(sitelist({"validate", source}).out, source + ": valid\n");
  ASSERT_EQ(sitelist({"rewrite", source, file("copy.xml")}).status, 0);
  EXPECT_EQ(sitelist({"validate", file("copy.xml")}).out, file("copy.xml") + ": valid\n");
}

TEST_F(CliValidate, LeavesTheRestOfTheVocabularyAlone) {
  EXPECT_THAT(
      faultsOf(
          withSite(
              "<FTPSite Name=\"a\" Server=\"f\" ID=\"1\" Port=\"x\" Passive=\"?\" "
              "xml:space=\"preserve\"><ReplicationUNC>a</ReplicationUNC><Passive/>"
              "<ReplicationPassword>x</ReplicationPassword></FTPSite><ProxyConfigList>"
              "<ProxyConfig Local=\"x\"><LocalAddrRangeList><LocalAddrRange IPAddrStart=\"1\"/>"
              "</LocalAddrRangeList></ProxyConfig></ProxyConfigList>"),
          0),
      ElementsAre(" valid"));
}

TEST_F(CliValidate, TakesValuesAsTheLibraryDoes) {
  const auto isFine = [&](const std::string& site) {
    EXPECT_THAT(faultsOf(withSite(site), 0), ElementsAre(" valid")) << site;
  };
  isFine(R"(<LocalSite Name="a" Enabled=" 1&#10;" Local="" Order=" +7"/>)");
  isFine(
      R"(<HttpSite Name="a" Server="a: 80" SecurePort="" ServerName="a.b.c" ServerIP="[::]:0"/>)");
  isFine("<LocalSite Name=\"" + std::string(259, 'a') + "\"><RelativePath>" +
         std::string(519, 'a') + "</RelativePath><Password/></LocalSite>");
  isFine("<HttpSite Name=\"a\" Server=\"" + std::string(259, 'a') + ":80\" ServerName=\"" +
         std::string(260, 'a') + ".example:80\" ServerIP=\"" + std::string(99, '1') + "\"/>");
  isFine(R"(<UNCSite Name="a" Server="a:b:c"/><UNCSite Name="b" Server="d"/>)");
}

TEST_F(CliValidate, FindsWhatTheLibraryReadsOtherwise) {
  const auto rulesOf = [&](const std::string& site) {
    std::string rules;
    for (const std::string& line : faultsOf(withSite(site), 0)) {
      const std::size_t begin = line.find(' ') + 1;
      if (line != " valid") rules += line.substr(begin, line.find(':', begin) - begin) + " ";
    }
    return rules;
  };
  EXPECT_EQ(
      rulesOf("<HttpSite Name=\"a\" Server=\"" + std::string(260, 'a') + ":80\" ServerName=\"" +
              std::string(261, 'a') + "\" ServerIP=\"" + std::string(100, '1') +
              "\"><RelativePath>" + std::string(520, 'a') + "</RelativePath></HttpSite>"),
      "text-cut text-cut text-cut text-cut ");
  EXPECT_EQ(rulesOf(R"(<HttpSite Name="a" Server="a:" SecurePort="443s"/>)"),
            "port-number port-number ");
  EXPECT_EQ(rulesOf(R"(<HttpSite Name="a" Server="fe80::1"/>)"), "ambiguous-address ");
  EXPECT_EQ(rulesOf(R"(<HttpSite Name="a" Server="a" Version="1" ServerDNS="b"/>)"),
            "unknown-attribute unknown-attribute ")
      << "only sites of other kinds have these attributes";
  EXPECT_EQ(rulesOf(R"(<KeystoneSite Name="a" Server="a" ServerDNS=""/>)"),
            "site-without-address ");
  EXPECT_EQ(rulesOf(R"(<LocalSite Name="a" Order="" Enabled="2"/>)"), "order-number flag-value ");
  EXPECT_EQ(rulesOf(R"(<LocalSite Name="a" Order="2147483648"/>)"), "order-number ");
  EXPECT_EQ(rulesOf("<LocalSite Name=\"a\"><UseLoggedonUserAccount>no</UseLoggedonUserAccount>"
                    "<Password Encrypted=\"1\">AQEBAQEB</Password></LocalSite>"),
            "flag-value password-form ");
  EXPECT_EQ(rulesOf(R"(<LocalSite Name="a" Enabled="1"/><LocalSite Name="b" Enabled="1"/>)"),
            "duplicate-order ")
      << "a missing order counts as 0";
  EXPECT_EQ(rulesOf(R"(<LocalSite Name="a" Type="Fallback" Enabled="1"/>)"
                    R"(<LocalSite Name="b" Type="fallback" Enabled="1"/>)"),
            "duplicate-order ");
  EXPECT_EQ(rulesOf("<ProxyConfigList UseIEConfig=\"x\"><ProxyConfig HttpProxyServer=\"p\" "
                    "HttpProxyPort=\"x\"><ExclusionList><Host/></ExclusionList></ProxyConfig>"
                    "</ProxyConfigList>"),
            "flag-value port-number unknown-child ");
}

TEST_F(CliValidate, NeverPrintsAPassword) {
  const Output output = sitelist(
      {"validate", "--verbose",
       write("list.xml",
             withSite("<LocalSite Name=\"a\"><Password>open sesame</Password></LocalSite>"))});
  EXPECT_THAT(output.out, HasSubstr("password-form"));
  EXPECT_THAT(output.out + output.err, testing::Not(HasSubstr("sesame")));
}

TEST_F(CliValidate, TouchesNoAgent) {
  const std::string path = write("list.xml", document(serverSite()));
  EXPECT_EQ(sitelist({"validate", path}).status, 0);
  EXPECT_FALSE(exists(file("agent")));
  write("agent/agent.toml", "not a settings file");
  const auto before = agentFiles();
  EXPECT_EQ(sitelist({"validate", path}).status, 0);
  EXPECT_EQ(agentFiles(), before);
}

}  // namespace
}  // namespace test
