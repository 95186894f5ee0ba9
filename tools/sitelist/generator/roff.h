#ifndef TOOLS_SITELIST_GENERATOR_ROFF_H
#define TOOLS_SITELIST_GENERATOR_ROFF_H

#include <string>

namespace tool {

// A text whose characters have no special meaning.
std::string roffLiteral(const std::string& text);

// Running text, broken into lines of the source; options, and what stands between backticks, come
// out bold.
std::string roffText(const std::string& text);

}  // namespace tool

#endif
