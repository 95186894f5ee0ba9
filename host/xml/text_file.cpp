#include "host/xml/text_file.h"

#include <cerrno>
#include <utility>

#include "host/common/encoding.h"
#include "host/common/failure_text.h"
#include "host/fs/files.h"
#include "host/xml/limits.h"
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

}  // namespace

void ReadUtf8FromFile(const std::wstring& path, std::string& utf8, UTF_ENCODINGS& encoding) {
  const std::string name = host::toUtf8(path);
  std::string bytes = readBytes(name);
  const host::FoundEncoding found = host::findEncoding(asBytes(bytes), bytes.size(), encoding);
  const std::size_t length = bytes.size() - found.markLength;
  if (found.encoding == UTF_8) {
    if (!host::isUtf8(bytes.data() + found.markLength, length)) failAsInvalid(name);
    bytes.erase(0, found.markLength);
  } else {
    std::wstring text;
    if (!host::decodeText(asBytes(bytes) + found.markLength, length, found.encoding, text)) {
      failAsInvalid(name);
    }
    bytes = host::toUtf8(text);
  }
  utf8 = std::move(bytes);
  encoding = found.encoding;
}

void ReadBufferFromFile(const std::wstring& path, std::wstring& text, UTF_ENCODINGS& encoding,
                        TextCallback callback) {
  const std::string name = host::toUtf8(path);
  std::string bytes = readBytes(name);
  if (callback) bytes = callback(bytes);
  if (!ConvertBufferToUnicode(asBytes(bytes), bytes.size(), text, encoding)) failAsInvalid(name);
}

bool WriteUtf8ToFile(const std::wstring& path, const char* utf8, std::size_t size) {
  const std::string name = host::toUtf8(path);
  const int error = host::replaceFile(name, utf8, size, host::c_modeOfNewDocument);
  if (error != 0) fail(ReadWriteException::WRITE_FAILED, name, error);
  return true;
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
  return WriteUtf8ToFile(path, bytes.data(), bytes.size());
}

bool ConvertBufferToUnicode(const unsigned char* data, std::size_t length, std::wstring& text,
                            UTF_ENCODINGS& encoding) {
  if (length > host::c_maxDocumentBytes) {
    throw ReadWriteException(ReadWriteException::LIMIT_EXCEEDED, 0,
                             "document over the limit: number of bytes");
  }
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

}  // namespace AdvXMLParser
