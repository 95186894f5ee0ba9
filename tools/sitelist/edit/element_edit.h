#ifndef TOOLS_SITELIST_EDIT_ELEMENT_EDIT_H
#define TOOLS_SITELIST_EDIT_ELEMENT_EDIT_H

#include "platform/common/anxml.h"
#include "tools/sitelist/edit/new_value.h"

namespace tool {

// Writes a value to the place in the element of a site from which the library reads it. If a child
// element is repeated, that is the last one.
void writeField(const AnXmlNode& site, const NewValue& newValue);

// Returns the encrypted text of the password in the element.
std::wstring protectedTextOf(const AnXmlNode& site, const DocumentField& password);

}  // namespace tool

#endif
