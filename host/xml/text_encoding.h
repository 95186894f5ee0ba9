#ifndef HOST_XML_TEXT_ENCODING_H
#define HOST_XML_TEXT_ENCODING_H

#include <cstddef>
#include <string>
#include <string_view>

#include "platform/xml/advxmlparser.h"

namespace host {

struct FoundEncoding {
  AdvXMLParser::UTF_ENCODINGS encoding;
  std::size_t markLength;  // of the byte order mark, 0 without one

  AdvXMLParser::WrittenIn writtenIn() const { return {encoding, markLength != 0}; }
};

// Tells the encoding of a document from its first bytes: a byte order mark, or how "<" or white
// space is written there. Where neither is found, it is `hint`.
FoundEncoding findEncoding(const unsigned char* data, std::size_t length,
                           AdvXMLParser::UTF_ENCODINGS hint);

// Returns whether `declared` agrees with the bytes. Bytes without a mark may declare any encoding
// that extends ASCII; they are read as UTF-8.
bool agreesWith(std::string_view declared, const AdvXMLParser::WrittenIn& writtenIn);

// Appends the wide form of all bytes. False when they are not valid in the encoding; `text` is then
// unspecified.
bool decodeText(const unsigned char* data, std::size_t length, AdvXMLParser::UTF_ENCODINGS encoding,
                std::wstring& text);

// The bytes of a text; the 16- and 32-bit forms begin with a byte order mark. A character that is
// no Unicode scalar value becomes U+FFFD.
std::string encodeText(const std::wstring& text, AdvXMLParser::UTF_ENCODINGS encoding);

}  // namespace host

#endif
