#include "tools/sitelist/fleet/list_rows.h"

#include <utility>

#include "tools/sitelist/cli/failure.h"
#include "tools/sitelist/cli/text.h"

namespace tool {
namespace {

// Returns the text of a failure in one line, without the name of the file at its beginning.
std::string inOneLine(const std::string& file, const Failure& failure) {
  std::string text = failure.what();
  const std::string start = shown(file) + ": ";
  if (text.rfind(start, 0) == 0) text.erase(0, start.size());
  const std::string next = "\n  ";
  for (std::size_t at = text.find(next); at != text.npos; at = text.find(next, at)) {
    text.replace(at, next.size(), ": ");
  }
  return text;
}

}  // namespace

ListRows::ListRows(const RowLayout& layout, const RowTarget& target, std::string file,
                   std::wstring shortName)
    : m_layout(&layout),
      m_target(&target),
      m_file(std::move(file)),
      m_shortName(std::move(shortName)) {}

void ListRows::add(const Record& row, Style style) {
  ++m_count;
  if (m_target->format != Format::Table) return append(row);
  TableRow cells;
  cells.style = style;
  cells.cells.push_back(m_shortName);
  for (const std::string& column : m_layout->tableColumns) {
    const Scalar* const value = find(row, column);
    cells.cells.push_back(value ? wide(textOf(*value)) : L"");
  }
  m_tableRows.push_back(std::move(cells));
}

void ListRows::add(const Record& row, const std::string& line) {
  ++m_count;
  if (m_target->format != Format::Table) return append(row);
  addLine(line);
}

void ListRows::addLine(const std::string& line) {
  if (m_target->format == Format::Table) m_text.append(line).append("\n");
}

void ListRows::append(const Record& row) {
  Record whole = {{"file", m_file}};
  whole.insert(whole.end(), row.begin(), row.end());
  switch (m_target->format) {
    case Format::Json:
      // The row after the first one of the whole document begins with a comma.
      return appendJsonRow(m_text, whole);
    case Format::JsonLines:
      return appendJsonLine(m_text, whole);
    case Format::Xml:
      return appendXmlRow(m_text, m_layout->rowName, whole);
    case Format::Csv:
      return appendCsvRow(m_text, allColumns(*m_layout), whole);
    case Format::Table:
      break;
  }
}

void ListRows::fail(const Failure& failure) {
  m_text.clear();
  m_tableRows.clear();
  m_count = 0;
  m_hasFailed = true;
  if (m_target->format == Format::Table) {
    const std::string reason = inOneLine(m_file, failure);
    if (m_layout->printsLines) return addLine(narrow(printable(m_shortName)) + ": " + reason);
    m_tableRows.push_back({{m_shortName, wide(reason)}, Style::Bad, true});
    return;
  }
  Record row = failedRow(m_file, failure);
  row.erase(row.begin());  // append() adds the file
  append(row);
}

std::vector<std::string> allColumns(const RowLayout& layout) {
  std::vector<std::string> columns = {"file"};
  columns.insert(columns.end(), layout.columns.begin(), layout.columns.end());
  columns.insert(columns.end(), {"status", "error"});
  return columns;
}

}  // namespace tool
