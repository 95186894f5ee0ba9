#include "host/common/encoding.h"
#include "host/xml/document_tree.h"
#include "host/xml/tree_edit.h"
#include "host/xml/xml_name.h"
#include "platform/xml/advxmlparser.h"

namespace AdvXMLParser {

Document::Document(const std::wstring& rootName) : m_tree(std::make_unique<DocumentTree>()) {
  host::appendNode(m_tree->document, pugi::node_element, host::XmlName(rootName).c_str());
}

Document::Document(std::unique_ptr<DocumentTree> tree) : m_tree(std::move(tree)) {}

Document::~Document() = default;

Element Document::GetRoot() const { return Element(m_tree->root().internal_object()); }

std::wstring Document::GenerateXML(bool indent) const {
  const std::string text = m_tree->toText(indent);
  return host::toWide(text.data(), text.size());
}

}  // namespace AdvXMLParser
