#ifndef TOOLS_SITELIST_FLEET_LIST_PRINTER_H
#define TOOLS_SITELIST_FLEET_LIST_PRINTER_H

#include <memory>

#include "tools/sitelist/cli/table.h"
#include "tools/sitelist/fleet/list_rows.h"
#include "tools/sitelist/report/row_spool.h"

namespace tool {

// Prints the rows of lists as they come. The rows of JSON and XML are kept in a spool, because the
// head of these documents has the exit status.
class ListPrinter {
 public:
  ListPrinter(const RowTarget& target, const RowLayout& layout, bool isSecret);

  // Returns whether standard output takes more.
  bool print(ListRows& rows);
  // Prints what is left.
  void flush();
  // Describes the rows in `report`, and passes the spool on to it.
  void describe(Report& report) const;

 private:
  void flushTable();

  const RowTarget& m_target;
  const RowLayout& m_layout;
  Table m_table;
  std::shared_ptr<RowSpool> m_spool;
};

}  // namespace tool

#endif
