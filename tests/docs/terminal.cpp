#include "tests/docs/terminal.h"

#include <poll.h>
#include <signal.h>
#include <stdlib.h>
#include <sys/wait.h>
#include <unistd.h>

#include <stdexcept>
#ifdef __APPLE__
#include <util.h>
#else
#include <pty.h>
#endif

namespace test {
namespace {

constexpr int c_patienceMilliseconds = 20000;

}  // namespace

Terminal::Terminal(const std::vector<std::string>& commandLine, const std::string& directory) {
  std::vector<std::string> words = commandLine;
  std::vector<char*> pointers;
  for (std::string& word : words) pointers.push_back(word.data());
  pointers.push_back(nullptr);
  winsize size{};
  size.ws_row = 500;
  size.ws_col = 500;
  m_pid = ::forkpty(&m_terminal, nullptr, nullptr, &size);
  if (m_pid < 0) throw std::runtime_error("forkpty");
  if (m_pid > 0) return;
  ::setenv("TERM", "dumb", 1);
  ::setenv("HOME", directory.c_str(), 1);
  ::setenv("LC_ALL", "C.UTF-8", 1);
  if (::chdir(directory.c_str()) == 0) ::execvp(pointers[0], pointers.data());
  ::_exit(127);
}

Terminal::~Terminal() {
  ::kill(m_pid, SIGKILL);
  ::waitpid(m_pid, nullptr, 0);
  ::close(m_terminal);
}

void Terminal::type(const std::string& keys) {
  for (std::size_t done = 0; done < keys.size();) {
    const ssize_t n = ::write(m_terminal, keys.data() + done, keys.size() - done);
    if (n < 0) throw std::runtime_error("the terminal cannot be written to");
    done += static_cast<std::size_t>(n);
  }
}

std::string Terminal::readUntil(const std::string& text) {
  std::size_t at;
  while ((at = m_printed.find(text)) == std::string::npos) {
    pollfd waiting{m_terminal, POLLIN, 0};
    char buffer[4096];
    ssize_t n = -1;
    if (::poll(&waiting, 1, c_patienceMilliseconds) > 0) {
      n = ::read(m_terminal, buffer, sizeof buffer);
    }
    if (n <= 0) throw std::runtime_error("\"" + text + "\" is not printed after\n" + m_printed);
    m_printed.append(buffer, static_cast<std::size_t>(n));
  }
  const std::string before = m_printed.substr(0, at);
  m_printed.erase(0, at + text.size());
  return before;
}

}  // namespace test
