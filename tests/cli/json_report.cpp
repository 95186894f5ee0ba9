#include "tests/cli/json_report.h"

#include <nlohmann/json.hpp>

namespace test {
namespace {

using nlohmann::json;

std::string joined(const json& texts) {
  std::string all;
  for (const json& text : texts) all += (all.empty() ? "" : ";") + text.get<std::string>();
  return all;
}

bool hasTexts(const json& value) {
  return value.is_array() && !value.empty() && value.front().is_string();
}

JsonReport::Record recordOf(const json& object) {
  JsonReport::Record record;
  for (const auto& [name, value] : object.items()) {
    if (hasTexts(value)) record[name] = joined(value);
    if (value.is_null() || value.is_structured()) continue;
    record[name] = value.is_string() ? value.get<std::string>() : value.dump();
  }
  return record;
}

}  // namespace

std::vector<std::string> JsonReport::column(const std::string& name) const {
  std::vector<std::string> values;
  for (const Record& row : rows) {
    const auto found = row.find(name);
    values.push_back(found == row.end() ? "" : found->second);
  }
  return values;
}

JsonReport readReport(const std::string& text) {
  const json document = json::parse(text);
  JsonReport report;
  report.facts = recordOf(document);
  for (const auto& [name, value] : document.items()) {
    if (!value.is_array() || hasTexts(value)) continue;
    for (const json& row : value) report.rows.push_back(recordOf(row));
  }
  return report;
}

}  // namespace test
