#include "tools/sitelist/generator/completion.h"

#include <algorithm>

#include "tools/sitelist/generator/help_text.h"

namespace tool {
namespace {

using Visit = std::function<void(const CommandInfo&, const std::string&)>;

void visitBelow(const CommandInfo& above, const std::string& path, const Visit& visit) {
  visit(above, path);
  for (const CommandInfo& command : above.commands) {
    visitBelow(command, path.empty() ? command.name : path + ' ' + command.name, visit);
  }
}

}  // namespace

void forEachCommand(const CommandInfo& program, const Visit& visit) {
  visitBelow(program, "", visit);
}

std::string completionOf(const OptionInfo& option) {
  switch (option.completes) {
    case Completion::File:
      return "file";
    case Completion::Directory:
      return "directory";
    case Completion::Site:
      return "site";
    case Completion::List:
      return "list";
    case Completion::Nothing:
      break;
  }
  return wordsFor(option).empty() ? "nothing" : "words";
}

const std::vector<std::string>& wordsFor(const OptionInfo& option) {
  return option.choices.empty() ? option.suggestions : option.choices;
}

std::vector<OptionInfo> ownOptions(const CommandInfo& command, const std::string& path) {
  std::vector<OptionInfo> options = command.options;
  const auto isHelp = [](const OptionInfo& option) { return option.names.back() == "--help"; };
  if (!path.empty()) {
    options.erase(std::remove_if(options.begin(), options.end(), isHelp), options.end());
  }
  return options;
}

bool takesValue(const OptionInfo& option) { return !option.isFlag; }

bool takesRest(const OptionInfo& option) { return option.isFlag && !option.valueName.empty(); }

std::string brief(const std::string& help) {
  const std::string text = unbroken(help);
  std::size_t end = text.size();
  for (const char* stop : {": ", "; ", ". ", " (default"}) end = std::min(end, text.find(stop));
  return text.substr(0, end);
}

std::string quoted(const std::string& text) {
  std::string result = "'";
  for (const char c : text) result += c == '\'' ? "'\\''" : std::string(1, c);
  return result + '\'';
}

std::string joined(const std::vector<std::string>& words, const std::string& separator) {
  std::string text;
  for (const std::string& word : words) text += (text.empty() ? "" : separator) + word;
  return text;
}

}  // namespace tool
