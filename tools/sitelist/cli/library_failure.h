#ifndef TOOLS_SITELIST_CLI_LIBRARY_FAILURE_H
#define TOOLS_SITELIST_CLI_LIBRARY_FAILURE_H

#include <string>

#include "tools/sitelist/cli/failure.h"

namespace tool {

// Returns a result code in both forms, for example "-5, 0xFFFFFFFB".
std::string formatCode(int code);

// Returns the failure of an operation of the library on a file.
Failure libraryFailure(const std::string& path, int code);
// Does the same for a document that was passed as bytes.
Failure libraryFailure(const std::string& name, const std::string& bytes, int code);
// Does the same with a given meaning, advice and exit status. `details` are further lines of the
// text, each after a line feed.
Failure libraryFailure(const std::string& path, int code, ExitStatus status,
                       const std::string& meaning, const std::string& advice,
                       const std::string& details = "");

// Returns the failure to write a file, with the reason from the log. The log record of this reason
// is not printed again.
Failure writeFailure(const std::string& path, int code, const std::string& meaning);

}  // namespace tool

#endif
