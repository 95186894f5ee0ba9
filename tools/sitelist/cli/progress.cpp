#include "tools/sitelist/cli/progress.h"

#include <signal.h>
#include <unistd.h>

#include <cerrno>
#include <iterator>
#include <utility>

#include "tools/sitelist/cli/text.h"

namespace tool {
namespace {

constexpr char c_eraseLine[] = "\r\033[K";
constexpr std::chrono::milliseconds c_pause{100};
constexpr int c_endSignals[] = {SIGHUP, SIGINT, SIGQUIT, SIGTERM};

struct sigaction g_beforeProgress[std::size(c_endSignals)] = {};

void printOnTerminal(const char* text, std::size_t size) {
  // The line does not matter if the terminal cannot be written to.
  [[maybe_unused]] const ssize_t written = ::write(STDERR_FILENO, text, size);
}

void eraseLine() { printOnTerminal(c_eraseLine, sizeof c_eraseLine - 1); }

// All that it calls is safe in a signal handler.
void eraseLineAndEnd(int signal) {
  const int error = errno;
  eraseLine();
  struct sigaction usual = {};
  usual.sa_handler = SIG_DFL;
  ::sigaction(signal, &usual, nullptr);
  ::raise(signal);  // takes effect when the handler returns
  errno = error;
}

}  // namespace

// A signal that is ignored stays ignored.
Progress::Progress(bool isWanted, std::size_t total, std::string noun)
    : m_isShown(isWanted && ::isatty(STDERR_FILENO) == 1), m_total(total), m_noun(std::move(noun)) {
  if (!m_isShown) return;
  for (std::size_t i = 0; i < std::size(c_endSignals); ++i) {
    ::sigaction(c_endSignals[i], nullptr, &g_beforeProgress[i]);
    if (g_beforeProgress[i].sa_handler == SIG_IGN) continue;
    struct sigaction action = {};
    action.sa_handler = eraseLineAndEnd;
    ::sigaction(c_endSignals[i], &action, nullptr);
  }
  show(0);
}

Progress::~Progress() {
  if (!m_isShown) return;
  eraseLine();
  for (std::size_t i = 0; i < std::size(c_endSignals); ++i) {
    ::sigaction(c_endSignals[i], &g_beforeProgress[i], nullptr);
  }
}

void Progress::show(std::size_t done) {
  if (!m_isShown || (done != m_total && Clock::now() < m_next)) return;
  m_next = Clock::now() + c_pause;
  const std::string text =
      c_eraseLine + withCommas(done) + " of " + withCommas(m_total) + " " + m_noun;
  printOnTerminal(text.data(), text.size());
}

}  // namespace tool
