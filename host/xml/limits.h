#ifndef HOST_XML_LIMITS_H
#define HOST_XML_LIMITS_H

#include <cstddef>

// What a document may be at most. A list of a thousand sites has some 500 KB, is four elements
// deep, has some 15 attributes to an element, and its longest token is a certificate of a few KB.
namespace host {

// Bytes of a file, and of a text in UTF-8.
constexpr std::size_t c_maxDocumentBytes = std::size_t{64} << 20;
// The depth of nested elements; the root has depth 1.
constexpr std::size_t c_maxDepth = 256;
constexpr std::size_t c_maxAttributes = 1024;
// Child elements of one element. A site becomes a record of some 27 KB, however short its element
// is, so this bounds the memory that a small document can ask for.
constexpr std::size_t c_maxChildren = 32768;
// Bytes in UTF-8 of one piece of markup (a tag with all its attributes, a comment, a processing
// instruction) or of one run of text between two pieces.
constexpr std::size_t c_maxTokenBytes = std::size_t{1} << 20;

}  // namespace host

#endif
