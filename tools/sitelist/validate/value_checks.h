#ifndef TOOLS_SITELIST_VALIDATE_VALUE_CHECKS_H
#define TOOLS_SITELIST_VALIDATE_VALUE_CHECKS_H

#include <string>

#include "tools/sitelist/validate/fault.h"
#include "tools/sitelist/validate/grammar.h"

namespace tool {

// Returns the number that the library reads at the start of a text.
int numberIn(const std::wstring& text);

// Returns the part of an address before the last ":".
std::wstring hostOf(const std::wstring& address);

// Adds the faults of a value. The attribute or element must exist.
void checkValue(const ValueGrammar& grammar, const std::wstring& value, const Place& place,
                Faults& faults);

}  // namespace tool

#endif
