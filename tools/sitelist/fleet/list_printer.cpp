#include "tools/sitelist/fleet/list_printer.h"

#include <algorithm>
#include <cctype>
#include <iostream>

#include "tools/sitelist/cli/text.h"

namespace tool {
namespace {

// The widths of the columns are determined for this many rows at once.
constexpr std::size_t c_rowsOfPage = 1000;

// "validUntil" becomes "VALID UNTIL".
std::wstring headingOf(const std::string& column) {
  std::string heading;
  for (const char c : column) {
    if (c >= 'A' && c <= 'Z') heading += ' ';
    heading += static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
  }
  return wide(heading);
}

std::vector<std::wstring> headingsOf(const RowLayout& layout) {
  std::vector<std::wstring> headings = {L"FILE"};
  for (const std::string& column : layout.tableColumns) headings.push_back(headingOf(column));
  return headings;
}

}  // namespace

ListPrinter::ListPrinter(const RowTarget& target, const RowLayout& layout, bool isSecret)
    : m_target(target), m_layout(layout), m_table(headingsOf(layout)) {
  m_table.keepEndsOf(0);
  if (m_target.format == Format::Csv) {
    std::string heading;
    appendCsvHeading(heading, allColumns(layout));
    std::cout << heading;
  }
  if (isDocument(target.format)) {
    m_spool = std::make_shared<RowSpool>(isSecret);
  }
}

bool ListPrinter::print(ListRows& rows) {
  if (m_spool) {
    const bool isFollower = m_target.format == Format::Json && !m_spool->isEmpty();
    if (isFollower && !rows.text().empty()) m_spool->add(",");
    m_spool->add(rows.text());
  } else if (m_target.format != Format::Table) {
    std::cout << rows.text();
  } else if (!m_target.isQuiet) {
    std::cout << rows.text();
    for (TableRow& row : rows.tableRows()) {
      if (row.isNote) {
        m_table.addNote(row.cells[0], row.cells[1], row.style);
      } else {
        m_table.add(std::move(row.cells), row.style);
      }
      if (m_table.rowCount() == c_rowsOfPage) flushTable();
    }
  }
  return static_cast<bool>(std::cout);
}

void ListPrinter::flushTable() { m_table.printAndClear(std::cout, m_target.screen); }

void ListPrinter::flush() {
  if (m_table.rowCount() != 0) flushTable();
  std::cout.flush();
}

void ListPrinter::describe(Report& report) const {
  report.rowsName = m_layout.rowsName;
  report.rowName = m_layout.rowName;
  report.spool = m_spool;
  report.isPrinted = true;
}

}  // namespace tool
