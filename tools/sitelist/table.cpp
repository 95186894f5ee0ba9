#include "tools/sitelist/table.h"

#include <algorithm>
#include <cstddef>
#include <ostream>

#include "tools/sitelist/text.h"

namespace tool {

void Table::add(std::vector<std::wstring> cells) {
  for (std::wstring& cell : cells) cell = cell.empty() ? L"-" : printable(cell);
  m_rows.push_back(std::move(cells));
}

void Table::print(std::ostream& out) const {
  std::vector<std::size_t> widths(m_rows.front().size());
  for (const auto& row : m_rows) {
    for (std::size_t i = 0; i < row.size(); ++i) {
      widths[i] = std::max(widths[i], columnsOf(row[i]));
    }
  }
  for (const auto& row : m_rows) {
    for (std::size_t i = 0; i < row.size(); ++i) {
      out << narrow(row[i]);
      if (i + 1 < row.size()) out << std::string(widths[i] - columnsOf(row[i]) + 2, ' ');
    }
    out << '\n';
  }
}

}  // namespace tool
