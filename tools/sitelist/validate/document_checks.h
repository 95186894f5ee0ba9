#ifndef TOOLS_SITELIST_VALIDATE_DOCUMENT_CHECKS_H
#define TOOLS_SITELIST_VALIDATE_DOCUMENT_CHECKS_H

#include "tools/sitelist/validate/fault.h"

namespace tool {

// Adds the warnings: what the library reads without a word, but not as it seems to be meant. The
// management server is left out of what the rules of errors ask, too, when `isServerChecked`.
void checkDocument(const PlacedElement& root, bool isServerChecked, Faults& faults);

}  // namespace tool

#endif
