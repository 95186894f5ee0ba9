#include "tools/sitelist/cli/typed_line.h"

#include <algorithm>

namespace tool {

bool isOptionWord(const std::string& word) { return word.size() > 1 && word[0] == '-'; }

void TypedLine::read(const std::string& word) {
  if (m_isRest) return;
  if (m_waiting) {
    m_values[m_waiting->names.back()] = word;
    m_waiting = nullptr;
  } else if (m_areOptionsOver || !isOptionWord(word)) {
    readArgument(word);
  } else if (word == "--") {
    m_areOptionsOver = true;
  } else {
    readOption(word);
  }
}

void TypedLine::readOption(const std::string& word) {
  const std::size_t end = word.find('=');
  const OptionInfo* const option = findOption(word.substr(0, end));
  if (!option) return;
  m_given.insert(option);
  if (option->isFlag) {
    m_isRest = !option->valueName.empty();
  } else if (end != std::string::npos) {
    m_values[option->names.back()] = word.substr(end + 1);
  } else {
    m_waiting = option;
  }
}

void TypedLine::readArgument(const std::string& word) {
  for (const CommandInfo& command : m_commands.back()->commands) {
    if (m_areOptionsOver || word != command.name) continue;
    m_commands.push_back(&command);
    m_place = 0;
    return;
  }
  if (const OptionInfo* const taker = argument()) m_values[taker->valueName] = word;
  ++m_place;
}

const OptionInfo* TypedLine::argument() const {
  const std::vector<OptionInfo>& arguments = m_commands.back()->arguments;
  if (m_place < arguments.size()) return &arguments[m_place];
  return !arguments.empty() && arguments.back().isRepeatable ? &arguments.back() : nullptr;
}

const OptionInfo* TypedLine::findOption(const std::string& name) const {
  for (auto command = m_commands.rbegin(); command != m_commands.rend(); ++command) {
    for (const OptionInfo& option : (*command)->options) {
      if (std::find(option.names.begin(), option.names.end(), name) != option.names.end()) {
        return &option;
      }
    }
  }
  return nullptr;
}

std::string TypedLine::value(const std::string& name) const {
  const auto found = m_values.find(name);
  return found == m_values.end() ? "" : found->second;
}

}  // namespace tool
