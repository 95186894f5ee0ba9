#ifndef HOST_XML_WELL_FORMED_H
#define HOST_XML_WELL_FORMED_H

#include <cstddef>

#include "platform/xml/advxmlparser.h"

namespace host {

// What a document says of itself in its XML declaration.
enum class Standalone { NotSaid, Yes, No };

// Checks that UTF-8 is one well-formed document within the limits and without a DOCTYPE, and that
// the encoding it declares agrees with `writtenIn` where that is given. Throws ParsingException,
// ReadWriteException (LIMIT_EXCEEDED) or std::bad_alloc.
Standalone checkWellFormed(const char* utf8, std::size_t size,
                           const AdvXMLParser::WrittenIn* writtenIn = nullptr);

}  // namespace host

#endif
