#ifndef SITEHLP_READ_LIST_BUILDER_H
#define SITEHLP_READ_LIST_BUILDER_H

#include "platform/xml/advxmlparser.h"
#include "sitehlp/list_contents.h"

namespace sitehlp {

// Reads a "SiteList" element: one record per child element in document order, each of which `take`
// becomes the owner of as soon as it is decoded. `result` is that of the element decoded last, also
// when something is thrown.
void readSites(const AdvXMLParser::Element& siteList, bool useDecryptData, const TakeSite& take,
               int& result);

}  // namespace sitehlp

#endif
