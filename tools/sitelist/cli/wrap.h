#ifndef TOOLS_SITELIST_CLI_WRAP_H
#define TOOLS_SITELIST_CLI_WRAP_H

#include <cstddef>
#include <string>

namespace tool {

// Breaks a printable text between words, so that each line ends at or before `columns`. The first
// line begins after `indent` columns, which the caller prints. The other lines begin with as many
// spaces. A longer word is not broken. With 0 columns there is no limit.
std::string wrapped(const std::string& text, std::size_t indent, std::size_t columns);

}  // namespace tool

#endif
