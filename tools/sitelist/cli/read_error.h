#ifndef TOOLS_SITELIST_CLI_READ_ERROR_H
#define TOOLS_SITELIST_CLI_READ_ERROR_H

#include <memory>
#include <optional>
#include <string>

#include "tools/sitelist/cli/exit_status.h"

namespace AdvXMLParser {
class Document;
}

namespace tool {

// The reason why a file cannot be read as a document.
struct ReadError {
  ExitStatus status = exitDocument;  // or exitFile
  const char* rule = nullptr;        // the rule of `validate` that the file breaks
  unsigned long line = 0;
  unsigned long column = 0;  // line and column are 0 without a place in the document
  std::string reason;        // printable, without the name of the file
  const char* advice = "";
  int code = 0;                   // error code of the library or the parser
  const char* meaning = nullptr;  // what happened, if the code does not say it
};

constexpr const char* c_checkFile = "check that it is a regular file that you may read";

// Return the reason why a file cannot be read, from the errno of the read.
std::string readFailureReason(int systemError);
ReadError readErrorOf(int systemError);

// Reads and parses a file. If it is not a document, returns the reason.
std::optional<ReadError> readDocument(const std::string& path, std::wstring& text,
                                      std::unique_ptr<AdvXMLParser::Document>& document);
// Does the same for the bytes of a document.
std::optional<ReadError> readDocumentInBytes(const std::string& bytes,
                                             std::unique_ptr<AdvXMLParser::Document>& document);
// Reads and parses a file to find the reason why an operation of the library returned `code`.
// Returns nothing if the file can now be read.
std::optional<ReadError> findReadError(const std::string& path, int code = 0);
// Does the same for the bytes of a document.
std::optional<ReadError> findReadErrorInBytes(const std::string& bytes, int code = 0);

}  // namespace tool

#endif
