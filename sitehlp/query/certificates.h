#ifndef SITEHLP_QUERY_CERTIFICATES_H
#define SITEHLP_QUERY_CERTIFICATES_H

#include <string>
#include <vector>

#include "platform/xml/advxmlparser.h"
#include "sitehlp/read/list_source.h"

namespace sitehlp {

// Appends the certificates of the first CA bundle of a document. Returns whether there is a bundle.
bool readCertificates(const AdvXMLParser::Element& root, std::vector<std::wstring>& certificates);

// Does the same as CSitesHelper::GetCaCertificates, for the file of `source`.
int queryCertificates(ListSource& source, std::vector<std::wstring>& certificates);

}  // namespace sitehlp

#endif
