#include "tests/resilience/forked.h"

#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <stdexcept>

namespace test {

Forked::Forked(const std::function<int()>& body) : m_pid(::fork()) {
  if (m_pid < 0) throw std::runtime_error("fork");
  if (m_pid != 0) return;
  int status = 125;
  try {
    status = body();
  } catch (...) {
    // The exit status reports the exception.
  }
  ::_exit(status);
}

Forked::~Forked() {
  if (m_pid <= 0) return;
  kill();
  wait();
}

void Forked::kill() { ::kill(m_pid, SIGKILL); }

int Forked::wait() {
  int status = 0;
  while (::waitpid(m_pid, &status, 0) < 0) {
    if (errno != EINTR) return -1;
  }
  m_pid = -1;
  return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

}  // namespace test
