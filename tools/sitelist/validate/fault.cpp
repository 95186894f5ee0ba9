#include "tools/sitelist/validate/fault.h"

#include <algorithm>
#include <stdexcept>
#include <utility>

#include "tools/sitelist/cli/text.h"

namespace tool {

void Faults::add(const char* rule, const Place& place, const std::string& text) {
  const Rule* const known = findRule(rule);
  if (!known) throw std::logic_error(std::string("there is no rule ") + rule);
  m_faults.push_back({known, place, text, {}});
}

bool Faults::has(const char* rule) const {
  return std::any_of(m_faults.begin(), m_faults.end(),
                     [rule](const Fault& fault) { return fault.rule == findRule(rule); });
}

std::vector<Fault> Faults::take() {
  std::stable_sort(m_faults.begin(), m_faults.end(),
                   [](const Fault& a, const Fault& b) { return a.place < b.place; });
  return std::move(m_faults);
}

std::string inQuotes(const std::wstring& text) {
  constexpr std::size_t longest = 60;
  if (text.size() <= longest) return "\"" + narrow(text) + "\"";
  return "\"" + narrow(text.substr(0, longest)) + "...\"";
}

std::string inLine(const Place& place) { return " in line " + std::to_string(place.line); }

std::string lineOf(const std::string& file, const Fault& fault, const Screen& screen) {
  std::string line = shown(file) + ":";
  if (fault.place.line != 0) {
    line += std::to_string(fault.place.line) + ":" + std::to_string(fault.place.column) + ":";
  }
  const bool isWarning = fault.rule->severity == Severity::Warning;
  line += " " + screen.styled(isWarning ? Style::Changed : Style::Bad, fault.rule->name) + ": " +
          shown(fault.text);
  if (!fault.site.empty()) line += " (site " + shown(inQuotes(fault.site)) + ")";
  return isWarning ? line + " [warning]" : line;
}

}  // namespace tool
