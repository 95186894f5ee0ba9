#ifndef TOOLS_SITELIST_CLI_MATCHING_H
#define TOOLS_SITELIST_CLI_MATCHING_H

#include <string>
#include <vector>

namespace tool {

// Whether the whole text is like the pattern, in which "*" stands for any characters and "?" for
// one. Case does not count, in any script.
bool matchesPattern(const std::wstring& text, const std::wstring& pattern);

// Names those of `known` that may have been meant by a name that is none of them, the nearest
// first: "; did you mean A, B or C?". Empty when there is nothing near.
std::string suggestion(const std::string& name, const std::vector<std::string>& known);

}  // namespace tool

#endif
