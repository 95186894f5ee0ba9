#ifndef TOOLS_SITELIST_CLI_FAILURE_H
#define TOOLS_SITELIST_CLI_FAILURE_H

#include <stdexcept>
#include <string>

#include "tools/sitelist/cli/exit_status.h"

namespace tool {

// Where a failure comes from, as far as it is known.
struct FailureOrigin {
  std::string file;
  int code = 0;  // of the library
  unsigned long line = 0;
  unsigned long column = 0;  // both 0 where no place in a document is meant
};

// Ends a command. what() is the text; the advice says what to do next. Both are printable, and
// both may have several lines.
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

// A failure that is about a file or directory: its text is "PATH: TEXT".
Failure failureAt(const std::string& path, ExitStatus status, const std::string& text,
                  const std::string& advice);

}  // namespace tool

#endif
