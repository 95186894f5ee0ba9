#include "tests/cli/pseudo_terminal.h"

#include <fcntl.h>
#include <sys/ioctl.h>
#include <termios.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <stdexcept>

namespace test {

PseudoTerminal::PseudoTerminal(int columns)
    : m_ourEnd(::posix_openpt(O_RDWR | O_NOCTTY)), m_programEnd(-1) {
  if (m_ourEnd < 0 || ::grantpt(m_ourEnd) != 0 || ::unlockpt(m_ourEnd) != 0) {
    throw std::runtime_error("no pseudo-terminal");
  }
  ::fcntl(m_ourEnd, F_SETFD, FD_CLOEXEC);
  m_programEnd = ::open(::ptsname(m_ourEnd), O_RDWR | O_NOCTTY | O_CLOEXEC);
  winsize size = {};
  size.ws_row = 24;
  size.ws_col = static_cast<unsigned short>(columns);
  termios settings = {};
  if (::ioctl(m_programEnd, TIOCSWINSZ, &size) != 0 || ::tcgetattr(m_programEnd, &settings) != 0) {
    throw std::runtime_error("no terminal");
  }
  settings.c_oflag &= ~static_cast<tcflag_t>(OPOST);
  ::tcsetattr(m_programEnd, TCSANOW, &settings);
}

PseudoTerminal::~PseudoTerminal() {
  if (m_programEnd >= 0) ::close(m_programEnd);
  if (m_ourEnd >= 0) ::close(m_ourEnd);
}

void PseudoTerminal::closeProgramEnd() {
  if (m_programEnd >= 0) ::close(m_programEnd);
  m_programEnd = -1;
}

bool PseudoTerminal::echoes() const {
  termios settings = {};
  if (::tcgetattr(m_ourEnd, &settings) != 0) throw std::runtime_error("tcgetattr");
  return (settings.c_lflag & static_cast<tcflag_t>(ECHO)) != 0;
}

void PseudoTerminal::type(const std::string& text) const {
  if (::write(m_ourEnd, text.data(), text.size()) != static_cast<ssize_t>(text.size())) {
    throw std::runtime_error("cannot write to the terminal");
  }
}

std::string PseudoTerminal::readAll() { return readUntil(""); }

std::string PseudoTerminal::readUntil(const std::string& text) {
  closeProgramEnd();
  std::string all;
  char buffer[4096];
  for (;;) {
    const ssize_t n = ::read(m_ourEnd, buffer, sizeof buffer);
    if (n > 0) all.append(buffer, static_cast<std::size_t>(n));
    // When the last writer has closed the terminal, Linux reports an error and other systems the
    // end of the file.
    if (n == 0 || (n < 0 && errno != EINTR)) return all;
    if (!text.empty() && all.find(text) != std::string::npos) return all;
  }
}

}  // namespace test
