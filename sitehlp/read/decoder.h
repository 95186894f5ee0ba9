#ifndef SITEHLP_READ_DECODER_H
#define SITEHLP_READ_DECODER_H

#include <cstddef>

#include "platform/xml/advxmlparser.h"
#include "sitehlp/read/site_attributes.h"
#include "sitehlp/records/site_elements.h"

namespace sitehlp {

SiteElement classify(const AdvXMLParser::Element& element);

// The size of the record that an element of this kind decodes into; 0 for None.
std::size_t recordSize(SiteElement kind);

// Decodes an element into `record`, which is recordSize(kind) zero bytes. With `useDecryptData`,
// passwords are recovered with decrypt_data, all but that of the HTTP proxy.
void decodeSite(SiteElement kind, const AdvXMLParser::Element& element,
                const SiteAttributes& attributes, bool useDecryptData, void* record);

}  // namespace sitehlp

#endif
