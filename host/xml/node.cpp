#include <cstring>

#include "host/common/encoding.h"
#include "host/xml/handles.h"
#include "host/xml/tree_edit.h"
#include "host/xml/tree_text.h"
#include "host/xml/xml_name.h"
#include "platform/xml/advxmlparser.h"

namespace AdvXMLParser {
namespace {

using host::asAttribute;
using host::asNode;

pugi::xml_node elementFrom(pugi::xml_node node) {
  for (;;) {
    const pugi::xml_node_type type = node.type();
    if (type == pugi::node_element || type == pugi::node_null) return node;
    node = node.next_sibling();
  }
}

std::wstring wide(const char* utf8) { return host::toWide(utf8, std::strlen(utf8)); }

}  // namespace

std::wstring Attribute::GetName() const { return wide(asAttribute(m_handle).name()); }

bool Attribute::HasName(const wchar_t* name) const {
  return !IsNull() && host::equals(asAttribute(m_handle).name(), name);
}

std::wstring Attribute::GetValue() const { return wide(GetNarrowValue()); }

const char* Attribute::GetNarrowValue() const { return asAttribute(m_handle).value(); }

bool Attribute::CopyValue(wchar_t* dest, std::size_t capacity) const {
  return host::copyValue(asAttribute(m_handle), dest, capacity);
}

void Attribute::SetValue(const std::wstring& value) {
  if (!IsNull()) host::setAttributeValue(asAttribute(m_handle), host::XmlText(value).c_str());
}

std::wstring NodeContainer::GetName() const { return wide(asNode(m_handle).name()); }

bool NodeContainer::HasName(const wchar_t* name) const {
  return !IsNull() && host::equals(asNode(m_handle).name(), name);
}

std::size_t NodeContainer::FindName(const wchar_t* const* names, std::size_t count) const {
  return IsNull() ? count : host::findName(asNode(m_handle).name(), names, count);
}

std::wstring NodeContainer::GetValue() const { return host::valueOf(asNode(m_handle)); }

void NodeContainer::GetNarrowValue(std::string& value) const {
  host::narrowValueOf(asNode(m_handle), value);
}

bool NodeContainer::CopyValue(wchar_t* dest, std::size_t capacity) const {
  return host::copyValue(asNode(m_handle), dest, capacity);
}

void NodeContainer::AddText(const std::wstring& text) {
  if (!IsNull()) host::appendText(asNode(m_handle), pugi::node_pcdata, host::XmlText(text));
}

Attribute Element::GetAttribute(const wchar_t* name) const {
  return Attribute(host::findAttribute(asNode(m_handle), name).internal_object());
}

void Element::FindAttributes(const wchar_t* const* names, std::size_t count,
                             Attribute* found) const {
  pugi::xml_attribute attribute = asNode(m_handle).first_attribute();
  // Only a null attribute has no name.
  for (const char* name; *(name = attribute.name()) != '\0';
       attribute = attribute.next_attribute()) {
    const std::size_t at = host::findName(name, names, count);
    if (at != count) found[at] = Attribute(attribute.internal_object());
  }
}

AttributeRange Element::Attributes() const {
  return AttributeRange(asNode(m_handle).first_attribute().internal_object());
}

Element Element::GetElement(const wchar_t* name) const {
  for (const Element child : Elements()) {
    if (child.HasName(name)) return child;
  }
  return Element();
}

ElementRange Element::Elements() const {
  return ElementRange(elementFrom(asNode(m_handle).first_child()).internal_object());
}

Attribute Element::CreateAttribute(const wchar_t* name) {
  if (IsNull()) return Attribute();
  return Attribute(
      host::setAttribute(asNode(m_handle), host::XmlName(name).c_str(), "").internal_object());
}

Element Element::AddElementInto(const std::wstring& name) {
  if (IsNull()) return Element();
  return Element(host::appendNode(asNode(m_handle), pugi::node_element, host::XmlName(name).c_str())
                     .internal_object());
}

Element Element::AppendElement(const std::wstring& name) {
  const pugi::xml_node parent = asNode(m_handle).parent();
  return parent.type() == pugi::node_element
             ? Element(parent.internal_object()).AddElementInto(name)
             : Element();
}

AttributeRange::iterator& AttributeRange::iterator::operator++() {
  m_handle = asAttribute(m_handle).next_attribute().internal_object();
  return *this;
}

ElementRange::iterator& ElementRange::iterator::operator++() {
  m_handle = elementFrom(asNode(m_handle).next_sibling()).internal_object();
  return *this;
}

}  // namespace AdvXMLParser
