#include <algorithm>
#include <nlohmann/json.hpp>
#include <regex>
#include <set>
#include <sstream>

#include "host/agent.h"
#include "host/config/setting_names.h"
#include "tests/cli/cli_fixture.h"
#include "tests/docs/help_texts.h"

namespace test {
namespace {

using testing::ContainsRegex;
using testing::HasSubstr;
using testing::StartsWith;

std::string pagePath(const std::string& name) {
  return std::string(GENERATED_DIR) + "/man/" + name;
}

std::set<std::string> found(const std::string& text, const std::string& pattern) {
  const std::regex regex(pattern, std::regex::ECMAScript | std::regex::multiline);
  std::set<std::string> all;
  for (std::sregex_iterator i(text.begin(), text.end(), regex), end; i != end; ++i) {
    all.insert((*i)[1]);
  }
  return all;
}

class ManualPages : public CliTest {
 protected:
  // The lines of the page on a terminal of 80 columns, without bold and underlined letters.
  std::vector<std::string> linesOf(const std::string& page) {
    const Output output = shell("exec mandoc -T ascii -O width=80 \"$1\"", {pagePath(page)});
    EXPECT_EQ(output.status, 0);
    std::vector<std::string> lines;
    std::istringstream stream(std::regex_replace(output.out, std::regex(".\b"), ""));
    for (std::string line; std::getline(stream, line);) lines.push_back(line);
    return lines;
  }

  // Returns the text between a heading and the next one.
  std::string below(const std::vector<std::string>& lines, const std::string& heading) {
    auto line = std::find(lines.begin(), lines.end(), heading);
    EXPECT_NE(line, lines.end()) << heading;
    std::string text;
    while (line != lines.end() && ++line != lines.end()) {
      if (line->find_first_not_of(' ') <= 3) break;
      text += *line + '\n';
    }
    return text;
  }
};

const std::vector<std::string> c_pages = {"sitelist.1", "sitelist.json.5", "agent.toml.5"};

TEST_F(ManualPages, AreTakenByTwoFormattersWithoutAMessage) {
  for (const std::string& page : c_pages) {
    const Output lint = shell("exec mandoc -T lint -W warning \"$1\"", {pagePath(page)});
    EXPECT_EQ(lint.status, 0) << page;
    EXPECT_EQ(lint.out + lint.err, "") << page;
    const Output groff = shell("exec groff -ww -mandoc -Tutf8 \"$1\"", {pagePath(page)});
    EXPECT_EQ(groff.status, 0) << page;
    EXPECT_EQ(groff.err, "") << page;
    EXPECT_GT(groff.out.size(), 1000U) << page;
  }
}

TEST_F(ManualPages, FitATerminal) {
  for (const std::string& page : c_pages) {
    for (const std::string& line : linesOf(page)) {
      EXPECT_LE(line.size(), 80U) << page << ": " << line << "\nwrite it shorter, or in two lines";
    }
  }
}

TEST_F(ManualPages, ToolPageHasWhatTheHelpHas) {
  const std::vector<std::string> page = linesOf("sitelist.1");
  for (const HelpText& help : helpTexts()) {
    const bool isProgram = help.path.empty();
    const std::string name = help.name();
    const std::string text = below(page, isProgram ? "OPTIONS" : "   " + name.substr(9));
    std::set<std::string> options = help.own;
    if (!isProgram) options.erase("--help");
    EXPECT_EQ(found(text, "^     (?:-[a-z], )?(--[a-z-]+)"), options) << name;
    if (isProgram) continue;
    EXPECT_THAT(text, StartsWith("     " + name)) << "the synopsis";
    for (const std::string& option : options) {
      EXPECT_THAT(text, ContainsRegex("\\[?" + option + "[] ]")) << "in the synopsis of " << name;
    }
    for (const std::string& example : found(help.text, "^  (sitelist .*)")) {
      EXPECT_THAT(text, HasSubstr("       " + example + '\n')) << name;
    }
  }
}

TEST_F(ManualPages, ToolPageHasTheExitStatuses) {
  const std::set<std::string> told = found(helpTexts().front().text, "^ +([0-9]+)  ");
  EXPECT_GE(told.size(), 7U);
  EXPECT_EQ(found(below(linesOf("sitelist.1"), "EXIT STATUS"), "^ +([0-9]+)  "), told);
}

TEST_F(ManualPages, ToolPageHasTheExitStatusesOfEveryCommand) {
  const std::string table = below(linesOf("sitelist.1"), "   Statuses of each command");
  EXPECT_THAT(table, HasSubstr("  0  1  2  3  4  5  6  7\n"));
  for (const HelpText& help : helpTexts()) {
    if (!help.commands.empty()) continue;
    EXPECT_THAT(table, ContainsRegex("\n       " + help.name().substr(9) + "  +x")) << help.name();
  }
}

// The names at the beginning of the items of a list, in the page's source.
std::vector<std::string> itemNames(const std::string& source) {
  std::vector<std::string> names;
  static const std::regex item("\n\\.It Ic ([\\w.]+)");
  for (std::sregex_iterator i(source.begin(), source.end(), item), end; i != end; ++i) {
    names.push_back((*i)[1]);
  }
  return names;
}

void gatherNames(const nlohmann::json& schema, std::set<std::string>& names,
                 std::set<std::string>& words) {
  if (schema.is_object() && schema.contains("properties")) {
    for (const auto& property : schema.at("properties").items()) names.insert(property.key());
  }
  if (schema.is_object() && schema.contains("enum")) {
    for (const auto& value : schema.at("enum")) {
      if (value.is_string()) words.insert(value.get<std::string>());
    }
  }
  if (!schema.is_structured()) return;
  for (const auto& below : schema) gatherNames(below, names, words);
}

TEST_F(ManualPages, JsonPageHasEveryNameAndWordOfTheSchema) {
  std::set<std::string> names;
  std::set<std::string> words;
  gatherNames(nlohmann::json::parse(readFile(std::string(GENERATED_DIR) + "/sitelist.schema.json")),
              names, words);
  EXPECT_GT(names.size(), 50U);
  const std::string source = readFile(pagePath("sitelist.json.5"));
  const std::vector<std::string> items = itemNames(source);
  EXPECT_EQ(std::set<std::string>(items.begin(), items.end()), names);
  std::string text;
  for (const std::string& line : linesOf("sitelist.json.5")) text += line + ' ';
  text = std::regex_replace(text, std::regex(" +"), " ");
  for (const std::string& word : words)
    EXPECT_THAT(text, ContainsRegex("[^a-z]" + word + "[^a-z]"));
}

class SettingsPage : public ManualPages {
 protected:
  const std::string source = readFile(pagePath("agent.toml.5"));

  // Returns the literal texts of the page, without the escapes of the formatter.
  std::vector<std::string> literals() {
    std::vector<std::string> all;
    static const std::regex block("\\.Bd -literal[^\n]*\n([^]*?)\\.Ed\n");
    for (std::sregex_iterator i(source.begin(), source.end(), block), end; i != end; ++i) {
      std::string text = (*i)[1];
      text = std::regex_replace(text, std::regex("\\\\\\(dq"), "\"");
      text = std::regex_replace(text, std::regex("\\\\\\(aq"), "'");
      all.push_back(std::regex_replace(text, std::regex("\\\\-"), "-"));
    }
    return all;
  }

  // Returns the error for a settings file with this text, or an empty text if the file is valid.
  std::string faultOf(const std::string& text) {
    write("settings/agent.toml", text);
    try {
      host::readAgentSettings(file("settings"));
    } catch (const host::SettingsError& error) {
      return std::string(error.what()).substr(file("settings/").size());
    }
    return "";
  }
};

TEST_F(SettingsPage, DescribesTheSettingsThatTheReaderKnowsAndNoOther) {
  EXPECT_EQ(itemNames(source), host::settingNames());
}

TEST_F(SettingsPage, HasAnExampleOfEverySettingThatTheReaderTakes) {
  const std::string byDefault = host::formatAgentSettings(host::AgentSettings());
  const std::vector<std::string> names = host::settingNames();
  const std::vector<std::string> examples = literals();
  ASSERT_GT(examples.size(), names.size());
  for (std::size_t i = 0; i < names.size(); ++i) {
    EXPECT_THAT(examples[i], StartsWith(names[i] + " = "));
    EXPECT_EQ(faultOf(examples[i]), "");
    EXPECT_NE(host::formatAgentSettings(host::readAgentSettings(file("settings"))), byDefault)
        << examples[i] << " does not change a setting";
  }
  EXPECT_EQ(faultOf(examples[names.size()]), "") << "the file as a whole";
}

TEST_F(SettingsPage, ShowsTheErrorsThatTheReaderGives) {
  int shown = 0;
  for (const std::string& text : literals()) {
    std::istringstream lines(text);
    std::string refused;
    for (std::string line; std::getline(lines, line); refused = line) {
      if (line.rfind("agent.toml:", 0) != 0) continue;
      EXPECT_EQ(faultOf(refused), line);
      ++shown;
    }
  }
  EXPECT_GT(shown, static_cast<int>(host::settingNames().size()));
}

}  // namespace
}  // namespace test
