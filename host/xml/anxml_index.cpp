#include "host/xml/handles.h"
#include "host/xml/tree_text.h"
#include "platform/common/anxml.h"

AnXmlChildIndex::AnXmlChildIndex(const AnXmlNode& node, const wchar_t* name)
    : m_name(host::isGiven(name) ? name : L""),
      m_next(host::asNode(node.m_handle).first_child().internal_object()) {}

bool AnXmlChildIndex::moveNext(AnXmlNode& child) {
  pugi::xml_node node = m_current ? host::asNode(m_current).next_sibling() : host::asNode(m_next);
  while (node && !host::isElement(node, m_name.c_str())) node = node.next_sibling();
  m_current = node.internal_object();
  m_next = nullptr;
  if (!node) return false;
  child = AnXmlNode::at(m_current);
  return true;
}

void AnXmlChildIndex::remove() {
  if (!m_current) return;
  const pugi::xml_node node = host::asNode(m_current);
  m_next = node.next_sibling().internal_object();
  m_current = nullptr;
  node.parent().remove_child(node);
}

AnXmlValueIndex::AnXmlValueIndex(const AnXmlNode& node)
    : m_next(host::asNode(node.m_handle).first_attribute().internal_object()) {}

bool AnXmlValueIndex::moveNext(AString& name, AString& value) {
  const pugi::xml_attribute attribute = host::asAttribute(m_next);
  if (!attribute) return false;
  name = AString(attribute.name());
  value = AString(attribute.value());
  m_next = attribute.next_attribute().internal_object();
  return true;
}
