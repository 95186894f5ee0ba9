#include <algorithm>
#include <cstdint>
#include <nlohmann/json.hpp>
#include <ostream>

#include "tools/sitelist/cli/failure.h"
#include "tools/sitelist/cli/shown_name.h"
#include "tools/sitelist/report/report.h"
#include "tools/sitelist/report/row_spool.h"

namespace tool {
namespace {

// Writes only ASCII, so a text of a document cannot control a terminal. Texts of the command line
// and file names need not be valid UTF-8. All other texts are valid.
void append(std::string& out, const std::string& text) {
  using nlohmann::json;
  // Most texts need no escape, and the library is slow.
  if (std::none_of(text.begin(), text.end(),
                   [](char c) { return c < ' ' || c > '~' || c == '"' || c == '\\'; })) {
    out.append("\"").append(text).append("\"");
    return;
  }
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

// Appends an object in one line.
void append(std::string& out, const Record& record);

void append(std::string& out, const Scalar& value) {
  if (const auto* const object = std::get_if<std::shared_ptr<const Object>>(&value)) {
    return append(out, (*object)->members);
  }
  if (const auto* const text = std::get_if<std::string>(&value)) return append(out, *text);
  if (const auto* const texts = std::get_if<Texts>(&value)) return append(out, texts->each);
  out += std::holds_alternative<std::monostate>(value) ? "null" : textOf(value);
}

void append(std::string& out, const Record& record) {
  out += '{';
  for (const auto& member : record) {
    if (&member != record.data()) out += ", ";
    out.append("\"").append(member.first).append("\": ");
    append(out, member.second);
  }
  out += '}';
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

void appendJsonLine(std::string& rows, const Record& row) {
  append(rows, row);
  rows += '\n';
}

void printJsonLines(std::ostream& out, const Report* report, const Ending& ending) {
  std::string lines;
  if (report && !report->isPrinted) {
    for (const Record& row : report->rows) appendJsonLine(lines, row);
    lines += report->writtenRows;
    for (const RowGroup& group : report->groups) {
      for (const Record& row : group.rows) appendJsonLine(lines, row);
    }
    if (report->rowsName.empty() && report->groups.empty()) appendJsonLine(lines, report->facts);
  }
  if (ending.failure) {
    appendJsonLine(lines, failedRow(reportedName(ending.failure->origin().file), *ending.failure));
  }
  out << lines;
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
      const bool isSpooled = report->spool && !report->spool->isEmpty();
      if (isSpooled) report->spool->copyTo(out);
      text = rows.empty() && report->writtenRows.empty() && !isSpooled ? "]" : "\n  ]";
    }
    for (const RowGroup& group : report->groups) {
      appendName(text, indent, group.rowsName, false);
      std::string rows;
      for (const Record& row : group.rows) appendJsonRow(rows, row);
      text += '[' + rows + (rows.empty() ? "]" : "\n  ]");
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
