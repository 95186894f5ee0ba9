#ifndef TOOLS_SITELIST_AGENT_INCOMING_CHECK_H
#define TOOLS_SITELIST_AGENT_INCOMING_CHECK_H

#include "tools/sitelist/agent/incoming.h"

namespace tool {

// Fails if an incoming list is not a site list. Also fails if it has no site, unless --allow-empty
// is given or the import checks the list. Does nothing for a file that is not a document, because
// the library reports it.
void requireIncomingList(const IncomingOptions& options);

}  // namespace tool

#endif
