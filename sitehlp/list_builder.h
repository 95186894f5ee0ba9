#ifndef SITEHLP_LIST_BUILDER_H
#define SITEHLP_LIST_BUILDER_H

#include "platform/xml/advxmlparser.h"
#include "sitehlp/site.h"

namespace sitehlp {

// Builds the list of a "SiteList" element, one record per child element in document order. `*list`
// is the head from the first record on, and `result` that of the element decoded last, so that both
// hold what was done when something is thrown.
void buildList(const AdvXMLParser::Element& siteList, bool useDecryptData, tag_Site** list,
               int& result);

}  // namespace sitehlp

#endif
