#ifndef TOOLS_SITELIST_MODEL_ROOT_H
#define TOOLS_SITELIST_MODEL_ROOT_H

#include <string>

#include "tools/sitelist/cli/input.h"

namespace AdvXMLParser {
class Document;
}

namespace tool {

// Each function fails with exitDocument if the root element of a document is not "SiteLists". Any
// prefix is accepted. The library accepts any root, so a file of another kind looks like a list
// without sites.
void requireSiteList(const std::string& name, const AdvXMLParser::Document& document);
// Reads the file. Also fails if the file cannot be read, or has no root element.
void requireSiteList(const std::string& path);
// Also fails if the bytes are not a document.
void requireSiteList(const Input& input);

}  // namespace tool

#endif
