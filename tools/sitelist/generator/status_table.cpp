#include <algorithm>
#include <nlohmann/json.hpp>
#include <stdexcept>

#include "tools/sitelist/generator/pages.h"

namespace tool {
namespace {

using Json = nlohmann::ordered_json;

constexpr const char* c_file = "exit-statuses.json: ";
constexpr int c_columnWidth = 3;
// 70 and the statuses of signals are possible for every command, so they have no column.
constexpr const char* c_statuses[] = {"0", "1", "2", "3", "4", "5", "6", "7"};

// Appends the names of the commands that can be run, such as "edit set".
void collectNames(const CommandInfo& info, const std::string& path,
                  std::vector<std::string>& names) {
  const bool isGroup = !info.commands.empty() && info.arguments.empty();
  if (!isGroup) names.push_back(path);
  for (const CommandInfo& below : info.commands) {
    collectNames(below, path.empty() ? below.name : path + ' ' + below.name, names);
  }
}

std::string cell(const std::string& text) {
  return std::string(c_columnWidth - text.size(), ' ') + text;
}

std::string padded(const std::string& name, std::size_t width) {
  return name + std::string(width - name.size(), ' ');
}

std::string joined(const Json& phrases) {
  std::string text;
  for (const Json& phrase : phrases) text += (text.empty() ? "" : "; ") + phrase.get<std::string>();
  return text;
}

void requireSameCommands(const Json& rows, const std::vector<std::string>& names) {
  for (const std::string& name : names) {
    if (!rows.contains(name)) throw std::runtime_error(c_file + ("no command \"" + name + "\""));
  }
  if (rows.size() != names.size())
    throw std::runtime_error(c_file + std::string("an unknown command"));
}

}  // namespace

StatusTable statusTable(const CommandInfo& program, const std::string& statuses) {
  const Json rows = Json::parse(statuses);
  std::vector<std::string> names;
  collectNames(program, "", names);
  requireSameCommands(rows, names);
  std::size_t width = 0;
  for (const std::string& name : names) width = std::max(width, name.size());
  StatusTable table;
  table.lines.push_back(padded("", width));
  for (const char* status : c_statuses) table.lines.back() += cell(status);
  for (const std::string& name : names) {
    const Json& row = rows.at(name);
    std::string line = padded(name, width);
    std::size_t known = 0;
    for (const char* status : c_statuses) {
      line += cell(row.contains(status) ? "x" : "");
      if (!row.contains(status)) continue;
      ++known;
      const std::string meaning = joined(row.at(status));
      if (!meaning.empty()) table.meanings.emplace_back(name + ' ' + status, meaning);
    }
    if (known != row.size())
      throw std::runtime_error(c_file + ("unknown status of \"" + name + "\""));
    line.erase(line.find_last_not_of(' ') + 1);
    table.lines.push_back(std::move(line));
  }
  return table;
}

}  // namespace tool
