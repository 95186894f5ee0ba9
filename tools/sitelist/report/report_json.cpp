#include <cstdint>
#include <nlohmann/json.hpp>
#include <ostream>

#include "tools/sitelist/report/report.h"

namespace tool {
namespace {

// Writes only ASCII, so a text of a document cannot control a terminal. Texts of the command line
// and file names need not be valid UTF-8. All other texts are valid.
void append(std::string& out, const std::string& text) {
  using nlohmann::json;
  out += json(text).dump(-1, ' ', true, json::error_handler_t::replace);
}

void append(std::string& out, const std::vector<std::string>& texts) {
  out += '[';
  for (const std::string& text : texts) {
    if (&text != texts.data()) out += ", ";
    append(out, text);
  }
  out += ']';
}

void append(std::string& out, const Scalar& value) {
  if (const auto* const text = std::get_if<std::string>(&value)) return append(out, *text);
  if (const auto* const texts = std::get_if<Texts>(&value)) return append(out, texts->each);
  out += std::holds_alternative<std::monostate>(value) ? "null" : textOf(value);
}

// Appends the name of a member of an object. `isFirst` must be set for the first member.
void appendName(std::string& out, const char* indent, const std::string& name, bool isFirst) {
  out += isFirst ? "\n" : ",\n";
  out += indent;
  out += '"' + name + "\": ";  // the names belong to the tool and need no escapes
}

void appendMembers(std::string& out, const char* indent, const Record& record) {
  bool isFirst = true;
  for (const auto& [name, value] : record) {
    appendName(out, indent, name, isFirst);
    append(out, value);
    isFirst = false;
  }
}

}  // namespace

void appendJsonRow(std::string& rows, const Record& row) {
  rows += rows.empty() ? "\n    {" : ",\n    {";
  appendMembers(rows, "      ", row);
  rows += "\n    }";
}

void printJson(std::ostream& out, const Report* report, const Ending& ending) {
  constexpr const char* indent = "  ";
  std::string text = "{";
  appendMembers(text, indent,
                {{"schema_version", std::int64_t{c_schemaVersion}},
                 {"command", ending.command},
                 {"status", std::int64_t{ending.status}},
                 {"changed", ending.changed},
                 {"warnings", Texts{ending.warnings, ""}}});
  if (report) {
    for (const auto& [name, value] : report->facts) {
      appendName(text, indent, name, false);
      append(text, value);
    }
    if (!report->rowsName.empty()) {
      appendName(text, indent, report->rowsName, false);
      std::string rows;
      for (const Record& row : report->rows) appendJsonRow(rows, row);
      out << text << '[' << rows << report->writtenRows;
      text = rows.empty() && report->writtenRows.empty() ? "]" : "\n  ]";
    }
  }
  if (ending.failure) {
    appendName(text, indent, "error", false);
    text += '{';
    appendMembers(text, "    ", factsOf(*ending.failure));
    text += "\n  }";
  }
  out << text << "\n}\n";
}

}  // namespace tool
