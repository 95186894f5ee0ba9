#include "host/xml/text_file.h"

#include <cerrno>
#include <utility>

#include "host/common/encoding.h"
#include "host/fs/files.h"
#include "host/process/failure_text.h"
#include "host/xml/limits.h"
#include "host/xml/readable.h"
#include "host/xml/text_encoding.h"
#include "platform/xml/advxmlparser.h"

namespace AdvXMLParser {
namespace {

[[noreturn]] void fail(int errorCode, const std::string& path, int systemError) {
  throw ReadWriteException(errorCode, systemError, path + ": " + host::errorText(systemError));
}

[[noreturn]] void failAsInvalid(const std::string& what) {
  throw ReadWriteException(ReadWriteException::INVALID_ENCODING, 0,
                           what + " is not valid in its encoding");
}

const unsigned char* asBytes(const std::string& bytes) {
  return reinterpret_cast<const unsigned char*>(bytes.data());
}

std::string readBytes(const std::string& path) {
  std::string bytes;
  const int error = host::readRegularFile(path, host::c_maxDocumentBytes, bytes);
  if (error == EFBIG) fail(ReadWriteException::LIMIT_EXCEEDED, path, error);
  if (error != 0) fail(ReadWriteException::READ_FAILED, path, error);
  return bytes;
}

// Converts in place, because nearly all documents are UTF-8. Returns false if the bytes are not
// UTF-8.
bool stripToUtf8(std::string& bytes, std::size_t markLength) {
  if (!host::isUtf8(bytes.data() + markLength, bytes.size() - markLength)) return false;
  bytes.erase(0, markLength);
  return true;
}

// `utf8` may own the memory of `data`.
bool convertToUtf8(const unsigned char* data, std::size_t length, const host::FoundEncoding& found,
                   std::string& utf8) {
  std::wstring text;
  if (!host::decodeText(data + found.markLength, length - found.markLength, found.encoding, text)) {
    return false;
  }
  utf8 = host::toUtf8(text);
  return true;
}

}  // namespace

void writeDocumentBytes(const std::wstring& path, const char* bytes, std::size_t size) {
  const std::string name = host::toUtf8(path);
  const int error = host::replaceFile(name, bytes, size, host::c_modeOfNewDocument);
  if (error != 0) fail(ReadWriteException::WRITE_FAILED, name, error);
}

void ReadUtf8FromFile(const std::wstring& path, std::string& utf8, WrittenIn& writtenIn) {
  const std::string name = host::toUtf8(path);
  std::string bytes = readBytes(name);
  const host::FoundEncoding found =
      host::findEncoding(asBytes(bytes), bytes.size(), writtenIn.encoding);
  const bool valid = found.encoding == UTF_8
                         ? stripToUtf8(bytes, found.markLength)
                         : convertToUtf8(asBytes(bytes), bytes.size(), found, bytes);
  if (!valid) failAsInvalid(name);
  utf8 = std::move(bytes);
  writtenIn = found.writtenIn();
}

void ReadBufferFromFile(const std::wstring& path, std::wstring& text, UTF_ENCODINGS& encoding,
                        TextCallback callback) {
  const std::string name = host::toUtf8(path);
  std::string bytes = readBytes(name);
  if (callback) bytes = callback(bytes);
  if (!ConvertBufferToUnicode(asBytes(bytes), bytes.size(), text, encoding)) failAsInvalid(name);
}

bool WriteBufferToFile(const std::wstring& path, const std::wstring& text, UTF_ENCODINGS encoding,
                       TextCallback before, TextCallback after) {
  std::string bytes;
  if (before) {
    const std::string changed = before(host::toUtf8(text));
    std::wstring changedText;
    if (!host::appendWide(changed.data(), changed.size(), changedText)) failAsInvalid("text");
    bytes = host::encodeText(changedText, encoding);
  } else {
    bytes = host::encodeText(text, encoding);
  }
  if (after) bytes = after(bytes);
  writeDocumentBytes(path, bytes.data(), bytes.size());
  return true;
}

bool ConvertBufferToUnicode(const unsigned char* data, std::size_t length, std::wstring& text,
                            UTF_ENCODINGS& encoding) {
  host::requireDocumentSize(length);
  const host::FoundEncoding found = host::findEncoding(data, length, encoding);
  std::wstring converted;
  if (!host::decodeText(data + found.markLength, length - found.markLength, found.encoding,
                        converted)) {
    return false;
  }
  text = std::move(converted);
  encoding = found.encoding;
  return true;
}

bool ConvertBufferToUtf8(const unsigned char* data, std::size_t length, std::string& utf8,
                         WrittenIn& writtenIn) {
  host::requireDocumentSize(length);
  const host::FoundEncoding found = host::findEncoding(data, length, writtenIn.encoding);
  if (!convertToUtf8(data, length, found, utf8)) return false;
  writtenIn = found.writtenIn();
  return true;
}

}  // namespace AdvXMLParser
