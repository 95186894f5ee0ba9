#ifndef TOOLS_SITELIST_CLI_TEXT_H
#define TOOLS_SITELIST_CLI_TEXT_H

#include <cstddef>
#include <string>

namespace tool {

std::wstring wide(const std::string& utf8);
std::string narrow(const std::wstring& text);

// Returns the text in a form that cannot control a terminal. Control characters and invisible
// characters become \uXXXX. A backslash becomes \u005C if the text after it would make it look like
// one of these, so different texts stay different. Must not be applied to its own result.
std::wstring printable(const std::wstring& text);
// Does the same, but first replaces the paths of temporary files by their names from showAs().
std::string shown(const std::wstring& text);
std::string shown(const std::string& utf8);

// Returns the text in a form in which texts that differ only in case are equal.
std::wstring caseFolded(const std::wstring& text);

// Returns the number of terminal columns of a printable text.
std::size_t columnsOf(const std::wstring& text);

// Returns a number with commas, for example "5,000".
std::string withCommas(std::size_t number);

enum class Kept { Start, End };
// Returns a printable text with at most this many terminal columns. A longer text keeps one part
// and has an ellipsis in place of the other.
std::wstring cutTo(const std::wstring& text, std::size_t columns, Kept kept);

}  // namespace tool

#endif
