#include "tools/sitelist/agent/password.h"

#include <fcntl.h>
#include <openssl/crypto.h>
#include <termios.h>
#include <unistd.h>

#include <cstring>
#include <iostream>

#include "host/fs/descriptor.h"
#include "platform/xml/advxmlparser.h"
#include "sitehlp/sites_helper.h"
#include "tools/sitelist/cli/failure.h"
#include "tools/sitelist/cli/log_record.h"
#include "tools/sitelist/cli/read_error.h"

namespace tool {
namespace {

// Switches off the echo of a terminal on standard input.
class NoEcho {
 public:
  NoEcho() {
    if (::tcgetattr(STDIN_FILENO, &m_before) != 0) return;
    termios quiet = m_before;
    quiet.c_lflag &= ~static_cast<tcflag_t>(ECHO);
    m_isTerminal = ::tcsetattr(STDIN_FILENO, TCSAFLUSH, &quiet) == 0;
    if (m_isTerminal) std::cerr << "Password: ";
  }
  ~NoEcho() {
    if (!m_isTerminal) return;
    ::tcsetattr(STDIN_FILENO, TCSAFLUSH, &m_before);
    std::cerr << '\n';
  }
  NoEcho(const NoEcho&) = delete;
  NoEcho& operator=(const NoEcho&) = delete;

 private:
  termios m_before = {};
  bool m_isTerminal = false;
};

constexpr const char* c_standardInput = "standard input";

[[noreturn]] void failToRead(const std::string& source, int error) {
  throw failureAt(source, exitFile, "cannot be read: " + readFailureReason(error),
                  "check that it is a file that you may read");
}

}  // namespace

Password::~Password() {
  OPENSSL_cleanse(m_bytes.data(), m_bytes.size());
  OPENSSL_cleanse(m_text.data(), m_text.capacity() * sizeof(wchar_t));
}

void Password::read(const std::string& file) {
  if (file.empty()) {
    const NoEcho noEcho;
    readLine(STDIN_FILENO, c_standardInput);
  } else {
    const host::Descriptor opened(host::fileSystem().open(AT_FDCWD, file, O_RDONLY | O_NOCTTY, 0));
    if (opened.error()) failToRead(file, opened.error());
    readLine(opened.get(), file);
  }
  convert(file.empty() ? c_standardInput : file);
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
    if (n == 0 || m_bytes[m_size] == '\n') return;
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
