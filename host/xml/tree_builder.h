#ifndef HOST_XML_TREE_BUILDER_H
#define HOST_XML_TREE_BUILDER_H

#include <expat.h>

#include <cstddef>
#include <exception>
#include <memory>
#include <string>

#include "host/xml/document_tree.h"

namespace host {

// Parses UTF-8 that comes in pieces and builds the tree of it. Use one object for one document.
class TreeBuilder {
 public:
  TreeBuilder();
  ~TreeBuilder();
  TreeBuilder(const TreeBuilder&) = delete;
  TreeBuilder& operator=(const TreeBuilder&) = delete;

  // Room for the next piece. Throws std::bad_alloc.
  char* buffer(std::size_t size);
  // Takes `size` bytes written to that room. Throws ParsingException, ReadWriteException or
  // std::bad_alloc, and then the builder is spent.
  void parse(std::size_t size, bool last);

  std::unique_ptr<AdvXMLParser::DocumentTree> takeTree() { return std::move(m_tree); }

 private:
  struct Handlers;

  void startElement(const char* name, const char** attributes);
  void endElement();
  void addText(const char* text, std::size_t size);
  void startCdata();
  void endCdata();
  void addComment(const char* text);
  void addInstruction(const char* target, const char* data);
  void setStandalone(bool standalone);

  void flushText();
  void checkToken() const;
  [[noreturn]] void refuse(const char* reason) const;
  [[noreturn]] void refuseAsTooLarge(const char* what) const;

  XML_Parser m_parser;
  std::unique_ptr<AdvXMLParser::DocumentTree> m_tree;
  pugi::xml_node m_parent;
  std::size_t m_depth = 0;
  std::string m_text;
  std::exception_ptr m_failure;
};

}  // namespace host

#endif
