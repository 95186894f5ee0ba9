#ifndef TOOLS_SITELIST_CLI_LIBRARY_FAILURE_H
#define TOOLS_SITELIST_CLI_LIBRARY_FAILURE_H

#include <string>

#include "tools/sitelist/cli/failure.h"

namespace tool {

// A result code in both its forms: "-5, 0xFFFFFFFB".
std::string formatCode(int code);

// The failure of an operation of the library on a file.
Failure libraryFailure(const std::string& path, int code);
// The same for a document that was handed over as bytes.
Failure libraryFailure(const std::string& name, const std::string& bytes, int code);
// The same with a meaning, advice and exit status of its own in place of the code's. `details` are
// more lines of the text, each with a line feed in front.
Failure libraryFailure(const std::string& path, int code, ExitStatus status,
                       const std::string& meaning, const std::string& advice,
                       const std::string& details = "");

// The failure to write a file, with the reason that was logged. That record is not reported again.
Failure writeFailure(const std::string& path, int code, const std::string& meaning);

}  // namespace tool

#endif
