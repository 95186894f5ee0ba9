#ifndef TOOLS_SITELIST_PROXY_TEXT_H
#define TOOLS_SITELIST_PROXY_TEXT_H

#include <iosfwd>

#include "sitehlp/site.h"

namespace tool {

// What stands in the place of a password that is not empty.
constexpr const char* c_mask = "********";

// Prints a proxy record as a block of lines.
void printProxy(std::ostream& out, const sitehlp::tag_ProxySite& proxy, bool showSecrets);

}  // namespace tool

#endif
