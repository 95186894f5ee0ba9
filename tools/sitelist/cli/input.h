#ifndef TOOLS_SITELIST_CLI_INPUT_H
#define TOOLS_SITELIST_CLI_INPUT_H

#include <cstddef>
#include <string>

namespace tool {

// More than any document may have; the library says so of what is larger than its own limit.
constexpr std::size_t c_maxInputBytes = std::size_t{128} << 20;

// A document that is handed to the library from memory.
struct Input {
  std::string name;  // for messages
  std::string bytes;
};

// Reads a file or, for "-" and without a name, standard input. Fails when it cannot be read.
Input readInput(const std::string& file);
// The same, but returns why it cannot be read: 0 or an errno.
int tryReadInput(const std::string& file, Input& input);

}  // namespace tool

#endif
