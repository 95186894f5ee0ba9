#ifndef TOOLS_SITELIST_PROBE_PROBE_TABLE_H
#define TOOLS_SITELIST_PROBE_PROBE_TABLE_H

#include <iosfwd>
#include <vector>

#include "tools/sitelist/report/report.h"

namespace tool {

// Prints the facts and rows of probeReport() for people: a block for each site, then which site the
// agent will use.
void printProbes(std::ostream& out, const Screen& screen, const Record& facts,
                 const std::vector<Record>& rows);

}  // namespace tool

#endif
