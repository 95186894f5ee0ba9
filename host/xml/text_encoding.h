#ifndef HOST_XML_TEXT_ENCODING_H
#define HOST_XML_TEXT_ENCODING_H

#include <cstddef>
#include <string>
#include <string_view>

#include "platform/xml/advxmlparser.h"

namespace host {

struct FoundEncoding {
  AdvXMLParser::UTF_ENCODINGS encoding;
  std::size_t markLength;  // of the byte order mark; 0 without one

  AdvXMLParser::WrittenIn writtenIn() const { return {encoding, markLength != 0}; }
};

// Finds the encoding of a document in its first bytes: by a byte order mark, or by the form of "<"
// or white space. Returns `hint` if neither is found.
FoundEncoding findEncoding(const unsigned char* data, std::size_t length,
                           AdvXMLParser::UTF_ENCODINGS hint);

// Returns whether `declared` agrees with the bytes. Bytes without a mark may declare any encoding
// that extends ASCII; they are read as UTF-8.
bool agreesWith(std::string_view declared, const AdvXMLParser::WrittenIn& writtenIn);

// Appends the wide form of all bytes. Returns false when they are not valid in the encoding; the
// content of `text` is then unspecified.
bool decodeText(const unsigned char* data, std::size_t length, AdvXMLParser::UTF_ENCODINGS encoding,
                std::wstring& text);

// Returns the bytes of a text. The 16- and 32-bit forms begin with a byte order mark. A character
// that is not a Unicode scalar value becomes U+FFFD.
std::string encodeText(const std::wstring& text, AdvXMLParser::UTF_ENCODINGS encoding);

}  // namespace host

#endif
