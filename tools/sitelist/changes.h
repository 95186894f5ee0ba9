#ifndef TOOLS_SITELIST_CHANGES_H
#define TOOLS_SITELIST_CHANGES_H

#include "tools/sitelist/site_list.h"

namespace tool {

// Prints in what a list that takes another's place differs from it: versions, sites, certificates
// and policy settings. `sites` are the new list's as they would be written.
void printChanges(const SiteList& before, const SiteList& after, const sitehlp::tag_Site* sites);

}  // namespace tool

#endif
