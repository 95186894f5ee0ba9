#ifndef HOST_XML_TREE_TEXT_H
#define HOST_XML_TREE_TEXT_H

#include <cstddef>
#include <pugixml.hpp>
#include <string>

// Functions that read names and values of a tree as wide text.
namespace host {

// Returns whether a UTF-8 text of a tree is equal to a wide text.
bool equals(const char* utf8, const wchar_t* wide);
// Returns the index of the first of `count` names that is equal, or `count` if there is none.
std::size_t findName(const char* utf8, const wchar_t* const* names, std::size_t count);

// Returns the text directly in the node, including CDATA sections.
std::wstring valueOf(pugi::xml_node node);
void narrowValueOf(pugi::xml_node node, std::string& value);

// Writes the value and a terminator. Returns false when they do not fit.
bool copyValue(pugi::xml_attribute attribute, wchar_t* dest, std::size_t capacity);
bool copyValue(pugi::xml_node node, wchar_t* dest, std::size_t capacity);

// Returns whether a name is given: it is neither null nor empty.
bool isGiven(const wchar_t* name);

bool isText(pugi::xml_node node);
// Returns whether the node is an element and, if a name is given, has that name.
bool isElement(pugi::xml_node node, const wchar_t* name);

// Returns the attribute with that name, or null.
pugi::xml_attribute findAttribute(pugi::xml_node node, const wchar_t* name);
// Returns whether the node has an attribute with that name and value, or no name is given. A null
// value is an empty text.
bool hasAttribute(pugi::xml_node node, const wchar_t* name, const wchar_t* value);

}  // namespace host

#endif
