#include "tools/sitelist/agent/no_echo.h"

#include <signal.h>
#include <termios.h>
#include <unistd.h>

#include <cerrno>
#include <iterator>

namespace tool {
namespace {

constexpr char c_prompt[] = "Password: ";
constexpr int c_signals[] = {SIGHUP, SIGINT, SIGQUIT, SIGPIPE, SIGTERM, SIGTSTP, SIGCONT};

// Signal handlers use these.
termios g_usual = {};
termios g_quiet = {};
struct sigaction g_before[std::size(c_signals)] = {};

void print(const char* text, std::size_t size) {
  // A terminal that cannot be written to gets no prompt.
  [[maybe_unused]] const ssize_t written = ::write(STDERR_FILENO, text, size);
}

void ask() {
  ::tcsetattr(STDIN_FILENO, TCSAFLUSH, &g_quiet);
  print(c_prompt, sizeof c_prompt - 1);
}

void catchSignal(int signal, void (*handler)(int)) {
  struct sigaction action = {};
  action.sa_handler = handler;
  ::sigaction(signal, &action, nullptr);
}

// All that these functions call is safe in a signal handler. What was typed so far must not be left
// for the shell, so it is discarded.
void restoreAndEnd(int signal) {
  const int error = errno;
  ::tcsetattr(STDIN_FILENO, TCSAFLUSH, &g_usual);
  print("\n", 1);
  catchSignal(signal, SIG_DFL);
  ::raise(signal);  // takes effect when the handler returns
  errno = error;
}

void askAgain(int /*signal*/) {
  const int error = errno;
  catchSignal(SIGTSTP, restoreAndEnd);
  ask();
  errno = error;
}

}  // namespace

// A signal that is ignored stays ignored.
NoEcho::NoEcho() {
  if (::tcgetattr(STDIN_FILENO, &g_usual) != 0) return;
  m_isTerminal = true;
  g_quiet = g_usual;
  g_quiet.c_lflag &= ~static_cast<tcflag_t>(ECHO);
  for (std::size_t i = 0; i < std::size(c_signals); ++i) {
    ::sigaction(c_signals[i], nullptr, &g_before[i]);
    if (g_before[i].sa_handler == SIG_IGN) continue;
    catchSignal(c_signals[i], c_signals[i] == SIGCONT ? askAgain : restoreAndEnd);
  }
  ask();
}

NoEcho::~NoEcho() {
  if (!m_isTerminal) return;
  for (std::size_t i = 0; i < std::size(c_signals); ++i) {
    ::sigaction(c_signals[i], &g_before[i], nullptr);
  }
  ::tcsetattr(STDIN_FILENO, TCSAFLUSH, &g_usual);
  print("\n", 1);
}

}  // namespace tool
