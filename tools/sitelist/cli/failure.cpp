#include "tools/sitelist/cli/failure.h"

#include <cstdint>
#include <cstdio>
#include <cstring>
#include <memory>
#include <utility>

#include "platform/xml/advxmlparser.h"
#include "sitehlp/result_codes.h"
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

constexpr const char* c_mendDocument =
    "fix the document at that place, or request it again from the server";
constexpr const char* c_checkFile = "check that it is a regular file that you may read";

constexpr Meaning c_meanings[] = {
    {sitehlp::c_errorGeneral, exitDocument, "the last site of the list is of unknown kind",
     "check the names of the elements in the document's \"SiteList\""},
    {sitehlp::c_errorNoPath, exitUsage, "no path, or an empty list, was given",
     "name a file that holds a site list"},
    {sitehlp::c_errorNoMemory, exitInternal, "a record could not be allocated",
     "free memory and try again"},
    {sitehlp::c_errorFileMissing, exitFile, "the file does not exist", "check the path"},
    {sitehlp::c_errorParse, exitDocument, "the document is not well formed", c_mendDocument},
    {sitehlp::c_errorNoServerSite, exitNegative, "the list has no management server",
     "add a complete \"VestaSite\", or use a list that has one"},
    {sitehlp::c_errorValidation, exitNegative, "the list breaks a rule",
     "fix the errors; `sitelist validate` lists them all"},
    {sitehlp::c_errorRead, exitFile, "the file could not be read", c_checkFile},
    {sitehlp::c_errorWrite, exitFile, "the file could not be written",
     "check that its directory exists, that you may write there and that there is free space"},
    {ReadWriteException::READ_FAILED, exitFile, "the file could not be read", c_checkFile},
    {ReadWriteException::WRITE_FAILED, exitFile, "the file could not be written",
     "check that its directory exists, that you may write there and that there is free space"},
    {ReadWriteException::INVALID_ENCODING, exitDocument,
     "the bytes are not valid in the document's encoding", c_mendDocument},
    {ReadWriteException::LIMIT_EXCEEDED, exitDocument, "the document is over a limit",
     "no real list is that large or deep; check where it came from"},
};

const Meaning& meaningOf(int code) {
  for (const Meaning& known : c_meanings) {
    if (known.code == code) return known;
  }
  static constexpr Meaning unknown = {0, exitInternal, "an unknown failure",
                                      "run again with --verbose"};
  return unknown;
}

ReadError readErrorOf(const ReadWriteException& e) {
  ReadError error;
  error.code = e.GetErrorCode();
  error.status = meaningOf(e.GetErrorCode()).status;
  error.rule = e.GetErrorCode() == ReadWriteException::INVALID_ENCODING ? "invalid-encoding"
               : e.GetErrorCode() == ReadWriteException::LIMIT_EXCEEDED ? "over-limit"
                                                                        : "unreadable-file";
  error.line = e.GetLine();
  error.column = e.GetColumn();
  error.reason = shown(std::string(e.what()));
  if (e.GetSystemError() != 0 &&
      error.reason.find(std::strerror(e.GetSystemError())) == std::string::npos) {
    error.reason += std::string(": ") + std::strerror(e.GetSystemError());
  }
  return error;
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

ReadError notWellFormed(unsigned long line, unsigned long column, const std::string& reason) {
  return {exitDocument, "not-well-formed", line, column, reason, sitehlp::c_errorParse};
}

// An error in the document says more than the code, which may stand for several.
Failure readFailure(const std::string& name, const ReadError& error, int code) {
  const Meaning& known = meaningOf(error.code);
  return Failure(error.status, textWithCode(name, code, known.meaning) + describe(error),
                 known.advice, originOf(name, code, error));
}

// Parses the text that `getText` gives; tells what stops it from being a document.
template <typename GetText>
std::optional<ReadError> parse(GetText getText, std::wstring& text,
                               std::unique_ptr<AdvXMLParser::Document>& document) {
  try {
    std::string utf8;
    AdvXMLParser::WrittenIn writtenIn{AdvXMLParser::UTF_8};
    getText(utf8, writtenIn);
    text = wide(utf8);
    document.reset(AdvXMLParser::Parser().ParseUtf8(utf8.data(), utf8.size(), &writtenIn));
    if (document) return std::nullopt;
    return notWellFormed(1, 1, "the file has no markup");
  } catch (const AdvXMLParser::ParsingException& e) {
    return notWellFormed(e.GetLine(), e.GetColumn(), shown(e.GetReason()));
  } catch (const ReadWriteException& e) {
    return readErrorOf(e);
  }
}

}  // namespace

Failure::Failure(ExitStatus status, const std::string& text, const std::string& advice,
                 FailureOrigin origin)
    : std::runtime_error(text), m_status(status), m_advice(advice), m_origin(std::move(origin)) {}
Failure::Failure(const Failure&) = default;
Failure::~Failure() = default;

Failure failureAt(const std::string& path, ExitStatus status, const std::string& text,
                  const std::string& advice) {
  return Failure(status, shown(path) + ": " + text, advice, originOf(path, 0));
}

std::optional<ReadError> readDocument(const std::string& path, std::wstring& text,
                                      std::unique_ptr<AdvXMLParser::Document>& document) {
  return parse(
      [&](std::string& into, AdvXMLParser::WrittenIn& writtenIn) {
        AdvXMLParser::ReadUtf8FromFile(wide(path), into, writtenIn);
      },
      text, document);
}

std::optional<ReadError> findReadError(const std::string& path) {
  std::wstring text;
  std::unique_ptr<AdvXMLParser::Document> document;
  return readDocument(path, text, document);
}

std::optional<ReadError> findReadErrorInBytes(const std::string& bytes) {
  std::wstring text;
  std::unique_ptr<AdvXMLParser::Document> document;
  return parse(
      [&](std::string& into, AdvXMLParser::WrittenIn& writtenIn) {
        const auto* const data = reinterpret_cast<const unsigned char*>(bytes.data());
        if (!AdvXMLParser::ConvertBufferToUtf8(data, bytes.size(), into, writtenIn)) {
          throw ReadWriteException(ReadWriteException::INVALID_ENCODING, 0,
                                   "the bytes are not valid in their encoding");
        }
      },
      text, document);
}

std::string formatCode(int code) {
  char text[40];
  std::snprintf(text, sizeof(text), "%d, 0x%08X", code, static_cast<std::uint32_t>(code));
  return text;
}

Failure libraryFailure(const std::string& path, int code) {
  const Meaning& known = meaningOf(code);
  const bool isAboutReading = code != sitehlp::c_errorFileMissing &&
                              (known.status == exitDocument || known.status == exitFile) &&
                              code != sitehlp::c_errorWrite;
  if (isAboutReading) {
    if (const auto error = findReadError(path)) return readFailure(path, *error, code);
  }
  return libraryFailure(path, code, known.status, known.meaning, known.advice);
}

Failure libraryFailure(const std::string& name, const std::string& bytes, int code) {
  const Meaning& known = meaningOf(code);
  if (const auto error = findReadErrorInBytes(bytes)) return readFailure(name, *error, code);
  return libraryFailure(name, code, known.status, known.meaning, known.advice);
}

Failure libraryFailure(const std::string& path, int code, ExitStatus status,
                       const std::string& meaning, const std::string& advice) {
  return Failure(status, textWithCode(path, code, meaning), advice, originOf(path, code));
}

}  // namespace tool
