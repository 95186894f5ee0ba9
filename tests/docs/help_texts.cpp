#include "tests/docs/help_texts.h"

#include <cstdio>
#include <regex>
#include <sstream>
#include <stdexcept>

namespace test {
namespace {

std::string outputOf(const std::string& command) {
  FILE* const pipe = ::popen(command.c_str(), "r");
  if (!pipe) throw std::runtime_error("popen " + command);
  std::string text;
  char buffer[4096];
  for (std::size_t n; (n = std::fread(buffer, 1, sizeof buffer, pipe)) > 0;) text.append(buffer, n);
  if (::pclose(pipe) != 0) throw std::runtime_error(command + " failed");
  return text;
}

void gather(const std::vector<std::string>& path, const std::set<std::string>& inherited,
            std::vector<HelpText>& all) {
  HelpText help;
  help.path = path;
  help.options = inherited;
  help.text =
      outputOf('\'' + std::string(SITELIST_TOOL) + '\'' + help.name().substr(8) + " --help");
  static const std::regex option("  (?:-\\w,)?(--[a-z-]+).*");
  static const std::regex command("  ([a-z-]+) .*");
  std::string section;
  std::istringstream lines(help.text);
  for (std::string line; std::getline(lines, line);) {
    if (!line.empty() && line[0] != ' ') section = line;
    std::smatch match;
    if (section == "Options:" && std::regex_match(line, match, option)) {
      help.own.insert(match[1]);
    } else if (section == "Commands:" && std::regex_match(line, match, command)) {
      help.commands.insert(match[1]);
    }
  }
  help.options.insert(help.own.begin(), help.own.end());
  all.push_back(help);
  for (const std::string& below : help.commands) {
    std::vector<std::string> longer = path;
    longer.push_back(below);
    gather(longer, help.options, all);
  }
}

}  // namespace

std::string HelpText::name() const {
  std::string name = "sitelist";
  for (const std::string& word : path) name += ' ' + word;
  return name;
}

const std::vector<HelpText>& helpTexts() {
  static const std::vector<HelpText> texts = [] {
    std::vector<HelpText> all;
    gather({}, {}, all);
    return all;
  }();
  return texts;
}

}  // namespace test
