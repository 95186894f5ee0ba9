#ifndef TOOLS_SITELIST_CLI_TABLE_H
#define TOOLS_SITELIST_CLI_TABLE_H

#include <iosfwd>
#include <string>
#include <vector>

#include "tools/sitelist/cli/screen.h"

namespace tool {

// Rows of texts from documents, printed in columns that line up in every script.
class Table {
 public:
  explicit Table(std::vector<std::wstring> headings);
  // As many cells as headings; an empty one is printed as "-".
  void add(std::vector<std::wstring> cells, Style style = Style::Plain);
  // On a screen that is too narrow, the longest texts are cut and end in an ellipsis.
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
