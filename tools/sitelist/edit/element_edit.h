#ifndef TOOLS_SITELIST_EDIT_ELEMENT_EDIT_H
#define TOOLS_SITELIST_EDIT_ELEMENT_EDIT_H

#include "platform/common/anxml.h"
#include "tools/sitelist/edit/new_value.h"

namespace tool {

// Puts a value into the element of a site, where the library reads it from. Of several children of
// a name that is the last one.
void writeField(const AnXmlNode& site, const NewValue& newValue);

// The protected text that the element has for the password.
std::wstring protectedTextOf(const AnXmlNode& site, const DocumentField& password);

}  // namespace tool

#endif
