#include <nlohmann/json.hpp>
#include <sstream>

#include "tests/cli/documents.h"
#include "tests/cli/edit_fixture.h"
#include "tests/support/sanitizer.h"

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

// Returns the command lines of a command with each fault before it and after it.
std::vector<Arguments> faultyLines(const Arguments& command) {
  std::vector<Arguments> lines = {command + Arguments{"--wait"}};
  for (const Arguments& fault : {
           Arguments{"--bogus"},
           {"--bogus=x"},
           {"--color", "sometimes"},
           {"--format=yaml"},
           {"--json=x"},
           {"--agent-dir", "a", "--agent-dir", "b"},
       }) {
    lines.push_back(fault + command);
    lines.push_back(command + fault);
  }
  return lines;
}

TEST_F(CliUsageReport, NamesTheCommandWhereverTheFaultIs) {
  const std::vector<Arguments> all = commands();
  EXPECT_GT(all.size(), 30U);
  std::size_t turn = 0;
  for (const Arguments& command : all) {
    std::string name;
    for (const std::string& word : command) name += (name.empty() ? "" : " ") + word;
    std::vector<Arguments> lines = faultyLines(command);
    // With a sanitizer 400 processes take half a minute to start. Each command then has one of the
    // lines in turn. There are more commands than lines, so every line is tried.
    ASSERT_GT(all.size(), lines.size());
    if (TESTS_SANITIZED) lines = std::vector<Arguments>(1, lines[turn++ % lines.size()]);
    for (const Arguments& line : lines) {
      const json report = reportOf(Arguments{"--json"} + line);
      EXPECT_EQ(report["command"], name) << testing::PrintToString(line);
      EXPECT_EQ(report["error"]["name"], "usage");
      EXPECT_EQ(report["changed"], false);
      EXPECT_EQ(report["warnings"], json::array());
    }
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
