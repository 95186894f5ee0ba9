#ifndef TOOLS_SITELIST_FLEET_LIST_ROWS_H
#define TOOLS_SITELIST_FLEET_LIST_ROWS_H

#include <cstddef>
#include <string>
#include <vector>

#include "tools/sitelist/cli/screen.h"
#include "tools/sitelist/report/report.h"

namespace tool {

// What a command prints about several lists. "file" is the first column and is not named here.
struct RowLayout {
  std::string rowsName;
  std::string rowName;
  std::vector<std::string> columns;       // all names that a row may have
  std::vector<std::string> tableColumns;  // those in a table
  bool printsLines = false;  // in a table, the command prints whole lines instead of columns
};

// Where the rows are printed.
struct RowTarget {
  Format format = Format::Table;
  Screen screen;
  bool isQuiet = false;  // no table
};

// Returns whether the whole output is one document, with a head before the rows.
inline bool isDocument(Format format) { return format == Format::Json || format == Format::Xml; }

// A row of a table.
struct TableRow {
  std::vector<std::wstring> cells;  // a note has two cells
  Style style = Style::Plain;
  bool isNote = false;
};

// The rows of one list, in the output format. One thread makes them, another one prints them.
class ListRows {
 public:
  ListRows(const RowLayout& layout, const RowTarget& target, std::string file,
           std::wstring shortName);

  void add(const Record& row, Style style = Style::Plain);
  // Does the same, but prints `line` in the table format.
  void add(const Record& row, const std::string& line);
  // Adds a line in the table format only. It is printable.
  void addLine(const std::string& line);
  // Replaces all rows with one row that has the failure.
  void fail(const Failure& failure);
  // Makes the list count as one that could not be read, although it has rows.
  void countAsFailed() { m_hasFailed = true; }
  // Counts passwords that the password key does not decrypt.
  void countPasswords(std::size_t count) { m_passwords += count; }

  const std::string& file() const { return m_file; }
  const Screen& screen() const { return m_target->screen; }
  const std::string& text() const { return m_text; }
  std::vector<TableRow>& tableRows() { return m_tableRows; }
  std::size_t count() const { return m_count; }
  std::size_t passwords() const { return m_passwords; }
  bool hasFailed() const { return m_hasFailed; }

 private:
  void append(const Record& row);

  const RowLayout* m_layout;
  const RowTarget* m_target;
  std::string m_file;
  std::wstring m_shortName;
  std::string m_text;
  std::vector<TableRow> m_tableRows;
  std::size_t m_count = 0;
  std::size_t m_passwords = 0;
  bool m_hasFailed = false;
};

// Returns all columns of a table for programs: "file", those of the layout, and those of a list
// that failed.
std::vector<std::string> allColumns(const RowLayout& layout);

}  // namespace tool

#endif
