#ifndef TOOLS_SITELIST_PROBE_PROBE_H
#define TOOLS_SITELIST_PROBE_PROBE_H

#include <chrono>
#include <cstddef>
#include <functional>
#include <string>
#include <vector>

#include "tools/sitelist/probe/outcome.h"
#include "tools/sitelist/probe/site_plan.h"

namespace tool {

struct ProbeLimits {
  std::chrono::seconds time{10};  // for each site
  std::size_t jobs = 8;           // sites that are probed at the same time
};

// Probes the sites and returns an outcome for each, in the same order. `certificates` are those of
// the list. `onDone` is called after each site with the number of sites that are done. Uses the
// network, and may be called once in a process.
std::vector<ProbeOutcome> probeSites(const std::vector<SitePlan>& plans,
                                     const std::vector<std::wstring>& certificates,
                                     const ProbeLimits& limits,
                                     const std::function<void(std::size_t)>& onDone);

}  // namespace tool

#endif
