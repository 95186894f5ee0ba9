#include <pugixml.hpp>

#include "bench/check.h"
#include "bench/peers/peer.h"
#include "bench/peers/record_filler.h"

namespace bench {
namespace {

class Node {
 public:
  explicit Node(pugi::xml_node node) : m_node(node) {}

  const char* name() const { return m_node.name(); }
  const char* text() const { return m_node.child_value(); }

  template <typename Visit>
  void eachAttribute(const Visit& visit) const {
    for (const pugi::xml_attribute attribute : m_node.attributes()) {
      visit(attribute.name(), attribute.value());
    }
  }

  template <typename Visit>
  void eachChild(const Visit& visit) const {
    for (const pugi::xml_node child : m_node) {
      if (child.type() == pugi::node_element) visit(Node(child));
    }
  }

 private:
  pugi::xml_node m_node;
};

sitehlp::tag_Site* parse(std::string& bytes) {
  pugi::xml_document document;
  check(document.load_buffer_inplace(bytes.data(), bytes.size(), pugi::parse_default,
                                     pugi::encoding_utf8),
        "pugixml refuses the document");
  return recordsBelow(Node(document.document_element()));
}

}  // namespace

const Peer c_pugixml = {"pugixml", parse};

}  // namespace bench
