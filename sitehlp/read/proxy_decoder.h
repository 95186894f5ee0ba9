#ifndef SITEHLP_READ_PROXY_DECODER_H
#define SITEHLP_READ_PROXY_DECODER_H

#include "platform/xml/advxmlparser.h"
#include "sitehlp/read/site_attributes.h"
#include "sitehlp/site.h"

namespace sitehlp {

// Appends the hosts of an ExclusionList element to those of the record.
void readExclusions(const AdvXMLParser::Element& element, tag_ProxySite& site);

// Decodes a ProxyConfig element into `site`, which must be zero.
void decodeProxy(const AdvXMLParser::Element& element, const SiteAttributes& attributes,
                 bool useDecryptData, tag_ProxySite& site);

}  // namespace sitehlp

#endif
