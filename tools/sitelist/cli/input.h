#ifndef TOOLS_SITELIST_CLI_INPUT_H
#define TOOLS_SITELIST_CLI_INPUT_H

#include <string>

namespace tool {

// A document that is handed to the library from memory.
struct Input {
  std::string name;  // for messages
  std::string bytes;
};

// Reads a file or, for "-" and without a name, standard input. Fails when it cannot be read.
Input readInput(const std::string& file);

}  // namespace tool

#endif
