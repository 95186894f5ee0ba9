#ifndef TOOLS_SITELIST_CLI_PATTERN_H
#define TOOLS_SITELIST_CLI_PATTERN_H

#include <string>

namespace tool {

// Whether the whole text is like the pattern, in which "*" stands for any characters and "?" for
// one. Case does not count, in any script.
bool matchesPattern(const std::wstring& text, const std::wstring& pattern);

}  // namespace tool

#endif
