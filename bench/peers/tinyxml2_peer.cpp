#include <tinyxml2.h>

#include "bench/check.h"
#include "bench/peers/peer.h"
#include "bench/peers/record_filler.h"

namespace bench {
namespace {

class Node {
 public:
  explicit Node(const tinyxml2::XMLElement* element) : m_element(element) {}

  const char* name() const { return m_element->Name(); }
  const char* text() const {
    const char* const text = m_element->GetText();
    return text ? text : "";
  }

  template <typename Visit>
  void eachAttribute(const Visit& visit) const {
    for (const tinyxml2::XMLAttribute* attribute = m_element->FirstAttribute(); attribute;
         attribute = attribute->Next()) {
      visit(attribute->Name(), attribute->Value());
    }
  }

  template <typename Visit>
  void eachChild(const Visit& visit) const {
    for (const tinyxml2::XMLElement* child = m_element->FirstChildElement(); child;
         child = child->NextSiblingElement()) {
      visit(Node(child));
    }
  }

 private:
  const tinyxml2::XMLElement* m_element;
};

sitehlp::tag_Site* parse(std::string& bytes) {
  tinyxml2::XMLDocument document;
  check(document.Parse(bytes.data(), bytes.size()) == tinyxml2::XML_SUCCESS,
        "tinyxml2 refuses the document");
  return recordsBelow(Node(document.RootElement()));
}

}  // namespace

const Peer c_tinyxml2 = {"tinyxml2", parse};

}  // namespace bench
