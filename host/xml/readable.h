#ifndef HOST_XML_READABLE_H
#define HOST_XML_READABLE_H

#include <cstddef>
#include <pugixml.hpp>
#include <string>

namespace host {

// Throws ReadWriteException (LIMIT_EXCEEDED) if a document has more bytes than the limit.
void requireDocumentSize(std::size_t size);

// Checks that a parser accepts the text of a tree. An edit adds elements and attributes, and
// escapes make a text longer. Throws ReadWriteException (LIMIT_EXCEEDED) or std::bad_alloc.
void requireReadable(pugi::xml_node root, const std::string& text);

}  // namespace host

#endif
