#ifndef TOOLS_SITELIST_CLI_INPUT_H
#define TOOLS_SITELIST_CLI_INPUT_H

#include <cstddef>
#include <string>

namespace tool {

// Greater than the library's limit, so that the library itself reports a document over its limit.
constexpr std::size_t c_maxInputBytes = std::size_t{128} << 20;

// A document that is passed to the library in memory.
struct Input {
  std::string name;  // for messages
  std::string bytes;
};

// Reads a file or, for "-" or an empty name, standard input. Fails when it cannot be read.
Input readInput(const std::string& file);
// Does the same, but returns 0 or an errno.
int tryReadInput(const std::string& file, Input& input);

}  // namespace tool

#endif
