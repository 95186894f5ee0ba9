#ifndef HOST_XML_TEXT_FILE_H
#define HOST_XML_TEXT_FILE_H

#include <sys/types.h>

#include <cstddef>
#include <string>

namespace host {

// The mode of a new document file: its owner may read and write it, and its group may read it.
constexpr mode_t c_modeOfNewDocument = 0640;

}  // namespace host

namespace AdvXMLParser {

// Creates or atomically replaces a document file. Throws ReadWriteException (WRITE_FAILED).
void writeDocumentBytes(const std::wstring& path, const char* bytes, std::size_t size);

}  // namespace AdvXMLParser

#endif
