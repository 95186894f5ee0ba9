#include <regex>

#include "sitehlp/fields.h"
#include "tests/cli/edit_fixture.h"

// The values that an edit gives to fields, and the resulting sites.
namespace test {
namespace {

using testing::HasSubstr;
using testing::Not;

using Values = std::map<std::string, std::string>;

// The field, its value on the command line, and its value in the list afterwards.
struct Value {
  std::string field;
  std::string given;
  std::string read;
};

struct KindCase {
  std::string kind;
  std::string element;
  std::vector<Value> values;
};

std::vector<Value> common() {
  return {{"type", "fallback", "fallback"},
          {"order", "0042", "42"},
          {"enabled", "true", "true"},
          {"local", "1", "true"}};
}

std::vector<Value> with(std::vector<Value> values, const std::vector<Value>& more) {
  values.insert(values.end(), more.begin(), more.end());
  return values;
}

std::vector<Value> httpValues() {
  return with(common(), {{"server", "[fe80::1]", "[fe80::1]"},
                         {"serverPort", "8080", "8080"},
                         {"serverName", "REPO1", "REPO1"},
                         {"serverNamePort", "1", "1"},
                         {"serverIP", "192.0.2.9", "192.0.2.9"},
                         {"serverIPPort", "65535", "65535"},
                         {"securePort", "443", "443"},
                         {"relativePath", "<DATA>/ä & b", "<DATA>/ä & b"},
                         {"useAuth", "1", "1"},
                         {"userName", "\"reader\" = 'a'", "\"reader\" = 'a'"}});
}

const std::vector<KindCase>& kindCases() {
  static const std::vector<KindCase> cases = {
      {"server", "VestaSite", with(httpValues(), {{"version", "5.9.2", "5.9.2"}})},
      {"agent", "KeystoneSite", httpValues()},
      {"http", "HttpSite", httpValues()},
      {"ftp", "FTPSite",
       with(common(), {{"server", "ftp.example", "ftp.example"},
                       {"serverPort", "2121", "2121"},
                       {"securePort", "990", "990"},
                       {"relativePath", " pub ", " pub "},
                       {"userName", "東京", "東京"}})},
      {"unc", "UNCSite",
       with(common(), {{"server", "FILES01:x", "FILES01:x"},
                       {"shareName", "Orb$", "Orb$"},
                       {"relativePath", "a\\b", "a\\b"},
                       {"domainName", "TUI", "TUI"},
                       {"userName", "reader", "reader"},
                       {"useLoggedonUserAccount", "2147483647", "2147483647"}})},
      {"local", "LocalSite",
       with(common(), {{"relativePath", "/srv", "/srv"},
                       {"domainName", "TUI", "TUI"},
                       {"userName", "reader", "reader"},
                       {"useLoggedonUserAccount", "1", "1"}})},
      {"proxy",
       "ProxyConfigList",
       {{"useIEConfig", "1", "true"},
        {"httpProxyServer", "proxy.example", "proxy.example"},
        {"httpProxyPort", "3128", "3128"},
        {"ftpProxyServer", "ftp.example", "ftp.example"},
        {"ftpProxyPort", "2121", "2121"},
        {"allowUserToConfigureProxy", "1", "true"},
        {"bypassLocalAddress", "true", "true"},
        {"exclusionList", ";a.example;;*.b.example;", "a.example;*.b.example"},
        {"ftpUseAuth", "1", "true"},
        {"httpUseAuth", "1", "true"},
        {"httpProxyUser", "u1", "u1"},
        {"ftpProxyUser", "u2", "u2"},
        {"alternateFtpUseAuth", "1", "true"},
        {"alternateHttpUseAuth", "1", "true"},
        {"alternateHttpProxyUser", "u3", "u3"},
        {"alternateFtpProxyUser", "u4", "u4"}}},
  };
  return cases;
}

Arguments assignments(const KindCase& kind) {
  Arguments arguments;
  for (const Value& value : kind.values) arguments.push_back(value.field + "=" + value.given);
  return arguments;
}

class CliEditFields : public CliEdit {
 protected:
  // A list with an empty site of each kind, all named "x".
  void setEmptySites() {
    std::string text;
    for (const KindCase& kind : kindCases()) {
      text += kind.kind == "proxy" ? "<ProxyConfigList><ProxyConfig Name=\"x\"/></ProxyConfigList>"
                                   : siteElement(kind.element, "x", "");
    }
    setOwnList(document(text));
  }

  // Returns the element with that name. Empty elements have one form, and encrypted passwords are
  // removed because they differ in every write.
  static std::string elementIn(const std::string& list, const std::string& name) {
    const std::size_t begin = list.find("<" + name);
    const std::size_t end = list.find("</" + name + ">", begin);
    EXPECT_NE(end, std::string::npos) << name << " in " << list;
    const std::string text = std::regex_replace(list.substr(begin, end - begin),
                                                std::regex("(Encrypted=\"1\">)[^<]*"), "$1");
    return std::regex_replace(text, std::regex("<([A-Za-z]+)([^<>/]*)></\\1>"), "<$1$2/>");
  }
};

TEST_F(CliEditFields, SetsEveryFieldOfEveryKind) {
  setEmptySites();
  for (std::size_t i = 0; i < kindCases().size(); ++i) {
    const KindCase& kind = kindCases()[i];
    // Equal orders and the largest number are faults, so the command needs --force.
    const Arguments arguments =
        Arguments{"set", "x", "--force", "--kind", kind.kind} + assignments(kind);
    const auto before = sites();
    change(arguments);
    changeNothing(arguments);
    auto after = sites();
    ASSERT_EQ(after.size(), kindCases().size());
    for (const Value& value : kind.values) {
      EXPECT_EQ(after[i][value.field], value.read) << kind.kind << ": " << value.field;
    }
    after[i] = before[i];
    EXPECT_EQ(after, before) << "another site changed with " << kind.kind;
  }
}

TEST_F(CliEditFields, KnowsEveryFieldThatIsShown) {
  setEmptySites();
  std::map<std::string, std::size_t> counts;
  const auto all = sites();
  for (std::size_t i = 0; i < kindCases().size(); ++i) {
    Values fields = all[i];
    for (const Value& value : kindCases()[i].values) fields.erase(value.field);
    for (const auto& [name, value] : fields) ++counts[name];
  }
  EXPECT_EQ(counts, (std::map<std::string, std::size_t>{
                        {"kind", 7},
                        {"name", 7},
                        {"vestaSite", 7},
                        {"mirror", 7},
                        {"element", 4},
                        {"version", 2},  // of sites that are not a management server
                        {"exclusionCount", 1},
                        {"enabled", 1},
                        {"local", 1},
                        {"order", 1},
                        {"type", 1},  // of a proxy, which the library does not write
                        {"password", 6},
                        {"httpProxyPassword", 1},
                        {"ftpProxyPassword", 1},
                        {"alternateHttpProxyPassword", 1},
                        {"alternateFtpProxyPassword", 1}}))
      << "the fields that cannot be set, or only as a password";
}

TEST_F(CliEditFields, NamesTheFieldsThatThereAreForOneThatCannotBeSet) {
  setEmptySites();
  const std::map<std::string, std::string> readOnly = {
      {"server", "element"}, {"agent", "version"}, {"http", "vestaSite"},      {"ftp", "useAuth"},
      {"unc", "mirror"},     {"local", "server"},  {"proxy", "exclusionCount"}};
  for (const KindCase& kind : kindCases()) {
    const std::string message =
        fail(2, {"set", "x", "--kind", kind.kind, readOnly.at(kind.kind) + "=1"});
    EXPECT_THAT(message, HasSubstr("a site of kind " + kind.kind + " has no field \"" +
                                   readOnly.at(kind.kind) + "\" that can be set\n"));
    for (const Value& value : kind.values) EXPECT_THAT(message, HasSubstr(value.field));
  }
  fail(2, {"set", "x", "--kind", "proxy", "enabled=1"});
  EXPECT_THAT(fail(2, {"set", "x", "--kind", "proxy", "nothing=1"}),
              HasSubstr("sitelist: unknown field \"nothing\"\n"));
  EXPECT_THAT(fail(2, {"set", "x", "--kind", "proxy", "bypassLocalAddress=1", "secret"}),
              testing::AllOf(HasSubstr("sitelist: FIELD=VALUE number 2 has no \"=\"\n"),
                             testing::Not(HasSubstr("secret"))));
  EXPECT_THAT(fail(2, {"set", "x", "--kind", "http", "name=y"}), HasSubstr("sitelist edit rename"));
}

TEST_F(CliEditFields, EveryKindCanBeAddedAndIsKnownToValidate) {
  // Three elements share SITE_KIND_HTTP.
  EXPECT_EQ(kindCases().size(), std::size(sitehlp::c_siteKinds) + 2);
  std::string names;
  for (const KindCase& kind : kindCases()) {
    names += kind.kind + '\n';
    setOwnList(document(""));
    change({"add", kind.kind, "x", "--force"});
    change(Arguments{"add", kind.kind, "last", "--force"} + assignments(kind));
    const Output validated = sitelist({"validate", "--unmanaged", ownList()});
    EXPECT_EQ(validated.status, 0) << kind.kind << ": " << validated.out << validated.err;
    EXPECT_THAT(validated.out, Not(HasSubstr("unknown-"))) << kind.kind;
  }
  EXPECT_EQ(bare({"__complete", "--", "edit", "add", ""}).out, names + ":nothing\n");
}

TEST_F(CliEditFields, AddsASiteInTheFormInWhichTheLibraryWritesIt) {
  for (const KindCase& kind : kindCases()) {
    for (const Arguments& values : {Arguments(), assignments(kind)}) {
      setOwnList(document(""));
      change(Arguments{"add", kind.kind, "x", "--force"} + values);
      changeNothing(Arguments{"add", kind.kind, "x"} + values);
      const std::string own = elementIn(readFile(ownList()), kind.element);
      ASSERT_EQ(sitelist({"rewrite", ownList(), file("copy.xml")}).status, 0);
      // The library reads "ServerName" and "ServerIP" of an HTTP site but does not write them.
      const std::regex others(kind.kind == "http" ? " Server(Name|IP)=\"[^\"]*\"" : "^$");
      EXPECT_EQ(std::regex_replace(own, others, ""),
                elementIn(readFile(file("copy.xml")), kind.element));
    }
    Values added = site("x");
    for (const Value& value : kind.values) {
      EXPECT_EQ(added[value.field], value.read) << kind.kind << ": " << value.field;
    }
  }
}

TEST_F(CliEditFields, AddsWithDefaults) {
  setOwnList(document(sitesWithOrders({"3", "7"}) +
                      siteElement("HttpSite", "Mirror", "90", "Type=\"mirror\"") +
                      siteElement("HttpSite", "Last", "", "Type=\"fallback\"")));
  EXPECT_EQ(change({"add", "http", "new", "server=h"}),
            "sitelist: " + ownList() + ": added http \"new\"\n");
  Values added = site("new");
  EXPECT_EQ(added["enabled"], "true");
  EXPECT_EQ(added["local"], "false");
  EXPECT_EQ(added["order"], "8");
  EXPECT_EQ(added["type"], "repository");
  EXPECT_EQ(added["serverPort"], "80");
  EXPECT_EQ(added["password"], "");
  change({"add", "server", "main", "server=h"});
  EXPECT_EQ(site("main")["type"] + site("main")["order"], "master9");
  change({"add", "ftp", "files", "order=1", "server=h"});
  EXPECT_EQ(site("files")["serverPort"] + site("files")["order"], "211");
  change({"add", "http", "mirror 2", "type=mirror", "server=h"});
  EXPECT_EQ(site("mirror 2")["order"], "0");
  change({"add", "http", "last 2", "type=fallback", "server=h"});
  EXPECT_EQ(site("last 2")["order"], "65535");
  EXPECT_EQ(orders(), "files=1 a=3 b=7 new=8 main=9");
  setOwnList(document(sitesWithOrders({"2147483647"})));
  EXPECT_THAT(fail(2, {"add", "http", "new"}), HasSubstr("order=NUMBER"));
}

TEST_F(CliEditFields, AddsNothingInPlaceOfAnotherSite) {
  setOwnList(document(siteElement("HttpSite", "x", "5")));
  EXPECT_THAT(
      fail(6, {"add", "http", "x", "server=y"}),
      HasSubstr(
          "http \"x\" exists already, with other values\n  it differs in type, enabled, server\n"));
  change({"add", "ftp", "x", "server=y"});
  changeNothing({"add", "ftp", "x", "server=y", "order=6"});
  fail(6, {"add", "ftp", "x", "server=y", "order=7"});
}

TEST_F(CliEditFields, LeavesTheOtherPartOfAnAddressAlone) {
  setOwnList(document(siteElement("HttpSite", "x", "1", "Server=\"[fe80::1]:443\" ServerIP=\"a\"") +
                      siteElement("FTPSite", "y", "2")));
  change({"set", "x", "serverPort=8080", "serverIP=b", "serverNamePort=3"});
  change({"set", "y", "server=h"});
  EXPECT_THAT(readFile(ownList()), HasSubstr("Server=\"[fe80::1]:8080\" ServerIP=\"b:80\" "
                                             "ServerName=\":3\""));
  EXPECT_THAT(readFile(ownList()), HasSubstr("Server=\"h:80\""));
  change({"set", "x", "server=c"});
  EXPECT_THAT(readFile(ownList()), HasSubstr("Server=\"c:8080\""));
}

TEST_F(CliEditFields, SetsTheAddressOfAnAgentWhereItIsRead) {
  setOwnList(document(siteElement("KeystoneSite", "x", "1", "Server=\"a:1\" ServerDNS=\"b:2\"") +
                      siteElement("HttpSite", "y", "2", "Server=\"a:1\" ServerDNS=\"b:2\"")));
  change({"set", "x", "server=c"});
  change({"set", "x", "serverPort=3"});
  change({"set", "y", "server=c"});
  EXPECT_THAT(readFile(ownList()),
              HasSubstr("Name=\"x\" Order=\"1\" Server=\"a:1\" ServerDNS=\"c:3\""));
  EXPECT_THAT(readFile(ownList()),
              HasSubstr("Name=\"y\" Order=\"2\" Server=\"c:1\" ServerDNS=\"b:2\""));
}

TEST_F(CliEditFields, ChangesTheElementThatCounts) {
  setOwnList(document(siteElement("HttpSite", "x", "1", "",
                                  "<UserName>first</UserName><UserName>last<!-- c --></UserName>") +
                      "<ProxyConfigList><ProxyConfig Name=\"old\"/><ProxyConfig Name=\"y\"/>"
                      "</ProxyConfigList>"));
  change({"set", "x", "userName=new"});
  change({"set", "y", "httpProxyUser=u"});
  const std::string list = readFile(ownList());
  EXPECT_THAT(list, HasSubstr("<UserName>first</UserName><UserName>new<!-- c --></UserName>"));
  EXPECT_THAT(list, HasSubstr("<ProxyConfig Name=\"old\"/><ProxyConfig Name=\"y\">"
                              "<HttpProxyUser>u</HttpProxyUser></ProxyConfig>"));
}

TEST_F(CliEditFields, KeepsTheSettingOfAnEmptyProxyList) {
  setOwnList(document("<ProxyConfigList UseIEConfig=\"1\"/>"));
  change({"set", "", "--kind", "proxy", "bypassLocalAddress=1"});
  EXPECT_EQ(sites()[0]["useIEConfig"] + sites()[0]["bypassLocalAddress"], "truetrue");
}

TEST_F(CliEditFields, ChangesExclusionHostsInTheirPlaces) {
  setOwnList(
      document("<ProxyConfigList><ProxyConfig Name=\"x\"><ExclusionList><!-- 1 -->"
               "<ExclusionHost own=\"1\">a</ExclusionHost><ExclusionHost>b</ExclusionHost>"
               "</ExclusionList><ExclusionList><ExclusionHost>c</ExclusionHost>"
               "</ExclusionList></ProxyConfig></ProxyConfigList>"));
  changeNothing({"set", "x", "exclusionList=a;b;c"});
  change({"set", "x", "exclusionList=a;d"});
  EXPECT_THAT(readFile(ownList()),
              HasSubstr("<ExclusionList><!-- 1 --><ExclusionHost own=\"1\">a</ExclusionHost>"
                        "<ExclusionHost>d</ExclusionHost></ExclusionList><ExclusionList/>"));
  change({"set", "x", "exclusionList=a;d;e;f"});
  EXPECT_EQ(site("x")["exclusionList"] + site("x")["exclusionCount"], "a;d;e;f4");
  change({"set", "x", "exclusionList="});
  EXPECT_EQ(site("x")["exclusionList"] + site("x")["exclusionCount"], "0");
}

TEST_F(CliEditFields, RefusesWhatTheAgentWouldCut) {
  setEmptySites();
  struct Capacity {
    std::string kind;
    std::string field;
    std::size_t characters;
  };
  for (const Capacity& each : std::vector<Capacity>{{"http", "userName", 259},
                                                    {"http", "server", 259},
                                                    {"http", "serverName", 260},
                                                    {"http", "serverIP", 99},
                                                    {"http", "relativePath", 519},
                                                    {"server", "version", 259},
                                                    {"ftp", "relativePath", 519},
                                                    {"unc", "shareName", 259},
                                                    {"local", "domainName", 259},
                                                    {"proxy", "httpProxyServer", 259},
                                                    {"proxy", "alternateFtpProxyUser", 259},
                                                    {"proxy", "exclusionList", 3998}}) {
    std::string most;
    for (std::size_t i = 0; i < each.characters; ++i) most += "ä";
    const Arguments site = {"set", "x", "--force", "--kind", each.kind};
    change(site + Arguments{each.field + "=" + most});
    EXPECT_THAT(fail(2, site + Arguments{each.field + "=" + most + "x"}),
                HasSubstr(each.field + (each.kind == "proxy" && each.field == "exclusionList"
                                            ? ": the host is too long\n  next: give at most 3998 "
                                              "characters; the agent drops the rest\n"
                                            : ": the value has ")));
  }
  EXPECT_EQ(sites()[6]["exclusionList"].size(), 2 * 3998U);
  const std::string two = "exclusionList=a;" + std::string(3997, 'b');
  change({"set", "x", "--kind", "proxy", two});
  EXPECT_EQ(sites()[6]["exclusionList"].size(), 3999U);
  EXPECT_THAT(fail(2, {"set", "x", "--kind", "proxy", two + "b"}),
              HasSubstr("there are too many hosts\n  next: give at most 3999 characters; "));
  change({"rename", "x", std::string(259, 'n'), "--kind", "unc"});
  EXPECT_THAT(fail(2, {"rename", "x", std::string(260, 'n'), "--kind", "ftp"}),
              HasSubstr("name: the value has 260 characters"));
  fail(2, {"add", "ftp", std::string(260, 'n')});
}

TEST_F(CliEditFields, RefusesValuesThatAreNone) {
  setEmptySites();
  const std::vector<std::pair<std::string, Arguments>> wrong = {
      {"http", {"serverPort=0",     "serverPort=65536", "serverPort=",
                "serverPort=80x",   "serverPort=-1",    "serverPort=99999999999999999999",
                "securePort=65536", "order=-1",         "order=2147483648",
                "useAuth=yes",      "type=bogus",       "type=",
                "server=a b",       "serverIP=a\tb",    "enabled=yes",
                "enabled=2",        "local=",           "serverName=a.b",
                "userName=a\x01z",  "userName=\xFF",    "userName=\xEF\xBF\xBF"}},
      {"proxy",
       {"httpProxyPort=65536", "httpProxyPort=1", "ftpProxyPort=1", "useIEConfig=x",
        "exclusionList=a\x02"}},
  };
  for (const auto& [kind, values] : wrong) {
    for (const std::string& value : values) {
      const std::string message = fail(2, {"set", "x", "--kind", kind, value});
      EXPECT_THAT(message, HasSubstr("sitelist: " + value.substr(0, value.find('=')) + ": "));
    }
  }
  fail(2, {"add", "proxy", "new", "ftpProxyPort=1"});
  change({"set", "x", "--kind", "proxy", "httpProxyPort=1", "httpProxyServer=a"});
  change({"set", "x", "--kind", "proxy", "httpProxyPort=2"});
  fail(2, {"set", "x", "--kind", "proxy", "httpProxyPort=3", "httpProxyServer="});
}

}  // namespace
}  // namespace test
