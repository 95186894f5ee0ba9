#ifndef TESTS_HOST_PROCESS_IN_CHILD_H
#define TESTS_HOST_PROCESS_IN_CHILD_H

#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>

namespace test {

// The exit status of a forked child that does the work: 0 when it was done. 128 + the number of a
// signal when that ended it, that of the alarm when the work was not done in time.
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
