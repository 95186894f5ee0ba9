#ifndef HOST_XML_TREE_EDIT_H
#define HOST_XML_TREE_EDIT_H

#include <cstddef>
#include <pugixml.hpp>
#include <string>

// Changes to a tree. Texts are UTF-8 of characters that XML can carry. All throw std::bad_alloc.
namespace host {

// Adds a node behind the children of `parent`. The name counts for the kinds that have one.
pugi::xml_node appendNode(pugi::xml_node parent, pugi::xml_node_type type, const char* name);

// Sets what a text, CDATA, comment or processing instruction node holds.
void setNodeValue(pugi::xml_node node, const char* value, std::size_t size);

// Adds a text, CDATA or comment node behind the children of `parent`.
void appendText(pugi::xml_node parent, pugi::xml_node_type type, const std::string& text);

// Adds an attribute behind the others, of which none has that name.
pugi::xml_attribute appendAttribute(pugi::xml_node node, const char* name, const char* value);

// Adds an attribute behind the others; one of that name keeps its place and gets the value.
pugi::xml_attribute setAttribute(pugi::xml_node node, const char* name, const char* value);
void setAttributeValue(pugi::xml_attribute attribute, const char* value);

// Puts one text node in the place of all text directly inside the node, before its other children;
// none when the text is empty.
void setText(pugi::xml_node node, const std::string& text);

// Adds a deep copy of a node, of this or another tree, behind the children of `parent`.
void appendCopy(pugi::xml_node parent, pugi::xml_node source);

// The UTF-8 form, with U+FFFD in place of every character that XML 1.0 cannot carry.
std::string toXmlText(const std::wstring& text);

}  // namespace host

#endif
