#ifndef TOOLS_SITELIST_VALIDATE_CHECKS_H
#define TOOLS_SITELIST_VALIDATE_CHECKS_H

#include "tools/sitelist/validate/fault.h"

namespace tool {

// Adds the warnings: what the library reads without a word, but not as it seems to be meant. The
// management server is left out of what the rules of errors ask, too, when `isServerChecked`.
void checkDocument(const PlacedElement& root, bool isServerChecked, Faults& faults);
// The part of it that looks at the "SiteList" that is read, and at all in it.
void checkSites(const PlacedElement& root, const PlacedElement& list, bool isServerChecked,
                Faults& faults);

// The site that decides the result of reading the list, when it is of no known kind; else null.
const PlacedElement* findUnknownSite(const PlacedElement& root);

}  // namespace tool

#endif
