#ifndef HOST_XML_TREE_EDIT_H
#define HOST_XML_TREE_EDIT_H

#include <cstddef>
#include <cwchar>
#include <pugixml.hpp>
#include <string>

// Changes to a tree. Texts are UTF-8 of characters that XML can carry. All throw std::bad_alloc.
namespace host {

// Whether XML 1.0 can carry a character.
bool isXmlCharacter(wchar_t character);

// The UTF-8 form of a text, with U+FFFD in place of every character that XML 1.0 cannot carry.
// Short plain ones, which nearly all names and values are, need no memory of their own.
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

// Adds a node as the last child of `parent`. The name is used for the kinds that have one.
pugi::xml_node appendNode(pugi::xml_node parent, pugi::xml_node_type type, const char* name);

// Sets what a text, CDATA, comment or processing instruction node holds.
void setNodeValue(pugi::xml_node node, const char* value, std::size_t size);

// Adds a text, CDATA or comment node as the last child of `parent`.
void appendText(pugi::xml_node parent, pugi::xml_node_type type, const XmlText& text);

// Adds an attribute after the others. None of them may have that name.
pugi::xml_attribute appendAttribute(pugi::xml_node node, const char* name, const char* value);

// Sets an attribute. An existing one keeps its place; a new one is added after the others.
pugi::xml_attribute setAttribute(pugi::xml_node node, const char* name, const char* value);
void setAttributeValue(pugi::xml_attribute attribute, const char* value);

// Puts one text node in the place of all text directly inside the node, before its other children;
// none when the text is empty.
void setText(pugi::xml_node node, const XmlText& text);

// Adds a deep copy of a node, of this or another tree, as the last child of `parent`.
void appendCopy(pugi::xml_node parent, pugi::xml_node source);

}  // namespace host

#endif
