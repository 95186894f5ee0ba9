#include "tools/sitelist/cli/library_failure.h"

#include <fcntl.h>

#include <cerrno>
#include <cstdint>
#include <cstdio>

#include "host/fs/file_system.h"
#include "platform/xml/advxmlparser.h"
#include "sitehlp/result_codes.h"
#include "tools/sitelist/cli/log_record.h"
#include "tools/sitelist/cli/read_error.h"
#include "tools/sitelist/cli/text.h"

namespace tool {
namespace {

using AdvXMLParser::ReadWriteException;

struct Meaning {
  int code;
  ExitStatus status;
  const char* meaning;
  const char* advice;
};

constexpr const char* c_notWritten = "the file could not be written";
constexpr const char* c_checkPath = "check the directories and symbolic links of the path";
constexpr const char* c_checkTarget =
    "check that its directory exists, that you may write there and that there is free space";

// This advice is for a document that can now be read. Otherwise the read error has its own advice.
constexpr Meaning c_meanings[] = {
    {sitehlp::c_errorGeneral, exitDocument, "the last site of the list is of unknown kind",
     "check the names of the elements in the document's \"SiteList\""},
    {sitehlp::c_errorNoPath, exitUsage, "no path, or an empty list, was given",
     "name a file that holds a site list"},
    {sitehlp::c_errorNoMemory, exitInternal, "a record could not be allocated",
     "free memory and try again"},
    {sitehlp::c_errorFileMissing, exitFile, "the file does not exist", "check the path"},
    {sitehlp::c_errorParse, exitDocument, "the document is not well formed",
     "check the document with `sitelist validate`"},
    {sitehlp::c_errorNoServerSite, exitNegative, "the list has no management server",
     "add a complete \"VestaSite\", or use a list that has one"},
    {sitehlp::c_errorValidation, exitNegative, "the list breaks a rule",
     "fix the errors; `sitelist validate` lists them all"},
    {sitehlp::c_errorRead, exitFile, "the file could not be read", c_checkFile},
    {sitehlp::c_errorWrite, exitFile, c_notWritten, c_checkTarget},
    {ReadWriteException::READ_FAILED, exitFile, "the file could not be read", c_checkFile},
    {ReadWriteException::WRITE_FAILED, exitFile, c_notWritten, c_checkTarget},
    {ReadWriteException::INVALID_ENCODING, exitDocument,
     "the bytes are not valid in the document's encoding",
     "check the document with `sitelist validate`"},
    {ReadWriteException::LIMIT_EXCEEDED, exitDocument, "the document is over a limit",
     "check where the document comes from"},
};

const Meaning& meaningOf(int code) {
  for (const Meaning& known : c_meanings) {
    if (known.code == code) return known;
  }
  static constexpr Meaning unknown = {0, exitInternal, "an unknown failure",
                                      "run again with --verbose"};
  return unknown;
}

std::string textWithCode(const std::string& path, int code, const std::string& meaning) {
  return shown(path) + ": " + meaning + " (" + formatCode(code) + ")";
}

FailureOrigin originOf(const std::string& path, int code) {
  FailureOrigin origin;
  origin.file = path;
  origin.code = code;
  return origin;
}

FailureOrigin originOf(const std::string& path, int code, const ReadError& error) {
  FailureOrigin origin = originOf(path, code);
  origin.line = error.line;
  origin.column = error.column;
  return origin;
}

std::string describe(const ReadError& error) {
  std::string text = "\n  ";
  if (error.line != 0) {
    text +=
        "line " + std::to_string(error.line) + ", column " + std::to_string(error.column) + ": ";
  }
  return text + error.reason;
}

// A result code can have several causes, so the read error is more precise.
Failure readFailure(const std::string& name, const ReadError& error, int code) {
  const char* const meaning = error.meaning ? error.meaning : meaningOf(error.code).meaning;
  return Failure(error.status, textWithCode(name, code, meaning) + describe(error), error.advice,
                 originOf(name, code, error));
}

// Returns 0 or an errno.
int errorOfFinding(const std::string& path) {
  struct stat status;
  return -host::fileSystem().stat(AT_FDCWD, path, true, status);
}

}  // namespace

std::string formatCode(int code) {
  char text[40];
  std::snprintf(text, sizeof(text), "%d, 0x%08X", code, static_cast<std::uint32_t>(code));
  return text;
}

Failure libraryFailure(const std::string& path, int code) {
  const Meaning& known = meaningOf(code);
  if (known.meaning == c_notWritten) return writeFailure(path, code, known.meaning);
  if (code == sitehlp::c_errorFileMissing) {
    // The library asks only whether it can find the file.
    const int error = errorOfFinding(path);
    if (error != 0 && error != ENOENT && error != ENOTDIR) {
      return libraryFailure(path, code, exitFile, "the file could not be read", c_checkPath,
                            "\n  " + readFailureReason(error));
    }
  }
  const bool isAboutReading = code != sitehlp::c_errorFileMissing &&
                              (known.status == exitDocument || known.status == exitFile);
  if (isAboutReading) {
    if (const auto error = findReadError(path, code)) return readFailure(path, *error, code);
  }
  return libraryFailure(path, code, known.status, known.meaning, known.advice);
}

Failure libraryFailure(const std::string& name, const std::string& bytes, int code) {
  const Meaning& known = meaningOf(code);
  if (const auto error = findReadErrorInBytes(bytes, code)) return readFailure(name, *error, code);
  return libraryFailure(name, code, known.status, known.meaning, known.advice);
}

Failure libraryFailure(const std::string& path, int code, ExitStatus status,
                       const std::string& meaning, const std::string& advice,
                       const std::string& details) {
  return Failure(status, textWithCode(path, code, meaning) + details, advice, originOf(path, code));
}

Failure writeFailure(const std::string& path, int code, const std::string& meaning) {
  const LoggedReason logged = takeReasonOfWrite(path);
  std::string text = textWithCode(path, code, meaning);
  if (!logged.reason.empty()) text += "\n  " + logged.reason;
  return Failure(exitFile, text, logged.advice.empty() ? c_checkTarget : logged.advice,
                 originOf(path, code));
}

}  // namespace tool
