#ifndef TOOLS_SITELIST_EDIT_EDIT_FAILURE_H
#define TOOLS_SITELIST_EDIT_EDIT_FAILURE_H

#include <string>

namespace tool {

// Fails when a file cannot be edited as a site list: it is missing or no document, its root is not
// that of a site list, or it has no "SiteList". The operations that edit documents only say no.
void failIfNotEditable(const std::string& path);

}  // namespace tool

#endif
