#include "tools/sitelist/cli/read_error.h"

#include <cctype>
#include <cerrno>
#include <cstring>

#include "host/xml/limits.h"
#include "platform/config/configuration.h"
#include "platform/xml/advxmlparser.h"
#include "sitehlp/records/record_limits.h"
#include "sitehlp/result_codes.h"
#include "sitehlp/site.h"
#include "sitehlp/xmlschema/sitelist.h"
#include "tools/sitelist/cli/input.h"
#include "tools/sitelist/cli/text.h"

namespace tool {
namespace {

using AdvXMLParser::Document;
using AdvXMLParser::ReadWriteException;
using korvel_com::orb::xmlschema::sitelist::WX_XML_SITELIST;

constexpr const char* c_checkSource = "check where the document comes from";
constexpr std::size_t c_bytesOfMegabyte = std::size_t{1} << 20;

std::string megabytes(std::size_t bytes) {
  return std::to_string(bytes / c_bytesOfMegabyte) + " MiB";
}

// The parser gives the name of a limit only at the end of its text.
std::string limitReason(const ReadWriteException& e) {
  const std::string text = e.what();
  const auto isOf = [&](const char* limit) {
    const std::string end = std::string(": ") + limit;
    return text.size() >= end.size() &&
           text.compare(text.size() - end.size(), end.size(), end) == 0;
  };
  if (e.GetSystemError() == EFBIG || isOf(host::c_bytesLimit)) return readFailureReason(EFBIG);
  if (isOf(host::c_depthLimit)) {
    return "the elements are nested deeper than " + std::to_string(host::c_maxDepth) + " levels";
  }
  if (isOf(host::c_attributesLimit)) {
    return "the element has more than " + std::to_string(host::c_maxAttributes) + " attributes";
  }
  if (isOf(host::c_childrenLimit)) {
    return "an element has more than " + std::to_string(host::c_maxChildren) + " child elements";
  }
  if (isOf(host::c_tokenLimit)) {
    return "a tag, comment or instruction is longer than " + megabytes(host::c_maxTokenBytes);
  }
  if (isOf(host::c_textLimit)) {
    return "a text is longer than " + megabytes(host::c_maxTokenBytes);
  }
  return text;
}

ReadError overLimit(const std::string& reason, const char* advice) {
  ReadError error;
  error.rule = "over-limit";
  error.reason = reason;
  error.advice = advice;
  error.code = ReadWriteException::LIMIT_EXCEEDED;
  return error;
}

ReadError invalidEncoding() {
  ReadError error;
  error.rule = "invalid-encoding";
  error.reason = "the bytes are not valid UTF-8, UTF-16 or UTF-32";
  error.advice = "save the document as UTF-8, or request it again from the server";
  error.code = ReadWriteException::INVALID_ENCODING;
  return error;
}

std::string inSmallLetters(std::string text) {
  for (char& c : text) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  return text;
}

// Returns the encoding that the XML declaration of a document in ASCII names, or an empty text.
std::string declaredEncoding(const std::string& bytes) {
  constexpr std::size_t longest = 200;
  const std::string start = bytes.substr(0, longest);
  const std::size_t end = start.find("?>");
  if (start.rfind("<?xml", 0) != 0 || end == std::string::npos) return "";
  const std::size_t at = start.find("encoding");
  const std::size_t open = start.find_first_of("\"'", at);
  if (at >= end || open >= end) return "";
  return start.substr(open + 1, start.find(start[open], open + 1) - open - 1);
}

bool isSupported(const std::string& encoding) {
  const std::string name = inSmallLetters(encoding);
  return name.rfind("utf-8", 0) == 0 || name.rfind("utf-16", 0) == 0 ||
         name.rfind("utf-32", 0) == 0 || name == "us-ascii";
}

// A document in another encoding looks like one with wrong bytes.
void nameUnsupportedEncoding(ReadError& error, const std::string& bytes) {
  const std::string encoding = declaredEncoding(bytes);
  if (encoding.empty() || isSupported(encoding)) return;
  error.meaning = "the encoding of the document is not supported";
  error.reason = "the document declares the encoding \"" + shown(encoding) +
                 "\"; only UTF-8, UTF-16 and UTF-32 are supported";
}

ReadError readErrorOf(const ReadWriteException& e) {
  if (e.GetErrorCode() == ReadWriteException::INVALID_ENCODING) return invalidEncoding();
  if (e.GetErrorCode() != ReadWriteException::LIMIT_EXCEEDED) {
    return tool::readErrorOf(e.GetSystemError());
  }
  ReadError error = overLimit(shown(limitReason(e)), c_checkSource);
  error.line = e.GetLine();
  error.column = e.GetColumn();
  return error;
}

ReadError notWellFormed(unsigned long line, unsigned long column, const std::string& reason) {
  ReadError error;
  error.rule = "not-well-formed";
  error.line = line;
  error.column = column;
  error.reason = reason;
  error.advice = "fix the document at that place, or request it again from the server";
  error.code = sitehlp::c_errorParse;
  return error;
}

// Parses the text that `getText` returns. If it is not a document, returns the reason.
template <typename GetText>
std::optional<ReadError> parse(GetText getText, std::wstring& text,
                               std::unique_ptr<Document>& document) {
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

// The library does not report which of the two limits a list exceeds. A list exceeds the memory
// limit only if it has more elements than the number of records that the limit allows.
ReadError recordLimitOf(const Document& document) {
  const std::size_t bytes = IConfiguration::GetConfiguration()->GetMaxRecordBytes();
  std::size_t elements = 0;
  for ([[maybe_unused]] const AdvXMLParser::Element element :
       document.GetRoot().GetElement(WX_XML_SITELIST).Elements()) {
    ++elements;
  }
  if (elements > bytes / sizeof(sitehlp::tag_Site)) {
    return overLimit("the " + std::to_string(elements) + " sites need more memory than the " +
                         megabytes(bytes) + " that the agent allows",
                     "raise limits.record_megabytes in agent.toml, or remove sites from the list");
  }
  return overLimit("the list has more than " + std::to_string(sitehlp::c_maxUnknownElements) +
                       " elements of unknown kind",
                   "correct the names of the elements in \"SiteList\", or remove the elements");
}

}  // namespace

std::string readFailureReason(int systemError) {
  if (systemError == EISDIR) return "it is a directory";
  if (systemError == EINVAL) return "it is not a regular file";
  if (systemError == EFBIG) return "it is larger than " + megabytes(host::c_maxDocumentBytes);
  return std::strerror(systemError);
}

ReadError readErrorOf(int systemError) {
  if (systemError == EFBIG) return overLimit(readFailureReason(systemError), c_checkSource);
  ReadError error;
  error.status = exitFile;
  error.rule = "unreadable-file";
  error.reason = readFailureReason(systemError);
  error.advice = c_checkFile;
  error.code = ReadWriteException::READ_FAILED;
  return error;
}

std::optional<ReadError> readDocument(const std::string& path, std::wstring& text,
                                      std::unique_ptr<Document>& document) {
  auto error = parse(
      [&](std::string& into, AdvXMLParser::WrittenIn& writtenIn) {
        AdvXMLParser::ReadUtf8FromFile(wide(path), into, writtenIn);
      },
      text, document);
  std::string bytes;
  if (error && error->code == ReadWriteException::INVALID_ENCODING &&
      tryReadBytes(path, bytes) == 0) {
    nameUnsupportedEncoding(*error, bytes);
  }
  return error;
}

std::optional<ReadError> readDocumentInBytes(const std::string& bytes,
                                             std::unique_ptr<Document>& document) {
  std::wstring text;
  auto error = parse(
      [&](std::string& into, AdvXMLParser::WrittenIn& writtenIn) {
        const auto* const data = reinterpret_cast<const unsigned char*>(bytes.data());
        if (!AdvXMLParser::ConvertBufferToUtf8(data, bytes.size(), into, writtenIn)) {
          throw ReadWriteException(ReadWriteException::INVALID_ENCODING, 0, "");
        }
      },
      text, document);
  if (error && error->code == ReadWriteException::INVALID_ENCODING) {
    nameUnsupportedEncoding(*error, bytes);
  }
  return error;
}

std::optional<ReadError> findReadError(const std::string& path, int code) {
  std::wstring text;
  std::unique_ptr<Document> document;
  if (const auto error = readDocument(path, text, document)) return error;
  if (code == ReadWriteException::LIMIT_EXCEEDED) return recordLimitOf(*document);
  return std::nullopt;
}

std::optional<ReadError> findReadErrorInBytes(const std::string& bytes, int code) {
  std::unique_ptr<Document> document;
  if (const auto error = readDocumentInBytes(bytes, document)) return error;
  if (code == ReadWriteException::LIMIT_EXCEEDED) return recordLimitOf(*document);
  return std::nullopt;
}

}  // namespace tool
