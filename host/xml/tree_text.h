#ifndef HOST_XML_TREE_TEXT_H
#define HOST_XML_TREE_TEXT_H

#include <cstddef>
#include <pugixml.hpp>
#include <string>

// Reading names and values of a tree as wide text.
namespace host {

// Compares a UTF-8 text of a tree with a wide one.
bool equals(const char* utf8, const wchar_t* wide);
// The position of the first of `count` names that is equal; `count` when none is.
std::size_t findName(const char* utf8, const wchar_t* const* names, std::size_t count);

// The text directly inside the node, CDATA sections included.
std::wstring valueOf(pugi::xml_node node);
void narrowValueOf(pugi::xml_node node, std::string& value);

// Writes the value and a terminator; false when they do not fit.
bool copyValue(pugi::xml_attribute attribute, wchar_t* dest, std::size_t capacity);
bool copyValue(pugi::xml_node node, wchar_t* dest, std::size_t capacity);

// A null or empty name means that no name is given.
bool isGiven(const wchar_t* name);

bool isText(pugi::xml_node node);
// Whether the node is an element, of that name when one is given.
bool isElement(pugi::xml_node node, const wchar_t* name);

// The attribute of that name; null when there is none.
pugi::xml_attribute findAttribute(pugi::xml_node node, const wchar_t* name);
// Whether the node has an attribute of that name with that value, null counting as empty; true when
// no name is given.
bool hasAttribute(pugi::xml_node node, const wchar_t* name, const wchar_t* value);

}  // namespace host

#endif
