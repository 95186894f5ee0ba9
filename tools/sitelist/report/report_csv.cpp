#include <ostream>

#include "tools/sitelist/cli/screen.h"
#include "tools/sitelist/cli/text.h"
#include "tools/sitelist/report/report.h"

namespace tool {
namespace {

// The unchanged text, quoted as RFC 4180 says. A terminal gets its printable form.
std::string cell(const std::string& raw) {
  const std::string text = isOutputTerminal() ? shown(raw) : narrow(wide(raw));
  if (text.find_first_of("\",\r\n") == std::string::npos) return text;
  std::string quoted = "\"";
  for (const char c : text) {
    if (c == '"') quoted += '"';
    quoted += c;
  }
  return quoted + '"';
}

}  // namespace

void appendCsvRow(std::string& rows, const std::vector<std::string>& columns, const Record& row) {
  for (const std::string& column : columns) {
    if (&column != columns.data()) rows += ',';
    if (const Scalar* const value = find(row, column)) rows += cell(textOf(*value));
  }
  rows += '\n';
}

void appendCsvHeading(std::string& rows, const std::vector<std::string>& columns) {
  for (const std::string& column : columns) {
    if (&column != columns.data()) rows += ',';
    rows += column;
  }
  rows += '\n';
}

void printCsv(std::ostream& out, const Report& report) {
  if (report.isPrinted) return;
  if (report.rowsName.empty() && report.groups.empty()) {
    out << "field,value\n";
    for (const auto& [name, value] : report.facts)
      out << name << ',' << cell(textOf(value)) << '\n';
    return;
  }
  std::string rows;
  appendCsvHeading(rows, report.columns);
  for (const Record& row : report.rows) appendCsvRow(rows, report.columns, row);
  rows += report.writtenRows;
  for (const RowGroup& group : report.groups) {
    for (const Record& row : group.rows) appendCsvRow(rows, report.columns, row);
  }
  out << rows;
}

}  // namespace tool
