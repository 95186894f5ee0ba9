#ifndef TOOLS_SITELIST_TABLE_H
#define TOOLS_SITELIST_TABLE_H

#include <iosfwd>
#include <string>
#include <vector>

namespace tool {

// Rows of texts from documents, printed in columns that line up in every script.
class Table {
 public:
  explicit Table(std::vector<std::wstring> headings) { m_rows.push_back(std::move(headings)); }
  // As many cells as headings; an empty one is printed as "-".
  void add(std::vector<std::wstring> cells);
  void print(std::ostream& out) const;

 private:
  std::vector<std::vector<std::wstring>> m_rows;
};

}  // namespace tool

#endif
