#ifndef SITEHLP_READ_DECODER_H
#define SITEHLP_READ_DECODER_H

#include <cstddef>

#include "platform/xml/advxmlparser.h"
#include "sitehlp/read/site_attributes.h"
#include "sitehlp/records/site_elements.h"

namespace sitehlp {

SiteElement classify(const AdvXMLParser::Element& element);

// Returns the size of the record of an element of this kind, or 0 for None.
std::size_t recordSize(SiteElement kind);

// Decodes an element into `record`, which must be recordSize(kind) zero bytes. If `useDecryptData`
// is set, decrypts passwords with decrypt_data, except that of the HTTP proxy.
void decodeSite(SiteElement kind, const AdvXMLParser::Element& element,
                const SiteAttributes& attributes, bool useDecryptData, void* record);

}  // namespace sitehlp

#endif
