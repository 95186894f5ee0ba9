#ifndef TOOLS_SITELIST_VALIDATE_CHECKS_H
#define TOOLS_SITELIST_VALIDATE_CHECKS_H

#include "tools/sitelist/validate/fault.h"

namespace tool {

// Adds the warnings: values that the library reads without an error, but probably not as intended.
// If `isServerChecked` is set, skips values of the management server that the rules for errors
// check.
void checkDocument(const PlacedElement& root, bool isServerChecked, Faults& faults);
// Adds the warnings about the "SiteList" that the library reads, and about its content.
void checkSites(const PlacedElement& root, const PlacedElement& list, bool isServerChecked,
                Faults& faults);

// Returns the last site if its kind is unknown, because it determines the result of reading the
// list. Otherwise returns null.
const PlacedElement* findUnknownSite(const PlacedElement& root);

}  // namespace tool

#endif
