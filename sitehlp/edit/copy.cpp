#include <unordered_map>

#include "platform/common/anxml.h"
#include "sitehlp/sites_helper.h"
#include "sitehlp/xmlschema/sitelist.h"

namespace sitehlp {

using korvel_com::orb::xmlschema::sitelist::WX_XML_SITE_ORDER;
using korvel_com::orb::xmlschema::sitelist::WX_XML_SITE_TYPE;

namespace {

// An empty attribute name stands for the text of the element.
constexpr const wchar_t* c_elementText = L"";

void copyText(const AnXmlNode& source, AnXmlNode& target) {
  AString text;
  if (source.tryGetValue(c_elementText, text)) target.setValue(c_elementText, text);
}

// Returns the first child of each name. Finding each name separately would take quadratic time.
std::unordered_map<std::wstring, AnXmlNode> firstChildren(const AnXmlNode& node) {
  std::unordered_map<std::wstring, AnXmlNode> children;
  AnXmlChildIndex index(node, nullptr);
  AnXmlNode child;
  while (index.moveNext(child)) children.emplace(child.getName().str(), child);
  return children;
}

}  // namespace

void CSitesHelper::copyXmlAttributesAlter(AnXmlNode& source, AnXmlNode& target, int order,
                                          const wchar_t* type) {
  AnXmlValueIndex attributes(source);
  AString name;
  AString value;
  while (attributes.moveNext(name, value)) {
    if (name.str() == WX_XML_SITE_ORDER) {
      // Without an order, the reader uses its default.
      if (order != 0) target.setValue(name.c_str(), AString(order));
    } else if (name.str() == WX_XML_SITE_TYPE && type && type[0] != L'\0') {
      target.setValue(name.c_str(), type);
    } else {
      target.setValue(name.c_str(), value);
    }
  }
  copyText(source, target);
}

void CSitesHelper::copyXmlAttributes(AnXmlNode& source, AnXmlNode& target) {
  AnXmlValueIndex attributes(source);
  AString name;
  AString value;
  while (attributes.moveNext(name, value)) target.setValue(name.c_str(), value);
  copyText(source, target);
}

void CSitesHelper::copyXmlSubNodes(AnXmlNode& source, AnXmlNode& target) {
  std::unordered_map<std::wstring, AnXmlNode> copies = firstChildren(target);
  AnXmlChildIndex children(source, nullptr);
  AnXmlNode child;
  while (children.moveNext(child)) {
    AnXmlNode& copy = copies[child.getName().str()];
    if (copy.isNull()) target.addChild(copy, child.getName().c_str(), nullptr, nullptr);
    copyXmlAttributes(child, copy);
  }
}

}  // namespace sitehlp
