#ifndef HOST_XML_READABLE_H
#define HOST_XML_READABLE_H

#include <cstddef>
#include <pugixml.hpp>
#include <string>

namespace host {

// Throws ReadWriteException (LIMIT_EXCEEDED) if a document has more bytes than the limit.
void requireDocumentSize(std::size_t size);

// Checks that the text of a tree is within the limits of the parser. An edit adds elements and
// attributes, and escapes make a text longer. The text must be well formed. Throws
// ReadWriteException (LIMIT_EXCEEDED) or std::bad_alloc.
void requireReadable(pugi::xml_node root, const std::string& text);

// Returns whether no token of a well-formed text is over its limit, judged by the distances between
// the characters "<". Returns false if the distances do not show it: a comment, a CDATA section or
// an instruction may contain "<". The text must begin with "<".
bool hasOnlyShortTokens(const std::string& text);

}  // namespace host

#endif
