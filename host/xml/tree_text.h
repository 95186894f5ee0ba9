#ifndef HOST_XML_TREE_TEXT_H
#define HOST_XML_TREE_TEXT_H

#include <cstddef>
#include <pugixml.hpp>
#include <string>

// Reading names and values of a tree as wide text.
namespace host {

// Compares a UTF-8 text of a tree with a wide one.
bool equals(const char* utf8, const wchar_t* wide);

// The text directly inside the node, CDATA sections included.
std::wstring valueOf(pugi::xml_node node);
void narrowValueOf(pugi::xml_node node, std::string& value);

// Writes the value and a terminator; false when they do not fit.
bool copyValue(pugi::xml_attribute attribute, wchar_t* dest, std::size_t capacity);
bool copyValue(pugi::xml_node node, wchar_t* dest, std::size_t capacity);

bool isText(pugi::xml_node node);

}  // namespace host

#endif
