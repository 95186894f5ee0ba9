#ifndef HOST_XML_TEXT_FILE_H
#define HOST_XML_TEXT_FILE_H

#include <sys/types.h>

#include <cstddef>
#include <string>

namespace host {

// A new document file is for its owner, and for its group to read.
constexpr mode_t c_modeOfNewDocument = 0640;

}  // namespace host

namespace AdvXMLParser {

// Creates or replaces a document file whole. Throws ReadWriteException (WRITE_FAILED).
void writeDocumentBytes(const std::wstring& path, const char* bytes, std::size_t size);

}  // namespace AdvXMLParser

#endif
