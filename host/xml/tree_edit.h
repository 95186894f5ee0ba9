#ifndef HOST_XML_TREE_EDIT_H
#define HOST_XML_TREE_EDIT_H

#include <cstddef>
#include <cwchar>
#include <pugixml.hpp>
#include <string>

// Changes of a tree. Texts are UTF-8 with only those characters that XML allows. All functions
// except isXmlCharacter may throw std::bad_alloc.
namespace host {

// Returns whether XML 1.0 allows a character.
bool isXmlCharacter(wchar_t character);

// The UTF-8 form of a text. A character that XML 1.0 does not allow becomes U+FFFD. A short plain
// text needs no allocation; nearly all names and values are short and plain.
class XmlText {
 public:
  XmlText(const wchar_t* text, std::size_t length);
  explicit XmlText(const wchar_t* text) : XmlText(text, std::wcslen(text)) {}
  explicit XmlText(const std::wstring& text) : XmlText(text.data(), text.size()) {}
  XmlText(const XmlText&) = delete;
  XmlText& operator=(const XmlText&) = delete;

  const char* c_str() const { return m_text; }
  std::size_t size() const { return m_size; }

 private:
  char m_short[128];
  std::string m_long;
  const char* m_text = m_short;
  std::size_t m_size;
};

// Adds a node as the last child of `parent`. `name` is used only for kinds of nodes that have a
// name.
pugi::xml_node appendNode(pugi::xml_node parent, pugi::xml_node_type type, const char* name);

// Sets the content of a text, CDATA, comment or processing instruction node.
void setNodeValue(pugi::xml_node node, const char* value, std::size_t size);

// Adds a text, CDATA or comment node as the last child of `parent`.
void appendText(pugi::xml_node parent, pugi::xml_node_type type, const XmlText& text);

// Adds an attribute after the others. The node must not have an attribute of that name.
pugi::xml_attribute appendAttribute(pugi::xml_node node, const char* name, const char* value);

// Sets an attribute. An existing one keeps its place; a new one is added after the others.
pugi::xml_attribute setAttribute(pugi::xml_node node, const char* name, const char* value);
void setAttributeValue(pugi::xml_attribute attribute, const char* value);

// Replaces all text directly in the node with one text node, before its other children. If the text
// is empty, there is no text node afterwards.
void setText(pugi::xml_node node, const XmlText& text);

// Adds a deep copy of a node as the last child of `parent`. The node may be in another tree.
void appendCopy(pugi::xml_node parent, pugi::xml_node source);

}  // namespace host

#endif
