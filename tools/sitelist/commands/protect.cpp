#include <openssl/crypto.h>
#include <termios.h>
#include <unistd.h>

#include <array>
#include <cstring>
#include <iostream>

#include "platform/xml/advxmlparser.h"
#include "sitehlp/sites_helper.h"
#include "tools/sitelist/agent_access.h"
#include "tools/sitelist/command.h"
#include "tools/sitelist/failure.h"
#include "tools/sitelist/text.h"

namespace tool {
namespace {

constexpr std::size_t c_maxCharacters = sitehlp::c_textCapacity - 1;

// Keeps what is typed off the terminal, if standard input is one.
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

// The first line of standard input, in memory that is wiped. Read without a stream, which would
// keep a copy in its buffer.
class Password {
 public:
  Password() {
    const NoEcho noEcho;
    while (m_size < m_bytes.size() && ::read(STDIN_FILENO, &m_bytes[m_size], 1) == 1 &&
           m_bytes[m_size] != '\n') {
      ++m_size;
    }
  }
  ~Password() {
    OPENSSL_cleanse(m_bytes.data(), m_bytes.size());
    OPENSSL_cleanse(m_text.data(), m_text.capacity() * sizeof(wchar_t));
  }
  Password(const Password&) = delete;
  Password& operator=(const Password&) = delete;

  // A file of text may begin with a byte order mark, which is not part of the password.
  const std::wstring& text() {
    const auto* const bytes = reinterpret_cast<const unsigned char*>(m_bytes.data());
    AdvXMLParser::UTF_ENCODINGS encoding = AdvXMLParser::UTF_8;
    if (m_size == m_bytes.size() || std::memchr(bytes, 0, m_size) ||
        !AdvXMLParser::ConvertBufferToUnicode(bytes, m_size, m_text, encoding) ||
        encoding != AdvXMLParser::UTF_8) {
      throw Failure(exitUsage,
                    "standard input: no password in UTF-8\n  next: give one line of UTF-8 text");
    }
    return m_text;
  }

 private:
  std::array<char, 4 * c_maxCharacters + 4> m_bytes = {};
  std::size_t m_size = 0;
  std::wstring m_text;
};

int protect(Context& context) {
  serveAgent(context);
  Password password;
  const std::wstring& clear = password.text();
  if (clear.size() > c_maxCharacters) {
    throw Failure(exitUsage, "standard input: the password is longer than " +
                                 std::to_string(c_maxCharacters) +
                                 " characters\n  next: choose one that a site list can carry");
  }
  std::wstring protectedText;
  if (sitehlp::CSitesHelper(true).EncryptPassword(clear, protectedText) == 0) {
    throw Failure(exitCrypto, shown(context.agentDirectory) +
                                  "/keystore: the password cannot be protected\n  next: check that "
                                  "you may read the agent's password key");
  }
  Report report;
  report.facts = {{"protected", narrow(protectedText)}};
  report.table = [protectedText](std::ostream& out, const Screen&) {
    out << narrow(protectedText) << '\n';
  };
  context.report = std::move(report);
  return exitSuccess;
}

}  // namespace

void addProtect(Command& app, Context& context) {
  Command command = app.add_subcommand("protect", "Print the protected form of a password");
  command.footer(
      "The clear password is the first line of standard input, never part of the\n"
      "command line. Only the same agent can read the protected form, which goes into a\n"
      "\"Password\" element as it is, without white space around it.\n"
      "\n"
      "Examples:\n"
      "  sitelist protect\n"
      "  sitelist protect < password.txt\n");
  command.callback([&context] { context.action = [&context] { return protect(context); }; });
}

}  // namespace tool
