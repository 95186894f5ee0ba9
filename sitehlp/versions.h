#ifndef SITEHLP_VERSIONS_H
#define SITEHLP_VERSIONS_H

#include <string>

#include "platform/xml/advxmlparser.h"

namespace sitehlp {

// The versions and the type of a document; a missing type is "Client".
void readVersions(const AdvXMLParser::Element& root, std::wstring& globalVersion,
                  std::wstring& localVersion, std::wstring& type);

// False, with `fipsMode` as it was, when the document does not say one.
bool readFipsMode(const AdvXMLParser::Element& root, std::wstring& fipsMode);

}  // namespace sitehlp

#endif
