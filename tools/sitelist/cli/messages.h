#ifndef TOOLS_SITELIST_CLI_MESSAGES_H
#define TOOLS_SITELIST_CLI_MESSAGES_H

#include <string>
#include <vector>

namespace tool {

// Discards everything that is written to std::cerr from now on. printError still prints.
void omitMessages();

// Prints "sitelist: TEXT" to standard error. Both texts must be printable. An empty advice is
// omitted.
void printError(const std::string& text, const std::string& advice = "");

// Prints "sitelist: warning: TEXT" to standard error and keeps the text for the report. Both texts
// must be printable. An empty advice is omitted.
void printWarning(const std::string& text, const std::string& advice = "");

// Returns the message about standard output that cannot be written, with the reason. Must be called
// after a write has failed: it writes once more to find the reason.
std::string outputFailure();
constexpr const char* c_checkOutput = "check the disk, or the program that reads the output";

// Returns the texts of all warnings of this process, without advice.
const std::vector<std::string>& warnings();

}  // namespace tool

#endif
