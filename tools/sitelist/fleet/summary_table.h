#ifndef TOOLS_SITELIST_FLEET_SUMMARY_TABLE_H
#define TOOLS_SITELIST_FLEET_SUMMARY_TABLE_H

#include <iosfwd>
#include <vector>

#include "tools/sitelist/cli/screen.h"
#include "tools/sitelist/report/report.h"

namespace tool {

// Prints a summary that fits on one screen: a few rows of each group, and more of the last one.
void printSummary(std::ostream& out, const Screen& screen, const Record& facts,
                  const std::vector<RowGroup>& groups);

}  // namespace tool

#endif
