#include <nlohmann/json.hpp>
#include <set>

#include "tests/cli/cli_fixture.h"
#include "tests/cli/documents.h"

namespace test {
namespace {

using nlohmann::json;
using testing::HasSubstr;

class CliExplainRule : public CliTest {
 protected:
  json rules() { return json::parse(sitelist({"explain-rule", "--json"}).out)["rules"]; }
};

TEST_F(CliExplainRule, EveryRuleHasAllItsTexts) {
  std::set<std::string> names;
  std::set<std::string> explanations;
  for (const json& rule : rules()) {
    const std::string name = rule["name"];
    EXPECT_THAT(name, testing::MatchesRegex("[a-z]+(-[a-z]+)+"));
    EXPECT_TRUE(names.insert(name).second) << name << " is there twice";
    EXPECT_TRUE(rule["severity"] == "error" || rule["severity"] == "warning") << name;
    EXPECT_LE(rule["summary"].get<std::string>().size(), 54U) << name << " has to fit the help";
    for (const char* text : {"why", "mend"}) {
      EXPECT_THAT(rule[text].get<std::string>(), testing::MatchesRegex("[A-Z].*[^ ]\\.")) << name;
    }
    EXPECT_TRUE(explanations.insert(rule["why"]).second) << name << " is explained like another";
    for (const char* text : {"summary", "faulty", "mended"}) {
      EXPECT_NE(rule[text], "") << name;
      EXPECT_THAT(rule[text].get<std::string>(), testing::Not(HasSubstr("\n"))) << name;
    }
    EXPECT_NE(rule["faulty"], rule["mended"]) << name;
  }
  EXPECT_GE(names.size(), 40U);
}

// Returns a document that contains the example.
std::string inDocument(const std::string& rule, const std::string& example) {
  const auto begins = [&](const char* text) { return example.rfind(text, 0) == 0; };
  if (begins("<ns:SiteLists") || begins("<SiteLists ")) {
    const std::string name = begins("<ns:") ? "ns:SiteLists" : "SiteLists";
    return example + "</" + name + ">";
  }
  if (begins("<CaBundle>") || begins("<CaBundle/>") || begins("<Policies/>") ||
      begins("<SiteList")) {
    return "<ns:SiteLists xmlns:ns=\"wxSiteList\" GlobalVersion=\"1\">" + example +
           "</ns:SiteLists>";
  }
  if (rule == "not-well-formed") {
    return "<ns:SiteLists><SiteList><LocalSite>" + example +
           "</LocalSite></SiteList></ns:SiteLists>";
  }
  // The example comes before a known site, unless it must be the last site.
  const bool isLast = rule == "unknown-site" || rule == "no-server";
  return document(isLast ? example : example + "<LocalSite Name=\"Last\"/>");
}

TEST_F(CliExplainRule, ItsExamplesBreakTheRuleAndKeepIt) {
  // The examples of these rules are not whole elements.
  const std::set<std::string> others = {
      "missing-file",           "unreadable-file",      "invalid-encoding",   "over-limit",
      "server-kind-http",       "server-element",       "server-request-key", "server-public-key",
      "key-files-unchecked",    "policies-after-sites", "text-cut",           "exclusions-cut",
      "certificate-unreadable", "certificate-expired"};
  std::vector<std::string> command = {"validate", "--json"};
  std::size_t count = 0;
  for (const json& rule : rules()) {
    const std::string name = rule["name"];
    if (others.count(name) != 0) continue;
    ++count;
    command.push_back(write(name + ".faulty", inDocument(name, rule["faulty"])));
    command.push_back(write(name + ".mended", inDocument(name, rule["mended"])));
  }
  EXPECT_EQ(count + others.size(), rules().size());
  std::set<std::pair<std::string, std::string>> broken;
  const json report = json::parse(sitelist(command).out);
  for (const json& fault : report["faults"]) {
    broken.emplace(fault["file"], fault["rule"]);
  }
  for (std::size_t i = 2; i < command.size(); i += 2) {
    const std::string path = command[i];
    const std::size_t begin = path.rfind('/') + 1;
    const std::string name = path.substr(begin, path.rfind('.') - begin);
    EXPECT_EQ(broken.count({path, name}), 1U) << readFile(path);
    EXPECT_EQ(broken.count({command[i + 1], name}), 0U) << readFile(command[i + 1]);
  }
}

TEST_F(CliExplainRule, TheExamplesOfAServerBreakNoOtherErrorRule) {
  std::size_t count = 0;
  for (const json& rule : rules()) {
    const std::string name = rule["name"];
    const std::string mended = rule["mended"];
    if (mended.rfind("<VestaSite", 0) != 0) continue;
    ++count;
    const std::string path = write("server.xml", document(mended));
    EXPECT_EQ(json::parse(sitelist({"validate", "--json", path}).out)["faultCount"], 0) << name;
    if (name == "no-server") continue;
    write("server.xml", document(rule["faulty"].get<std::string>()));
    EXPECT_EQ(json::parse(sitelist({"validate", "--json", path}).out)["faultCount"], 1) << name;
  }
  EXPECT_EQ(count, 8U);
}

TEST_F(CliExplainRule, TellsAllOfOneRule) {
  const Output output = sitelist({"explain-rule", "flag-value"});
  EXPECT_EQ(output.status, 0);
  EXPECT_EQ(output.out,
            "flag-value (warning)\n"
            "  a flag is 0 or 1\n"
            "\n"
            "Why\n"
            "  A flag is read as a number. The words yes, true and on are read as 0, so a\n"
            "  site with Enabled=\"true\" is disabled.\n"
            "\n"
            "What to do\n"
            "  Write 1 or 0.\n"
            "\n"
            "Wrong\n"
            "  <LocalSite Name=\"Disk\" Enabled=\"true\"/>\n"
            "\n"
            "Right\n"
            "  <LocalSite Name=\"Disk\" Enabled=\"1\"/>\n");
  const json one = json::parse(sitelist({"explain-rule", "flag-value", "--json"}).out);
  EXPECT_EQ(one["name"], "flag-value");
  EXPECT_EQ(one["severity"], "warning");
  EXPECT_EQ(one["mend"], "Write 1 or 0.");
  int count = 0;
  for (const json& rule : rules()) {
    if (rule["name"] != "flag-value") continue;
    ++count;
    for (const auto& [name, text] : rule.items()) EXPECT_EQ(one[name], text) << name;
  }
  EXPECT_EQ(count, 1);
}

TEST_F(CliExplainRule, ListsAllRulesOnALineEach) {
  const std::string out = sitelist({"explain-rule"}).out;
  EXPECT_THAT(out, testing::StartsWith("RULE                    SEVERITY  REQUIREMENT\n"
                                       "missing-file            error     the file exists\n"));
  EXPECT_THAT(out, HasSubstr("\nflag-value              warning   a flag is 0 or 1\n"));
  EXPECT_EQ(static_cast<std::size_t>(std::count(out.begin(), out.end(), '\n')), rules().size() + 1);
}

TEST_F(CliExplainRule, NamesWhatIsNearAnUnknownRule) {
  const Output output = sitelist({"explain-rule", "server-adress"});
  EXPECT_EQ(output.status, 7);
  EXPECT_EQ(output.out, "");
  EXPECT_EQ(output.err,
            "sitelist: unknown rule \"server-adress\"; did you mean server-address?\n"
            "  next: list all rules with `sitelist explain-rule`\n");
  EXPECT_THAT(sitelist({"explain-rule", "certificate"}).err,
              HasSubstr("; did you mean certificate-expired or certificate-unreadable?\n"));
  EXPECT_THAT(sitelist({"explain-rule", "zzz"}).err, HasSubstr("unknown rule \"zzz\"\n"));
}

}  // namespace
}  // namespace test
