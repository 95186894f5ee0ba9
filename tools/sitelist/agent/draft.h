#ifndef TOOLS_SITELIST_AGENT_DRAFT_H
#define TOOLS_SITELIST_AGENT_DRAFT_H

#include <string>

#include "tools/sitelist/model/site_list.h"

namespace tool {

// Each function below writes the list to a temporary file and removes the file. It fails when the
// file cannot be written.

// Returns the list that a read would give after `list` was written. It can differ from `list`. The
// result has the path of `list`.
SiteList asWritten(SiteList& list);

// Returns the document that a write of `list` gives.
std::string documentOf(SiteList& list);

}  // namespace tool

#endif
