#include "tools/sitelist/agent/password.h"

#include <fcntl.h>
#include <openssl/crypto.h>
#include <unistd.h>

#include <cstring>

#include "host/fs/descriptor.h"
#include "platform/xml/advxmlparser.h"
#include "sitehlp/sites_helper.h"
#include "tools/sitelist/agent/no_echo.h"
#include "tools/sitelist/cli/failure.h"
#include "tools/sitelist/cli/input.h"
#include "tools/sitelist/cli/log_record.h"
#include "tools/sitelist/cli/read_error.h"

namespace tool {
namespace {

constexpr const char* c_standardInput = "standard input";

[[noreturn]] void failToRead(const std::string& source, int error) {
  throw failureAt(source, exitFile, "cannot be read: " + readFailureReason(error),
                  error == EBADF ? c_openInput : "check that it is a file that you may read");
}

}  // namespace

Password::~Password() {
  OPENSSL_cleanse(m_bytes.data(), m_bytes.size());
  OPENSSL_cleanse(m_text.data(), m_text.capacity() * sizeof(wchar_t));
}

void Password::read(const std::string& file) {
  const bool isFromInput = file.empty() || isStandardInput(file);
  if (isFromInput) {
    takeStandardInput();
    const NoEcho noEcho;
    readLine(STDIN_FILENO, c_standardInput);
  } else {
    const host::Descriptor opened(host::fileSystem().open(AT_FDCWD, file, O_RDONLY | O_NOCTTY, 0));
    if (opened.error()) failToRead(file, opened.error());
    readLine(opened.get(), file);
  }
  convert(isFromInput ? c_standardInput : file);
}

// Does not use a stream, because its buffer would keep a copy of the password.
void Password::readLine(int descriptor, const std::string& source) {
  for (; m_size < m_bytes.size(); ++m_size) {
    const ssize_t n = host::fileSystem().read(descriptor, &m_bytes[m_size], 1);
    if (n < 0) failToRead(source, static_cast<int>(-n));
    if (n == 0 && m_size == 0) {
      throw failureAt(source, exitUsage, "there is no password",
                      "give one line of UTF-8 text; an empty line is an empty password");
    }
    if (n > 0 && m_bytes[m_size] != '\n') continue;
    // Files of other systems end their lines with two characters.
    if (m_size > 0 && m_bytes[m_size - 1] == '\r') --m_size;
    return;
  }
}

// A text file may begin with a byte order mark, which is not part of the password.
void Password::convert(const std::string& source) {
  const auto* const bytes = reinterpret_cast<const unsigned char*>(m_bytes.data());
  AdvXMLParser::UTF_ENCODINGS encoding = AdvXMLParser::UTF_8;
  if (m_size == m_bytes.size() || std::memchr(bytes, 0, m_size) ||
      !AdvXMLParser::ConvertBufferToUnicode(bytes, m_size, m_text, encoding) ||
      encoding != AdvXMLParser::UTF_8) {
    throw failureAt(source, exitUsage, "the password is not UTF-8 text",
                    "give one line of UTF-8 text");
  }
  if (m_text.size() > c_maxCharacters) {
    throw failureAt(
        source, exitUsage,
        "the password is longer than " + std::to_string(c_maxCharacters) + " characters",
        "choose a shorter one");
  }
}

std::wstring protect(const Context& context, const Password& password) {
  std::wstring protectedText;
  if (sitehlp::CSitesHelper(true).EncryptPassword(password.text(), protectedText) == 0) {
    const LoggedReason logged = takeReasonOfKeyFile();
    throw failureAt(
        context.agentDirectory + "/keystore", exitCrypto,
        "the password cannot be encrypted" + (logged.reason.empty() ? "" : "\n  " + logged.reason),
        logged.advice.empty() ? "check that you may read the agent's password key" : logged.advice);
  }
  return protectedText;
}

}  // namespace tool
