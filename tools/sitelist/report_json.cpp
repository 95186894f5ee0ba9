#include <nlohmann/json.hpp>
#include <ostream>

#include "tools/sitelist/report.h"
#include "tools/sitelist/text.h"

namespace tool {
namespace {

using nlohmann::ordered_json;

// What the command line or a file name brought need not be UTF-8; all else already is.
ordered_json jsonOf(const Scalar& value) {
  if (const bool* const flag = std::get_if<bool>(&value)) return *flag;
  if (const auto* const number = std::get_if<std::int64_t>(&value)) return *number;
  if (const auto* const text = std::get_if<std::string>(&value)) return narrow(wide(*text));
  return nullptr;
}

// Names are unique, so they need not be looked up.
ordered_json objectOf(const Record& record) {
  ordered_json::object_t object;
  object.reserve(record.size());
  for (const auto& [name, value] : record) object.emplace_back(name, jsonOf(value));
  return object;
}

}  // namespace

void printJson(std::ostream& out, const Report* report, const Ending& ending) {
  ordered_json::object_t document;
  document.emplace_back("schema_version", c_schemaVersion);
  document.emplace_back("command", ending.command);
  document.emplace_back("status", ending.status);
  if (report) {
    for (const auto& [name, value] : report->facts) document.emplace_back(name, jsonOf(value));
    if (!report->rowsName.empty()) {
      ordered_json rows = ordered_json::array();
      for (const Record& row : report->rows) rows.push_back(objectOf(row));
      document.emplace_back(report->rowsName, std::move(rows));
    }
  }
  if (ending.failure) document.emplace_back("error", objectOf(factsOf(*ending.failure)));
  // Escaped down to ASCII: what a document holds does nothing to a terminal.
  out << ordered_json(std::move(document)).dump(2, ' ', true) << '\n';
}

}  // namespace tool
