#include "host/xml/document_tree.h"

#include <cstring>

#include "host/xml/tree_edit.h"

namespace AdvXMLParser {
namespace {

// A raw carriage return would come back as a line feed. The tree holds one only where the text has
// to be escaped anyway, so every one that arrives here stands for a character reference.
class TextWriter : public pugi::xml_writer {
 public:
  void write(const void* data, std::size_t size) override {
    const char* from = static_cast<const char*>(data);
    const char* const end = from + size;
    while (const void* found = std::memchr(from, '\r', static_cast<std::size_t>(end - from))) {
      const char* const cr = static_cast<const char*>(found);
      text.append(from, cr).append("&#13;");
      from = cr + 1;
    }
    text.append(from, end);
  }

  std::string text;
};

}  // namespace

DocumentTree::DocumentTree() {
  const pugi::xml_node declaration = host::appendNode(document, pugi::node_declaration, "xml");
  host::appendAttribute(declaration, "version", "1.0");
  host::appendAttribute(declaration, "encoding", "UTF-8");
}

std::string DocumentTree::toText(bool indent) const {
  TextWriter writer;
  document.save(writer, "  ", indent ? pugi::format_indent : pugi::format_raw, pugi::encoding_utf8);
  return std::move(writer.text);
}

}  // namespace AdvXMLParser
