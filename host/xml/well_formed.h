#ifndef HOST_XML_WELL_FORMED_H
#define HOST_XML_WELL_FORMED_H

#include <cstddef>

namespace host {

// What a document says of itself in its XML declaration.
enum class Standalone { NotSaid, Yes, No };

// Checks that UTF-8 is one well-formed document within the limits and without a DOCTYPE. Throws
// ParsingException, ReadWriteException (LIMIT_EXCEEDED) or std::bad_alloc.
Standalone checkWellFormed(const char* utf8, std::size_t size);

}  // namespace host

#endif
