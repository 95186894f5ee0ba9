#ifndef TOOLS_SITELIST_CLI_FAILURE_H
#define TOOLS_SITELIST_CLI_FAILURE_H

#include <memory>
#include <optional>
#include <stdexcept>
#include <string>

#include "tools/sitelist/cli/exit_status.h"

namespace AdvXMLParser {
class Document;
}

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

// Why a file cannot be read as a document.
struct ReadError {
  ExitStatus status;  // exitDocument or exitFile
  const char* rule;   // the one of `validate` that the file breaks
  unsigned long line = 0;
  unsigned long column = 0;  // both 0 where no place in the document is meant
  std::string reason;
  int code = 0;  // of the library or the parser
};

// Reads and parses a file. Returns why it is not a document, if it is not.
std::optional<ReadError> readDocument(const std::string& path, std::wstring& text,
                                      std::unique_ptr<AdvXMLParser::Document>& document);
// Reads and parses a file to see why an operation of the library refused it. Nothing when it can be
// read now.
std::optional<ReadError> findReadError(const std::string& path);
// The same for the bytes of a document.
std::optional<ReadError> findReadErrorInBytes(const std::string& bytes);

// A result code in both its forms: "-5, 0xFFFFFFFB".
std::string formatCode(int code);

// The failure of an operation of the library on a file.
Failure libraryFailure(const std::string& path, int code);
// The same for a document that was handed over as bytes.
Failure libraryFailure(const std::string& name, const std::string& bytes, int code);
// The same with a meaning, advice and exit status of its own in place of the code's.
Failure libraryFailure(const std::string& path, int code, ExitStatus status,
                       const std::string& meaning, const std::string& advice);

}  // namespace tool

#endif
