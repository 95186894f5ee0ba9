#ifndef TOOLS_SITELIST_CLI_TABLE_H
#define TOOLS_SITELIST_CLI_TABLE_H

#include <iosfwd>
#include <string>
#include <vector>

#include "tools/sitelist/cli/screen.h"

namespace tool {

// A table of texts from documents. The columns are aligned in all scripts.
class Table {
 public:
  explicit Table(std::vector<std::wstring> headings);
  // Adds a row with as many cells as headings. An empty cell is printed as "-".
  void add(std::vector<std::wstring> cells, Style style = Style::Plain);
  // Prints the table. If the screen is too narrow, the longest texts are cut and end in an
  // ellipsis.
  void print(std::ostream& out, const Screen& screen) const;

 private:
  struct Row {
    std::vector<std::wstring> cells;
    Style style;
  };

  std::vector<std::size_t> widthsFor(std::size_t columns) const;

  std::vector<Row> m_rows;
};

}  // namespace tool

#endif
