#ifndef TOOLS_SITELIST_CLI_FAILURE_H
#define TOOLS_SITELIST_CLI_FAILURE_H

#include <stdexcept>
#include <string>

#include "tools/sitelist/cli/exit_status.h"

namespace tool {

// The origin of a failure, if it is known.
struct FailureOrigin {
  std::string file;
  int code = 0;  // result code of the library
  unsigned long line = 0;
  unsigned long column = 0;  // line and column are 0 without a place in a document
};

// Ends a command. what() returns the text. advice() says what the user can do next. Both are
// printable, and both may have several lines.
class Failure : public std::runtime_error {
 public:
  Failure(ExitStatus status, const std::string& text, const std::string& advice,
          FailureOrigin origin = {});
  Failure(const Failure&);
  ~Failure() override;

  ExitStatus status() const { return m_status; }
  const std::string& advice() const { return m_advice; }
  const FailureOrigin& origin() const { return m_origin; }

 private:
  ExitStatus m_status;
  std::string m_advice;
  FailureOrigin m_origin;
};

// Returns a failure about a file or directory, with the text "PATH: TEXT".
Failure failureAt(const std::string& path, ExitStatus status, const std::string& text,
                  const std::string& advice);

}  // namespace tool

#endif
