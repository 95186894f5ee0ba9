#ifndef SITEHLP_QUERY_VERSIONS_H
#define SITEHLP_QUERY_VERSIONS_H

#include <string>

#include "platform/xml/advxmlparser.h"
#include "sitehlp/read/list_source.h"

namespace sitehlp {

// Reads the versions and the type of a document. A missing type is "Client".
void readVersions(const AdvXMLParser::Element& root, std::wstring& globalVersion,
                  std::wstring& localVersion, std::wstring& type);

// Reads the FIPS mode. Returns false and leaves `fipsMode` unchanged when the document has none.
bool readFipsMode(const AdvXMLParser::Element& root, std::wstring& fipsMode);

// Does the same as CSitesHelper::GetSitelistVersions, for the file of `source`.
int queryVersions(ListSource& source, std::wstring& globalVersion, std::wstring& localVersion,
                  std::wstring& type);

}  // namespace sitehlp

#endif
