#ifndef TOOLS_SITELIST_PROBE_RUN_PROBE_H
#define TOOLS_SITELIST_PROBE_RUN_PROBE_H

#include <string>
#include <vector>

#include "tools/sitelist/report/context.h"

namespace tool {

struct ProbeOptions {
  std::vector<std::string> sites;
  std::string file;
  bool all = false;
  std::string timeout;
  std::string jobs;
};

// Runs the command and returns its exit status.
//
// There are two implementations. In sitelist-probe, it probes the sites. In sitelist, it replaces
// the process with sitelist-probe, because loading libcurl takes longer than most commands. There
// it never returns, and throws Failure if the program cannot be started.
int runProbe(Context& context, const ProbeOptions& options);

}  // namespace tool

#endif
