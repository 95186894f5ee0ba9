#ifndef TOOLS_SITELIST_AGENT_INCOMING_CHECK_H
#define TOOLS_SITELIST_AGENT_INCOMING_CHECK_H

#include <string>

#include "tools/sitelist/agent/incoming.h"

namespace AdvXMLParser {
class Document;
}

namespace tool {

// Fails with exitDocument if the root element is not "SiteLists", with any prefix. The library
// reads any other document as a list without sites.
void requireSiteList(const std::string& name, const AdvXMLParser::Document& document);

// Does this for an incoming list. Also fails if it has no site, unless --allow-empty is given or
// the import checks the list. Does nothing for a file that is not a document, because the library
// reports it.
void requireIncomingList(const IncomingOptions& options);

}  // namespace tool

#endif
