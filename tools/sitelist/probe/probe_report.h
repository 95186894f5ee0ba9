#ifndef TOOLS_SITELIST_PROBE_PROBE_REPORT_H
#define TOOLS_SITELIST_PROBE_PROBE_REPORT_H

#include <string>
#include <vector>

#include "tools/sitelist/explain/search_order.h"
#include "tools/sitelist/probe/outcome.h"
#include "tools/sitelist/probe/site_plan.h"
#include "tools/sitelist/report/report.h"

namespace tool {

// A site of the list. The outcome is null if the command did not probe the site.
struct ProbedSite {
  SearchPlace place;
  const SitePlan* plan = nullptr;
  const ProbeOutcome* outcome = nullptr;
};

// Returns the result of the command. `sites` are all sites of the list as searchOrder() returns
// them.
Report probeReport(const std::string& file, const std::vector<ProbedSite>& sites);

}  // namespace tool

#endif
