#ifndef SITEHLP_QUERY_VERSIONS_H
#define SITEHLP_QUERY_VERSIONS_H

#include <string>

#include "platform/xml/advxmlparser.h"
#include "sitehlp/read/list_source.h"

namespace sitehlp {

// The versions and the type of a document; a missing type is "Client".
void readVersions(const AdvXMLParser::Element& root, std::wstring& globalVersion,
                  std::wstring& localVersion, std::wstring& type);

// Returns false and leaves `fipsMode` unchanged when the document has none.
bool readFipsMode(const AdvXMLParser::Element& root, std::wstring& fipsMode);

// What CSitesHelper::GetSitelistVersions does with a file.
int queryVersions(ListSource& source, std::wstring& globalVersion, std::wstring& localVersion,
                  std::wstring& type);

}  // namespace sitehlp

#endif
