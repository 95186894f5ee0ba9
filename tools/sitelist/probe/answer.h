#ifndef TOOLS_SITELIST_PROBE_ANSWER_H
#define TOOLS_SITELIST_PROBE_ANSWER_H

#include "tools/sitelist/probe/outcome.h"
#include "tools/sitelist/probe/transfer.h"

namespace tool {

// Returns whether the proxy refused the login or required one, or may have refused it.
bool isProxyLoginRefused(const Reply& reply);

// Stores in the outcome what the reply of a site on its port means for the agent.
void takeAnswer(const SitePlan& plan, const Reply& reply, ProbeOutcome& outcome);

}  // namespace tool

#endif
