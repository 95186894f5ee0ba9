#include <nlohmann/json.hpp>
#include <sstream>

#include "tests/cli/documents.h"
#include "tests/cli/edit_fixture.h"

namespace test {
namespace {

using nlohmann::json;

// Wrong usage in the formats for programs.
class CliUsageReport : public CliTest {
 protected:
  json reportOf(const Arguments& arguments) {
    const Output output = bare(arguments);
    EXPECT_EQ(output.status, 2) << testing::PrintToString(arguments) << output.err;
    const json document = json::parse(output.out, nullptr, false);
    EXPECT_FALSE(document.is_discarded()) << testing::PrintToString(arguments) << output.out;
    return document;
  }

  // Returns the names below "Commands:" in a help text.
  std::vector<std::string> commandsIn(const Arguments& command) {
    std::istringstream lines(bare(command + Arguments{"--help"}).out);
    std::vector<std::string> names;
    bool isBelow = false;
    for (std::string line; std::getline(lines, line);) {
      if (isBelow && line.empty()) break;
      if (isBelow && line.rfind("  ", 0) == 0 && line[2] != ' ') {
        names.push_back(line.substr(2, line.find(' ', 2) - 2));
      }
      if (line == "Commands:") isBelow = true;
    }
    return names;
  }

  // Returns every command with the commands above it.
  std::vector<Arguments> commands() {
    std::vector<Arguments> all;
    for (const std::string& name : commandsIn({})) {
      all.push_back({name});
      for (const std::string& below : commandsIn({name})) all.push_back({name, below});
    }
    return all;
  }
};

TEST_F(CliUsageReport, NamesTheCommandWhereverTheFaultIs) {
  const std::vector<Arguments> all = commands();
  EXPECT_GT(all.size(), 30U);
  for (const Arguments& command : all) {
    std::string name;
    for (const std::string& word : command) name += (name.empty() ? "" : " ") + word;
    for (const Arguments& fault : {
             Arguments{"--bogus"},
             {"--bogus=x"},
             {"--color", "sometimes"},
             {"--format=yaml"},
             {"--json=x"},
             {"--agent-dir", "a", "--agent-dir", "b"},
         }) {
      for (const Arguments& line : {fault + command, command + fault}) {
        const json report = reportOf(Arguments{"--json"} + line);
        EXPECT_EQ(report["command"], name) << testing::PrintToString(line);
        EXPECT_EQ(report["error"]["name"], "usage");
        EXPECT_EQ(report["changed"], false);
        EXPECT_EQ(report["warnings"], json::array());
      }
    }
    EXPECT_EQ(reportOf(Arguments{"--json"} + command + Arguments{"--wait"})["command"], name);
  }
}

TEST_F(CliUsageReport, NamesTheCommandWhenAValueIsRefusedLater) {
  for (const Arguments& fault : {Arguments{"--wait", "long"},
                                 {"--agent-dir", ""},
                                 {"--quiet", "--verbose"},
                                 {"--format", "csv"}}) {
    for (const char* command : {"show", "protect", "history", "explain-rule"}) {
      EXPECT_EQ(reportOf(fault + Arguments{command, "--json"})["command"], command)
          << testing::PrintToString(fault);
    }
  }
}

TEST_F(CliUsageReport, NamesNoCommandWhenNoneIsKnown) {
  EXPECT_EQ(reportOf({"--json"})["command"], "");
  EXPECT_EQ(reportOf({"--json", "bogus"})["command"], "");
  EXPECT_EQ(reportOf({"--json", "--wait", "show"})["command"], "") << "it is a value here";
  EXPECT_EQ(reportOf({"--json", "edit", "bogus"})["command"], "edit");
}

TEST_F(CliUsageReport, RefusesTwoFormatsWhereverTheyStand) {
  const std::string path = write("list.xml", document(httpSite("depot")));
  for (const char* format : {"table", "csv", "xml"}) {
    const std::string joined = std::string("--format=") + format;
    for (const Arguments& line : {Arguments{"--json", "--format", format, "show", path},
                                  {"--format", format, "show", path, "--json"},
                                  {joined, "--json", "show", path},
                                  {"show", path, joined, "--json"}}) {
      const json report = reportOf(line);
      EXPECT_EQ(report["command"], "show") << testing::PrintToString(line);
      EXPECT_EQ(report["error"]["message"],
                "--json and --format " + std::string(format) + " cannot be used together");
    }
  }
}

}  // namespace
}  // namespace test
