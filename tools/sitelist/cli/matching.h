#ifndef TOOLS_SITELIST_CLI_MATCHING_H
#define TOOLS_SITELIST_CLI_MATCHING_H

#include <string>
#include <vector>

namespace tool {

// Returns whether the whole text matches the pattern. "*" matches any characters and "?" matches
// one. Ignores case in all scripts.
bool matchesPattern(const std::wstring& text, const std::wstring& pattern);

// Returns a suggestion for an unknown name: "; did you mean A, B or C?", with the most similar of
// `known` first. Returns an empty text if none is similar.
std::string suggestion(const std::string& name, const std::vector<std::string>& known);

}  // namespace tool

#endif
