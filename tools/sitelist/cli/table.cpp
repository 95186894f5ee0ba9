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

std::wstring cutTo(const std::wstring& text, std::size_t width) {
  if (columnsOf(text) <= width) return text;
  std::wstring kept = text;
  while (!kept.empty() && columnsOf(kept) + 1 > width) kept.pop_back();
  return kept + L'…';
}

}  // namespace

Table::Table(std::vector<std::wstring> headings) {
  m_rows.push_back({std::move(headings), Style::Heading});
}

void Table::add(std::vector<std::wstring> cells, Style style) {
  for (std::wstring& cell : cells) cell = cell.empty() ? L"-" : printable(cell);
  m_rows.push_back({std::move(cells), style});
}

std::vector<std::size_t> Table::widthsFor(std::size_t columns) const {
  std::vector<std::size_t> widths(m_rows.front().cells.size());
  for (const Row& row : m_rows) {
    for (std::size_t i = 0; i < widths.size(); ++i) {
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

void Table::print(std::ostream& out, const Screen& screen) const {
  const std::vector<std::size_t> widths = widthsFor(screen.columns);
  for (const Row& row : m_rows) {
    std::string line;
    for (std::size_t i = 0; i < widths.size(); ++i) {
      const std::wstring cell = cutTo(row.cells[i], widths[i]);
      line += narrow(cell);
      if (i + 1 < widths.size()) line += std::string(widths[i] - columnsOf(cell) + c_gap, ' ');
    }
    out << screen.styled(row.style, line) << '\n';
  }
}

}  // namespace tool
