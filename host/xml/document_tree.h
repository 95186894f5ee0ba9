#ifndef HOST_XML_DOCUMENT_TREE_H
#define HOST_XML_DOCUMENT_TREE_H

#include <cstddef>
#include <memory>
#include <pugixml.hpp>
#include <string>

#include "host/xml/well_formed.h"

namespace AdvXMLParser {

// UTF-8 that becomes a tree, in memory that the tree can own.
class TreeText {
 public:
  // Allocates `size` bytes and a terminator. Throws std::bad_alloc.
  explicit TreeText(std::size_t size);

  char* data() { return m_bytes.get(); }
  char* release() { return m_bytes.release(); }

 private:
  struct Free {
    void operator()(char* bytes) const { pugi::get_memory_deallocation_function()(bytes); }
  };
  std::unique_ptr<char, Free> m_bytes;
};

// The tree to which all kinds of document handles refer. Its text is UTF-8 with only those
// characters that XML allows. Besides elements it has everything that an edit must not change:
// white space, comments, CDATA sections and processing instructions. White space before and after
// the root is also kept. The first node is the XML declaration.
struct DocumentTree {
  // Creates a tree with only the declaration. Throws std::bad_alloc.
  DocumentTree();
  // Creates the tree of the first `size` bytes of a text. The text must be well formed, without a
  // DOCTYPE, and its lines must end in line feeds. Names and values remain in the memory of the
  // text. Throws std::bad_alloc.
  DocumentTree(TreeText text, std::size_t size, host::Standalone standalone);

  pugi::xml_node root() const { return document.document_element(); }

  // Returns the document as UTF-8. Throws std::bad_alloc.
  std::string toText(bool indent) const;

  pugi::xml_document document;
  std::size_t textSize = 0;  // of the text from which it was made
};

// Parses a text, with the contract of Parser::Parse.
std::unique_ptr<DocumentTree> parseTree(const wchar_t* text, std::size_t length);

// Parses bytes, with the contract of Parser::ParseUtf8.
std::unique_ptr<DocumentTree> parseUtf8(const char* utf8, std::size_t length,
                                        const WrittenIn* writtenIn);

}  // namespace AdvXMLParser

#endif
