#ifndef TOOLS_SITELIST_CLI_TEXT_H
#define TOOLS_SITELIST_CLI_TEXT_H

#include <cstddef>
#include <string>

namespace tool {

std::wstring wide(const std::string& utf8);
std::string narrow(const std::wstring& text);

// The text in a form that does nothing to a terminal: control characters, and the invisible ones
// that turn the direction of writing, become \uXXXX.
std::wstring printable(const std::wstring& text);
std::string shown(const std::wstring& text);
std::string shown(const std::string& utf8);

// The text with what differs only in case made the same.
std::wstring caseFolded(const std::wstring& text);

// How many columns of a terminal a printable text takes.
std::size_t columnsOf(const std::wstring& text);

}  // namespace tool

#endif
