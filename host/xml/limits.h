#ifndef HOST_XML_LIMITS_H
#define HOST_XML_LIMITS_H

#include <cstddef>

// The limits of a document. A list of a thousand sites has about 500 KB, a depth of four and about
// 15 attributes in an element. Its longest token is a certificate of a few KB.
namespace host {

// Bytes of a file, or of a text in UTF-8.
constexpr std::size_t c_maxDocumentBytes = std::size_t{64} << 20;
// The depth of nested elements; the root has depth 1.
constexpr std::size_t c_maxDepth = 256;
constexpr std::size_t c_maxAttributes = 1024;
// Child elements of one element. Each site becomes a record of about 27 KB, so this also limits the
// memory that a small document can need.
constexpr std::size_t c_maxChildren = 32768;
// Bytes in UTF-8 of one token. A token is a tag with all its attributes, a comment, a processing
// instruction, or the text between two of these.
constexpr std::size_t c_maxTokenBytes = std::size_t{1} << 20;

// The names of the limits. The text of an exception ends with one of them, and the tool recognises
// it there.
constexpr const char* c_bytesLimit = "number of bytes";
constexpr const char* c_depthLimit = "depth";
constexpr const char* c_attributesLimit = "number of attributes";
constexpr const char* c_childrenLimit = "number of child elements";
constexpr const char* c_tokenLimit = "length of a token";
constexpr const char* c_textLimit = "length of a text";

}  // namespace host

#endif
