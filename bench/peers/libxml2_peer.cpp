#include <libxml/parser.h>
#include <libxml/tree.h>

#include "bench/check.h"
#include "bench/peers/peer.h"
#include "bench/peers/record_filler.h"

namespace bench {
namespace {

const char* narrow(const xmlChar* text) { return reinterpret_cast<const char*>(text); }

class Node {
 public:
  Node(xmlNode* node, std::string& joined) : m_node(node), m_joined(joined) {}

  const char* name() const { return narrow(m_node->name); }
  const char* text() const { return textOf(m_node->children); }

  template <typename Visit>
  void eachAttribute(const Visit& visit) const {
    for (xmlAttr* attribute = m_node->properties; attribute; attribute = attribute->next) {
      visit(narrow(attribute->name), textOf(attribute->children));
    }
  }

  template <typename Visit>
  void eachChild(const Visit& visit) const {
    for (xmlNode* child = m_node->children; child; child = child->next) {
      if (child->type == XML_ELEMENT_NODE) visit(Node(child, m_joined));
    }
  }

 private:
  // A text is usually one node, which needs no copy.
  const char* textOf(xmlNode* nodes) const {
    if (!nodes) return "";
    if (!nodes->next && nodes->type == XML_TEXT_NODE) return narrow(nodes->content);
    xmlChar* const joined = xmlNodeListGetString(m_node->doc, nodes, 1);
    m_joined = joined ? narrow(joined) : "";
    xmlFree(joined);
    return m_joined.c_str();
  }

  xmlNode* m_node;
  std::string& m_joined;
};

sitehlp::tag_Site* parse(std::string& bytes) {
  xmlDoc* const document =
      xmlReadMemory(bytes.data(), static_cast<int>(bytes.size()), nullptr, nullptr,
                    XML_PARSE_NONET | XML_PARSE_COMPACT | XML_PARSE_NOBLANKS);
  check(document && !document->intSubset, "libxml2 refuses the document");
  std::string joined;
  sitehlp::tag_Site* const records = recordsBelow(Node(xmlDocGetRootElement(document), joined));
  xmlFreeDoc(document);
  return records;
}

}  // namespace

const Peer c_libxml2 = {"libxml2", parse};

}  // namespace bench
