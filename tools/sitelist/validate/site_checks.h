#ifndef TOOLS_SITELIST_VALIDATE_SITE_CHECKS_H
#define TOOLS_SITELIST_VALIDATE_SITE_CHECKS_H

#include "tools/sitelist/validate/fault.h"

namespace tool {

// The site that decides the result of reading the list, when it is of no known kind; else null.
const PlacedElement* findUnknownSite(const PlacedElement& root);

// The part of checkDocument that looks at the "SiteList" that is read, and at all in it.
void checkSites(const PlacedElement& root, const PlacedElement& list, bool isServerChecked,
                Faults& faults);

}  // namespace tool

#endif
