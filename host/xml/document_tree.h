#ifndef HOST_XML_DOCUMENT_TREE_H
#define HOST_XML_DOCUMENT_TREE_H

#include <cstddef>
#include <memory>
#include <pugixml.hpp>
#include <string>

#include "host/xml/well_formed.h"

namespace AdvXMLParser {

// UTF-8 that is about to become a tree, in memory that the tree can take over.
class TreeText {
 public:
  // Has room for `size` bytes and a terminator. Throws std::bad_alloc.
  explicit TreeText(std::size_t size);

  char* data() { return m_bytes.get(); }
  char* release() { return m_bytes.release(); }

 private:
  struct Free {
    void operator()(char* bytes) const { pugi::get_memory_deallocation_function()(bytes); }
  };
  std::unique_ptr<char, Free> m_bytes;
};

// The tree behind every kind of document handle. Its text is UTF-8 of characters that XML can
// carry. Besides elements it keeps everything that an edit must leave alone: white space (also
// around the root), comments, CDATA sections and processing instructions. Its first node is the XML
// declaration.
struct DocumentTree {
  // Holds the declaration alone. Throws std::bad_alloc.
  DocumentTree();
  // The tree of the first `size` bytes of a text that is well formed, has no DOCTYPE, and has its
  // lines end in line feeds. Names and values stay where they are in the text. Throws
  // std::bad_alloc.
  DocumentTree(TreeText text, std::size_t size, host::Standalone standalone);

  pugi::xml_node root() const { return document.document_element(); }

  // The document as UTF-8. Throws std::bad_alloc.
  std::string toText(bool indent) const;

  pugi::xml_document document;
  std::size_t textSize = 0;  // of the text that it was made of
};

// The tree of a text, with the contract of Parser::Parse.
std::unique_ptr<DocumentTree> parseTree(const wchar_t* text, std::size_t length);

// The tree of bytes, with the contract of Parser::ParseUtf8.
std::unique_ptr<DocumentTree> parseUtf8(const char* utf8, std::size_t length,
                                        const WrittenIn* writtenIn);

}  // namespace AdvXMLParser

#endif
