#ifndef TESTS_HOST_PROCESS_IN_CHILD_H
#define TESTS_HOST_PROCESS_IN_CHILD_H

#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>

namespace test {

// Runs the work in a forked child and returns its exit status: 0 if the work was done. Returns 128
// + the number of the signal that ended it. That is SIGALRM if the work was not done in time.
template <typename Work>
int inChild(Work work) {
  const pid_t child = ::fork();
  if (child == 0) {
    ::alarm(60);
    ::_exit(work() ? 0 : 1);
  }
  int status = 0;
  while (::waitpid(child, &status, 0) < 0 && errno == EINTR) {
  }
  return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

}  // namespace test

#endif
