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
  // Adds a row with a text in place of all cells after the first one.
  void addNote(const std::wstring& cell, const std::wstring& text, Style style);
  // Makes a column keep the end of a text that is too long.
  void keepEndsOf(std::size_t column) { m_endColumn = column; }
  // Prints the table. If the screen is too narrow, the longest texts are cut and end in an
  // ellipsis.
  void print(std::ostream& out, const Screen& screen) const;
  // Prints the rows and removes them. The next rows follow without a heading, and their columns are
  // at least as wide.
  void printAndClear(std::ostream& out, const Screen& screen);
  std::size_t rowCount() const { return m_rows.size() - 1; }

 private:
  struct Row {
    std::vector<std::wstring> cells;
    Style style;
  };

  std::vector<std::size_t> widthsFor(std::size_t columns) const;
  void printRow(std::ostream& out, const Screen& screen, const Row& row,
                const std::vector<std::size_t>& widths) const;

  std::vector<Row> m_rows;                 // first the heading
  std::vector<std::size_t> m_leastWidths;  // of the rows that are already printed
  bool m_isHeadingPrinted = false;
  std::size_t m_endColumn = static_cast<std::size_t>(-1);
};

}  // namespace tool

#endif
