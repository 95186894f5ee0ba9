#ifndef HOST_XML_DOCUMENT_TREE_H
#define HOST_XML_DOCUMENT_TREE_H

#include <cstddef>
#include <memory>
#include <pugixml.hpp>
#include <string>

namespace AdvXMLParser {

// The tree behind every kind of document handle. Its text is UTF-8 of characters that XML can
// carry. Besides elements it keeps everything that an edit must leave alone: white space (also
// around the root), comments, CDATA sections and processing instructions. Its first node is the XML
// declaration.
struct DocumentTree {
  // Holds the declaration alone. Throws std::bad_alloc.
  DocumentTree();

  pugi::xml_node root() const { return document.document_element(); }

  // The document as UTF-8. Throws std::bad_alloc.
  std::string toText(bool indent) const;

  pugi::xml_document document;
};

// The tree of a text, with the contract of Parser::Parse.
std::unique_ptr<DocumentTree> parseTree(const wchar_t* text, std::size_t length);

}  // namespace AdvXMLParser

#endif
