#include "host/xml/tree_edit.h"

#include <algorithm>
#include <new>

#include "host/common/encoding.h"

namespace host {
namespace {

void require(bool done) {
  if (!done) throw std::bad_alloc();
}

bool isXmlCharacter(wchar_t character) {
  const auto c = static_cast<std::uint32_t>(character);
  if (c < 0x20) return c == '\t' || c == '\n' || c == '\r';
  return isScalar(c) && c != 0xFFFE && c != 0xFFFF;
}

}  // namespace

pugi::xml_node appendNode(pugi::xml_node parent, pugi::xml_node_type type, const char* name) {
  pugi::xml_node node = parent.append_child(type);
  require(node && node.set_name(name));
  return node;
}

void appendText(pugi::xml_node parent, pugi::xml_node_type type, const std::string& text) {
  setNodeValue(parent.append_child(type), text.data(), text.size());
}

void setNodeValue(pugi::xml_node node, const char* value, std::size_t size) {
  require(node && node.set_value(value, size));
}

pugi::xml_attribute appendAttribute(pugi::xml_node node, const char* name, const char* value) {
  // Named in a step of its own, because append_attribute does not tell whether that failed.
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

std::string toXmlText(const std::wstring& text) {
  if (std::all_of(text.begin(), text.end(), isXmlCharacter)) return toUtf8(text);
  std::wstring repaired = text;
  std::replace_if(
      repaired.begin(), repaired.end(), [](wchar_t c) { return !isXmlCharacter(c); }, L'\uFFFD');
  return toUtf8(repaired);
}

}  // namespace host
