#ifndef TOOLS_SITELIST_MODEL_PROXY_TEXT_H
#define TOOLS_SITELIST_MODEL_PROXY_TEXT_H

#include <iosfwd>

#include "sitehlp/site.h"

namespace tool {

// Prints a proxy record as a block of lines.
void printProxy(std::ostream& out, const sitehlp::tag_ProxySite& proxy, bool showSecrets);

}  // namespace tool

#endif
