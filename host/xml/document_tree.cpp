#include "host/xml/document_tree.h"

#include <cstring>
#include <new>

#include "host/common/encoding.h"
#include "host/xml/tree_edit.h"
#include "host/xml/xml_name.h"
#include "platform/xml/advxmlparser.h"

namespace AdvXMLParser {
namespace {

// Writes each carriage return as a character reference, because a reader would turn a raw one into
// a line feed. The tree has one only in a text or a value, where a reference is allowed.
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

// Keeps the whole text except the declaration, because the declaration describes the bytes and not
// the tree.
constexpr unsigned int c_parseOptions =
    pugi::parse_fragment | pugi::parse_pi | pugi::parse_comments | pugi::parse_cdata |
    pugi::parse_ws_pcdata | pugi::parse_escapes | pugi::parse_wconv_attribute;

pugi::xml_node prependDeclaration(pugi::xml_document& document) {
  pugi::xml_node declaration = document.prepend_child(pugi::node_declaration);
  if (!declaration || !declaration.set_name("xml")) throw std::bad_alloc();
  host::appendAttribute(declaration, "version", "1.0");
  host::appendAttribute(declaration, "encoding", "UTF-8");
  return declaration;
}

}  // namespace

TreeText::TreeText(std::size_t size)
    : m_bytes(static_cast<char*>(pugi::get_memory_allocation_function()(size + 1))) {
  if (!m_bytes) throw std::bad_alloc();
}

DocumentTree::DocumentTree() { prependDeclaration(document); }

DocumentTree::DocumentTree(TreeText text, std::size_t size, host::Standalone standalone)
    : textSize(size) {
  text.data()[size] = '\0';
  // The terminator is part of the text. Otherwise pugixml would lose the last character.
  const pugi::xml_parse_result parsed = document.load_buffer_inplace_own(
      text.release(), size + 1, c_parseOptions, pugi::encoding_utf8);
  // The text is well formed, so the only possible failure is memory.
  if (!parsed) throw std::bad_alloc();
  const pugi::xml_node declaration = prependDeclaration(document);
  if (standalone == host::Standalone::NotSaid) return;
  host::appendAttribute(declaration, "standalone",
                        standalone == host::Standalone::Yes ? "yes" : "no");
}

std::string DocumentTree::toText(bool indent) const {
  TextWriter writer;
  // Most edits change little. With this margin, the text need not be moved when it grows.
  writer.text.reserve(textSize + textSize / 8);
  document.save(writer, "  ", indent ? pugi::format_indent : pugi::format_raw, pugi::encoding_utf8);
  return std::move(writer.text);
}

Document::Document(const std::wstring& rootName) : m_tree(std::make_shared<DocumentTree>()) {
  host::appendNode(m_tree->document, pugi::node_element, host::XmlName(rootName).c_str());
}

Document::Document(std::shared_ptr<DocumentTree> tree) : m_tree(std::move(tree)) {}

Document::~Document() = default;

Element Document::GetRoot() const { return Element(m_tree->root().internal_object()); }

std::wstring Document::GenerateXML(bool indent) const {
  const std::string text = m_tree->toText(indent);
  return host::toWide(text.data(), text.size());
}

}  // namespace AdvXMLParser
