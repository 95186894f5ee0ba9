#include "tools/sitelist/cli/completion.h"

#include <algorithm>
#include <set>

#include "tools/sitelist/cli/text.h"
#include "tools/sitelist/cli/typed_line.h"

namespace tool {
namespace {

bool isSafe(const std::string& text) { return !text.empty() && shown(text) == text; }

// Returns the first sentence of a help text, in one line.
std::string brief(const std::string& help) {
  std::string text = help;
  std::replace(text.begin(), text.end(), '\n', ' ');
  std::size_t end = text.size();
  for (const char* stop : {": ", "; ", ". ", " (default"}) end = std::min(end, text.find(stop));
  return text.substr(0, end);
}

// Returns whether the word is only the first part of a value.
bool isOpen(const std::string& word) { return word.back() == '=' || word.back() == '.'; }

// Returns whether at least one word has the prefix `typed`, and every such word is only the first
// part of a value.
bool areOpen(const std::vector<std::string>& words, const std::string& typed) {
  bool areThere = false;
  for (const std::string& word : words) {
    if (word.compare(0, typed.size(), typed) != 0) continue;
    if (!isOpen(word)) return false;
    areThere = true;
  }
  return areThere;
}

std::vector<std::string> wordsFor(const OptionInfo& option, const std::string& typed) {
  std::vector<std::string> words = option.choices.empty() ? option.suggestions : option.choices;
  if (option.completes == Completion::List) {
    const std::string before = typed.substr(0, typed.rfind(',') + 1);
    for (std::string& word : words) word.insert(0, before);
  } else if (typed.find('=') != std::string::npos) {
    words.erase(std::remove_if(words.begin(), words.end(), isOpen), words.end());
  }
  return words;
}

std::vector<std::string> sitesFor(const TypedLine& line, const SiteNames& siteNames) {
  const std::string file = line.value("--file");
  return siteNames(line.value("--agent-dir"), file.empty() ? line.value("FILE") : file);
}

// `front` is the text before the value in the same word. It is empty, or an option with "=".
Answer completeValue(const TypedLine& line, const OptionInfo& option, const std::string& front,
                     const std::string& typed, const SiteNames& siteNames) {
  if (option.completes == Completion::File) return {{}, Further::Files};
  if (option.completes == Completion::Directory) return {{}, Further::Directories};
  const bool isSite = option.completes == Completion::Site;
  const std::vector<std::string> values =
      isSite ? sitesFor(line, siteNames) : wordsFor(option, typed);
  Answer answer;
  for (const std::string& value : values) {
    if (isSafe(front + value)) answer.candidates.push_back({front + value, ""});
  }
  if (option.completes == Completion::List || (!isSite && areOpen(values, typed))) {
    answer.further = Further::NoSpace;
  }
  return answer;
}

Answer completeOption(const TypedLine& line, const std::string& word, const SiteNames& siteNames) {
  const std::size_t end = word.find('=');
  if (end != std::string::npos) {
    const OptionInfo* const option = line.findOption(word.substr(0, end));
    if (!option || option->isFlag) return {};
    return completeValue(line, *option, word.substr(0, end + 1), word.substr(end + 1), siteNames);
  }
  Answer answer;
  std::set<std::string> names;  // each command has its own --help
  for (auto command = line.commands().rbegin(); command != line.commands().rend(); ++command) {
    for (const OptionInfo& option : (*command)->options) {
      if (line.isGiven(option) && !option.isRepeatable) continue;
      for (const std::string& name : option.names) {
        if (names.insert(name).second) answer.candidates.push_back({name, brief(option.help)});
      }
    }
  }
  return answer;
}

Answer completeArgument(const TypedLine& line, const std::string& word,
                        const SiteNames& siteNames) {
  Answer answer;
  if (const OptionInfo* const argument = line.argument()) {
    answer = completeValue(line, *argument, "", word, siteNames);
    const auto isTakenForOption = [&](const Candidate& each) {
      return !line.areOptionsOver() && isOptionWord(each.value);
    };
    std::vector<Candidate>& all = answer.candidates;
    all.erase(std::remove_if(all.begin(), all.end(), isTakenForOption), all.end());
  }
  if (!line.takesCommand()) return answer;
  for (const CommandInfo& command : line.commands().back()->commands) {
    answer.candidates.push_back({command.name, command.description});
  }
  return answer;
}

}  // namespace

Answer completionsOf(const CommandInfo& program, const std::vector<std::string>& words,
                     const SiteNames& siteNames) {
  if (words.empty()) return {};
  TypedLine line(program);
  for (std::size_t i = 0; i + 1 < words.size(); ++i) line.read(words[i]);
  const std::string& word = words.back();
  if (line.isRest()) return {{}, Further::Files};
  if (line.waiting()) return completeValue(line, *line.waiting(), "", word, siteNames);
  if (line.areOptionsOver() || word.empty() || word[0] != '-') {
    return completeArgument(line, word, siteNames);
  }
  return completeOption(line, word, siteNames);
}

}  // namespace tool
