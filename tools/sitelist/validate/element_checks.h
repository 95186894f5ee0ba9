#ifndef TOOLS_SITELIST_VALIDATE_ELEMENT_CHECKS_H
#define TOOLS_SITELIST_VALIDATE_ELEMENT_CHECKS_H

#include "tools/sitelist/validate/fault.h"
#include "tools/sitelist/validate/grammar.h"

namespace tool {

// Adds what is wrong with the names and values of the element's attributes.
void checkAttributes(const PlacedElement& element, const ElementGrammar& grammar, Faults& faults);
// The same, and of all that the element holds.
void checkElement(const PlacedElement& element, const ElementGrammar& grammar, Faults& faults);

// Says that nobody reads such a child of the element.
void addUnknownChild(const PlacedElement& child, const ElementGrammar& parent, Faults& faults);

// What stands on proxies alone.
void checkProxy(const PlacedElement& proxyConfig, Faults& faults);

}  // namespace tool

#endif
