#ifndef TOOLS_SITELIST_CLI_INPUT_H
#define TOOLS_SITELIST_CLI_INPUT_H

#include <cstddef>
#include <string>

namespace tool {

class Failure;

// Greater than the library's limit, so that the library itself reports a document over its limit.
constexpr std::size_t c_maxInputBytes = std::size_t{128} << 20;

// A document that is passed to the library in memory.
struct Input {
  std::string name;  // for messages
  std::string bytes;
};

// The advice for EBADF, which only standard input can give.
constexpr const char* c_openInput = "standard input is not open for reading; redirect a file to it";

// Opens standard streams that are closed. Otherwise another file could get the descriptor of such a
// stream, and messages would go into that file. Reading them or writing to them still fails.
void reserveStandardStreams();

// Returns whether a name on the command line means standard input or standard output: "-". "./-" is
// a file of this name.
bool isStandardStream(const std::string& file);
// Fails with wrong usage if `file` is "-". `what` names the argument or option.
void refuseStandardStream(const std::string& file, const std::string& what);

// Returns whether the file is "-", or names the pipe that is standard input, for example
// /dev/stdin.
bool isStandardInput(const std::string& file);

// Returns whether the file can be read only once: standard input, or a pipe.
bool isReadOnce(const std::string& file);

// Must be called before standard input is read. Fails with wrong usage if it was called before.
void takeStandardInput();

// Reads a file or, for "-" or an empty name, standard input. Waits for the writer of a pipe. Fails
// when it cannot be read.
Input readInput(const std::string& file);
// Returns the failure of a read with this errno.
Failure inputFailure(const std::string& name, int error);
// Does the same, but returns 0 or an errno. Fails only as takeStandardInput does.
int tryReadInput(const std::string& file, Input& input);

// Reads a whole regular file. Returns 0 or an errno.
int tryReadBytes(const std::string& path, std::string& bytes);

}  // namespace tool

#endif
