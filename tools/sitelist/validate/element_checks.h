#ifndef TOOLS_SITELIST_VALIDATE_ELEMENT_CHECKS_H
#define TOOLS_SITELIST_VALIDATE_ELEMENT_CHECKS_H

#include "tools/sitelist/validate/fault.h"
#include "tools/sitelist/validate/grammar.h"

namespace tool {

// Adds the faults of the names and values of the element's attributes.
void checkAttributes(const PlacedElement& element, const ElementGrammar& grammar, Faults& faults);
// Adds the faults of the element, its attributes and all its content.
void checkElement(const PlacedElement& element, const ElementGrammar& grammar, Faults& faults);

// Adds the fault that the library does not read this child element.
void addUnknownChild(const PlacedElement& child, const ElementGrammar& parent, Faults& faults);

// Adds the faults that only a proxy configuration can have.
void checkProxy(const PlacedElement& proxyConfig, Faults& faults);

}  // namespace tool

#endif
