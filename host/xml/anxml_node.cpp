#include "host/xml/document_tree.h"
#include "host/xml/handles.h"
#include "host/xml/tree_edit.h"
#include "host/xml/tree_text.h"
#include "host/xml/xml_name.h"
#include "platform/common/anxml.h"

namespace {

pugi::xml_node findChild(pugi::xml_node parent, const wchar_t* name, const wchar_t* keyAttribute,
                         const wchar_t* keyValue) {
  return parent.find_child([=](pugi::xml_node child) {
    return host::isElement(child, name) && host::hasAttribute(child, keyAttribute, keyValue);
  });
}

void setAttributeIfGiven(pugi::xml_node node, const wchar_t* name, const wchar_t* value) {
  if (host::isGiven(name)) {
    host::setAttribute(node, host::XmlName(name).c_str(),
                       host::XmlText(value ? value : L"").c_str());
  }
}

}  // namespace

AnXmlNode::AnXmlNode(AnXml* document) {
  if (document && document->m_tree) m_handle = document->m_tree->root().internal_object();
}

AnXmlNode AnXmlNode::at(void* handle) {
  AnXmlNode node;
  node.m_handle = handle;
  return node;
}

bool AnXmlNode::tryGetChild(AnXmlNode& out, const wchar_t* name, const wchar_t* keyAttribute,
                            const wchar_t* keyValue, const wchar_t* otherAttribute,
                            AString* otherValue) const {
  const pugi::xml_node child = findChild(host::asNode(m_handle), name, keyAttribute, keyValue);
  if (!child) return false;
  if (otherValue && host::isGiven(otherAttribute)) {
    *otherValue = AString(host::findAttribute(child, otherAttribute).value());
  }
  out = at(child.internal_object());
  return true;
}

bool AnXmlNode::getExistingChild(AnXmlNode& out, const wchar_t* name, const wchar_t* keyAttribute,
                                 const wchar_t* keyValue, const wchar_t* otherAttribute,
                                 AString* otherValue) const {
  return tryGetChild(out, name, keyAttribute, keyValue, otherAttribute, otherValue);
}

bool AnXmlNode::tryGetChildMove(const wchar_t* name, const wchar_t* keyAttribute,
                                const wchar_t* keyValue, const wchar_t* otherAttribute,
                                AString* otherValue) {
  return tryGetChild(*this, name, keyAttribute, keyValue, otherAttribute, otherValue);
}

bool AnXmlNode::tryGetValue(const wchar_t* name, AString& value) const {
  if (isNull()) return false;
  if (!host::isGiven(name)) {
    value = AString(host::valueOf(host::asNode(m_handle)));
    return true;
  }
  const pugi::xml_attribute attribute = host::findAttribute(host::asNode(m_handle), name);
  if (!attribute) return false;
  value = AString(attribute.value());
  return true;
}

void AnXmlNode::setValue(const wchar_t* name, const AString& value) {
  if (isNull()) return;
  const host::XmlText text(value.str());
  if (host::isGiven(name)) {
    host::setAttribute(host::asNode(m_handle), host::XmlName(name).c_str(), text.c_str());
  } else {
    host::setText(host::asNode(m_handle), text);
  }
}

AString AnXmlNode::getName() const { return AString(host::asNode(m_handle).name()); }

bool AnXmlNode::setChild(AnXmlNode& out, const wchar_t* name, const wchar_t* keyAttribute,
                         const wchar_t* keyValue, const wchar_t* otherAttribute,
                         const wchar_t* otherValue) {
  AnXmlNode child;
  if (!tryGetChild(child, name, keyAttribute, keyValue, nullptr, nullptr) &&
      !addChild(child, name, keyAttribute, keyValue)) {
    return false;
  }
  setAttributeIfGiven(host::asNode(child.m_handle), otherAttribute, otherValue);
  out = child;
  return true;
}

bool AnXmlNode::addChild(AnXmlNode& out, const wchar_t* name, const wchar_t* attribute,
                         const wchar_t* value) {
  if (isNull() || !host::isGiven(name)) return false;
  const pugi::xml_node child =
      host::appendNode(host::asNode(m_handle), pugi::node_element, host::XmlName(name).c_str());
  setAttributeIfGiven(child, attribute, value);
  out = at(child.internal_object());
  return true;
}

void AnXmlNode::remove() {
  pugi::xml_node parent = host::asNode(m_handle).parent();
  if (parent.type() != pugi::node_element) return;
  parent.remove_child(host::asNode(m_handle));
  m_handle = nullptr;
}

void AnXmlNode::copyAsChild(const AnXmlNode& node) {
  if (!isNull() && !node.isNull()) {
    host::appendCopy(host::asNode(m_handle), host::asNode(node.m_handle));
  }
}
