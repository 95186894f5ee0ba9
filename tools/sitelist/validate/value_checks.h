#ifndef TOOLS_SITELIST_VALIDATE_VALUE_CHECKS_H
#define TOOLS_SITELIST_VALIDATE_VALUE_CHECKS_H

#include <string>

#include "tools/sitelist/validate/fault.h"
#include "tools/sitelist/validate/grammar.h"

namespace tool {

// The number that the library reads at the start of a text.
int numberIn(const std::wstring& text);

// What stands in front of the last ":" of an address.
std::wstring hostOf(const std::wstring& address);

// Adds what is wrong with a value that is there.
void checkValue(const ValueGrammar& grammar, const std::wstring& value, const Place& place,
                Faults& faults);

}  // namespace tool

#endif
