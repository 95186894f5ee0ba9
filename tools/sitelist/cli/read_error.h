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

// Why a file cannot be read as a document.
struct ReadError {
  ExitStatus status = exitDocument;  // or exitFile
  const char* rule = nullptr;        // the one of `validate` that the file breaks
  unsigned long line = 0;
  unsigned long column = 0;  // both 0 where no place in the document is meant
  std::string reason;        // printable, without the name of the file
  const char* advice = "";
  int code = 0;  // of the library or the parser
};

constexpr const char* c_checkFile = "check that it is a regular file that you may read";

// Why a file cannot be read, from the errno of reading it.
std::string readFailureReason(int systemError);
ReadError readErrorOf(int systemError);

// Reads and parses a file. Returns why it is not a document, if it is not.
std::optional<ReadError> readDocument(const std::string& path, std::wstring& text,
                                      std::unique_ptr<AdvXMLParser::Document>& document);
// Reads and parses a file to see why an operation of the library refused it with this code. Nothing
// when it can be read now.
std::optional<ReadError> findReadError(const std::string& path, int code = 0);
// The same for the bytes of a document.
std::optional<ReadError> findReadErrorInBytes(const std::string& bytes, int code = 0);

}  // namespace tool

#endif
