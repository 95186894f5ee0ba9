#ifndef SITEHLP_READ_LIST_BUILDER_H
#define SITEHLP_READ_LIST_BUILDER_H

#include "platform/xml/advxmlparser.h"
#include "sitehlp/list_contents.h"

namespace sitehlp {

// Reads a "SiteList" element. Decodes each child element, in document order, into one record.
// `take` becomes the owner of each record immediately. `result` receives the result of the last
// element, even if an exception is thrown.
void readSiteListElement(const AdvXMLParser::Element& siteList, bool useDecryptData,
                         const TakeSite& take, int& result);

}  // namespace sitehlp

#endif
