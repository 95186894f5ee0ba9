#include "host/xml/tree_edit.h"

#include <algorithm>
#include <new>

#include "host/common/encoding.h"
#include "host/xml/tree_text.h"

namespace host {
namespace {

void require(bool done) {
  if (!done) throw std::bad_alloc();
}

bool isPlain(wchar_t character) {
  return (character >= 0x20 && character < 0x80) || character == L'\n' || character == L'\t' ||
         character == L'\r';
}

pugi::xml_node copyAlone(pugi::xml_node source, pugi::xml_node parent) {
  pugi::xml_node copy = parent.append_child(source.type());
  require(copy);
  if (*source.name() != '\0') require(copy.set_name(source.name()));
  if (*source.value() != '\0') require(copy.set_value(source.value()));
  for (const pugi::xml_attribute attribute : source.attributes()) {
    appendAttribute(copy, attribute.name(), attribute.value());
  }
  return copy;
}

}  // namespace

bool isXmlCharacter(wchar_t character) {
  const auto c = static_cast<std::uint32_t>(character);
  if (c < 0x20) return c == '\t' || c == '\n' || c == '\r';
  return isScalar(c) && c != 0xFFFE && c != 0xFFFF;
}

pugi::xml_node appendNode(pugi::xml_node parent, pugi::xml_node_type type, const char* name) {
  pugi::xml_node node = parent.append_child(type);
  require(node && node.set_name(name));
  return node;
}

void appendText(pugi::xml_node parent, pugi::xml_node_type type, const XmlText& text) {
  setNodeValue(parent.append_child(type), text.c_str(), text.size());
}

void setNodeValue(pugi::xml_node node, const char* value, std::size_t size) {
  require(node && node.set_value(value, size));
}

pugi::xml_attribute appendAttribute(pugi::xml_node node, const char* name, const char* value) {
  // The name is set in a separate step, because append_attribute does not report whether that
  // failed.
  pugi::xml_attribute attribute = node.append_attribute("");
  require(attribute && attribute.set_name(name));
  setAttributeValue(attribute, value);
  return attribute;
}

pugi::xml_attribute setAttribute(pugi::xml_node node, const char* name, const char* value) {
  const pugi::xml_attribute attribute = node.attribute(name);
  if (!attribute) return appendAttribute(node, name, value);
  setAttributeValue(attribute, value);
  return attribute;
}

void setAttributeValue(pugi::xml_attribute attribute, const char* value) {
  require(attribute && attribute.set_value(value));
}

void setText(pugi::xml_node node, const XmlText& text) {
  for (pugi::xml_node child = node.first_child(); child;) {
    const pugi::xml_node next = child.next_sibling();
    if (isText(child)) node.remove_child(child);
    child = next;
  }
  if (text.size() > 0)
    setNodeValue(node.prepend_child(pugi::node_pcdata), text.c_str(), text.size());
}

// pugixml's own copy does not report a failed allocation.
void appendCopy(pugi::xml_node parent, pugi::xml_node source) {
  pugi::xml_node from = source;
  pugi::xml_node to = copyAlone(source, parent);
  const pugi::xml_node copy = to;
  // If the copy is inside its own source, the walk must skip it.
  const auto unlessCopy = [copy](pugi::xml_node node) {
    return node == copy ? pugi::xml_node() : node;
  };
  for (;;) {
    if (const pugi::xml_node child = unlessCopy(from.first_child())) {
      from = child;
      to = copyAlone(from, to);
      continue;
    }
    while (from != source && !unlessCopy(from.next_sibling())) {
      from = from.parent();
      to = to.parent();
    }
    if (from == source) return;
    from = from.next_sibling();
    to = copyAlone(from, to.parent());
  }
}

XmlText::XmlText(const wchar_t* text, std::size_t length) : m_size(length) {
  if (length < sizeof m_short) {
    std::size_t i = 0;
    for (; i < length && isPlain(text[i]); ++i) m_short[i] = static_cast<char>(text[i]);
    m_short[i] = '\0';
    if (i == length) return;
  }
  if (std::all_of(text, text + length, isXmlCharacter)) {
    m_long = toUtf8(text, length);
  } else {
    std::wstring repaired(text, length);
    std::replace_if(
        repaired.begin(), repaired.end(), [](wchar_t c) { return !isXmlCharacter(c); }, L'\uFFFD');
    m_long = toUtf8(repaired);
  }
  m_text = m_long.c_str();
  m_size = m_long.size();
}

}  // namespace host
