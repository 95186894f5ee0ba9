#include "tools/sitelist/cli/table.h"

#include <algorithm>
#include <cstddef>
#include <numeric>
#include <ostream>

#include "tools/sitelist/cli/text.h"

namespace tool {
namespace {

constexpr std::size_t c_gap = 2;
constexpr std::size_t c_leastWidth = 6;  // a shorter text would be useless

}  // namespace

Table::Table(std::vector<std::wstring> headings) : m_leastWidths(headings.size()) {
  m_rows.push_back({std::move(headings), Style::Heading});
}

void Table::add(std::vector<std::wstring> cells, Style style) {
  for (std::wstring& cell : cells) cell = cell.empty() ? L"-" : printable(cell);
  m_rows.push_back({std::move(cells), style});
}

void Table::addNote(const std::wstring& cell, const std::wstring& text, Style style) {
  m_rows.push_back({{printable(cell), printable(text)}, style});
}

std::vector<std::size_t> Table::widthsFor(std::size_t columns) const {
  std::vector<std::size_t> widths = m_leastWidths;
  for (const Row& row : m_rows) {
    const bool isNote = row.cells.size() < widths.size();
    for (std::size_t i = 0; i < (isNote ? 1 : widths.size()); ++i) {
      widths[i] = std::max(widths[i], columnsOf(row.cells[i]));
    }
  }
  if (columns == 0) return widths;
  std::size_t total = std::accumulate(widths.begin(), widths.end(), c_gap * (widths.size() - 1));
  while (total > columns) {
    const auto widest = std::max_element(widths.begin(), widths.end());
    if (*widest <= c_leastWidth) break;
    --*widest;
    --total;
  }
  return widths;
}

void Table::printRow(std::ostream& out, const Screen& screen, const Row& row,
                     const std::vector<std::size_t>& widths) const {
  const bool isNote = row.cells.size() < widths.size();
  std::string line;
  for (std::size_t i = 0; i < row.cells.size(); ++i) {
    std::size_t width = widths[i];
    if (isNote && i == 1) {
      const std::size_t before = widths[0] + c_gap;
      const bool isLimited = screen.columns > before + c_leastWidth;
      width = isLimited ? screen.columns - before : columnsOf(row.cells[i]);
    }
    const std::wstring cell =
        cutTo(row.cells[i], width, i == m_endColumn ? Kept::End : Kept::Start);
    line += narrow(cell);
    if (i + 1 < row.cells.size()) line += std::string(width - columnsOf(cell) + c_gap, ' ');
  }
  out << screen.styled(row.style, line) << '\n';
}

void Table::print(std::ostream& out, const Screen& screen) const {
  const std::vector<std::size_t> widths = widthsFor(screen.columns);
  for (const Row& row : m_rows) {
    const bool isOldHeading = m_isHeadingPrinted && &row == m_rows.data();
    if (!isOldHeading) printRow(out, screen, row, widths);
  }
}

void Table::printAndClear(std::ostream& out, const Screen& screen) {
  print(out, screen);
  m_leastWidths = widthsFor(screen.columns);
  m_isHeadingPrinted = true;
  m_rows.erase(m_rows.begin() + 1, m_rows.end());
}

}  // namespace tool
