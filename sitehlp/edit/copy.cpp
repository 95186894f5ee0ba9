#include "platform/common/anxml.h"
#include "sitehlp/sites_helper.h"
#include "sitehlp/xmlschema/sitelist.h"

namespace sitehlp {

using korvel_com::orb::xmlschema::sitelist::WX_XML_SITE_ORDER;
using korvel_com::orb::xmlschema::sitelist::WX_XML_SITE_TYPE;

namespace {

// In place of a name: the text of the element.
constexpr const wchar_t* c_elementText = L"";

void copyText(const AnXmlNode& source, AnXmlNode& target) {
  AString text;
  if (source.tryGetValue(c_elementText, text)) target.setValue(c_elementText, text);
}

}  // namespace

void CSitesHelper::copyXmlAttributesAlter(AnXmlNode& source, AnXmlNode& target, int order,
                                          const wchar_t* type) {
  AnXmlValueIndex attributes(source);
  AString name;
  AString value;
  while (attributes.moveNext(name, value)) {
    if (name.str() == WX_XML_SITE_ORDER) {
      // Without an order the default of the reader applies.
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
  AnXmlChildIndex children(source, nullptr);
  AnXmlNode child;
  while (children.moveNext(child)) {
    AnXmlNode copy;
    target.setChild(copy, child.getName().c_str(), nullptr, nullptr, nullptr, nullptr);
    copyXmlAttributes(child, copy);
  }
}

}  // namespace sitehlp
