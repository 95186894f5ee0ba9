#include "bench/child_process.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include "bench/check.h"

extern char** environ;

namespace bench {

double runProgram(std::vector<std::string> words, const std::string& output) {
  std::vector<char*> argv;
  for (std::string& word : words) argv.push_back(word.data());
  argv.push_back(nullptr);
  posix_spawn_file_actions_t actions;
  check(::posix_spawn_file_actions_init(&actions) == 0 &&
            ::posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, output.c_str(),
                                               O_WRONLY | O_CREAT | O_TRUNC, 0600) == 0,
        "cannot prepare to run a program");
  pid_t pid = -1;
  check(::posix_spawnp(&pid, argv[0], &actions, nullptr, argv.data(), environ) == 0,
        "cannot run a program");
  ::posix_spawn_file_actions_destroy(&actions);
  int status = 0;
  rusage usage = {};
  check(::wait4(pid, &status, 0, &usage) == pid && WIFEXITED(status) && WEXITSTATUS(status) == 0,
        "a program failed");
  return static_cast<double>(usage.ru_maxrss);
}

}  // namespace bench
