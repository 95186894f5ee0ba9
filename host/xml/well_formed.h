#ifndef HOST_XML_WELL_FORMED_H
#define HOST_XML_WELL_FORMED_H

#include <cstddef>

#include "platform/xml/advxmlparser.h"

namespace host {

// The value of "standalone" in the XML declaration.
enum class Standalone { NotSaid, Yes, No };

// Checks that the UTF-8 text is one well-formed document within the limits and without a DOCTYPE.
// If `writtenIn` is given, the encoding that the document declares must agree with it. Throws
// ParsingException, ReadWriteException (LIMIT_EXCEEDED) or std::bad_alloc.
Standalone checkWellFormed(const char* utf8, std::size_t size,
                           const AdvXMLParser::WrittenIn* writtenIn = nullptr);

}  // namespace host

#endif
