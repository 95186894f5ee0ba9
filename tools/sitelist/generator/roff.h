#ifndef TOOLS_SITELIST_GENERATOR_ROFF_H
#define TOOLS_SITELIST_GENERATOR_ROFF_H

#include <string>

namespace tool {

// Returns a text whose characters have no special meaning.
std::string roffLiteral(const std::string& text);

// Returns running text, divided into lines of the source. Options and text between backticks become
// bold.
std::string roffText(const std::string& text);

}  // namespace tool

#endif
