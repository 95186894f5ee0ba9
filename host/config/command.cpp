#include "host/config/command.h"

#include <fcntl.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>

#include "host/common/failure_text.h"

extern char** environ;

namespace host {
namespace {

// What the new process starts with. Each step returns 0 or an errno.
class SpawnSettings {
 public:
  SpawnSettings() {
    m_error = ::posix_spawn_file_actions_init(&actions);
    if (m_error) return;
    m_error = ::posix_spawnattr_init(&attributes);
    if (m_error) ::posix_spawn_file_actions_destroy(&actions);
  }
  SpawnSettings(const SpawnSettings&) = delete;
  SpawnSettings& operator=(const SpawnSettings&) = delete;
  ~SpawnSettings() {
    if (m_error) return;
    ::posix_spawn_file_actions_destroy(&actions);
    ::posix_spawnattr_destroy(&attributes);
  }

  int prepare() {
    if (m_error) return m_error;
    int error = redirect();
    if (error == 0) error = inheritNothingElse();
    if (error == 0) error = resetSignals();
    return error;
  }

  posix_spawn_file_actions_t actions;
  posix_spawnattr_t attributes;

 private:
  int redirect() {
    int error = ::posix_spawn_file_actions_addopen(&actions, 0, "/dev/null", O_RDONLY, 0);
    if (error == 0 && ::fcntl(2, F_GETFD) < 0) {
      error = ::posix_spawn_file_actions_addopen(&actions, 2, "/dev/null", O_WRONLY, 0);
    }
    if (error == 0) error = ::posix_spawn_file_actions_adddup2(&actions, 2, 1);
    return error;
  }

  int inheritNothingElse() {
#ifdef __APPLE__
    m_flags |= POSIX_SPAWN_CLOEXEC_DEFAULT;
    return ::posix_spawn_file_actions_addinherit_np(&actions, 2);
#else
    return ::posix_spawn_file_actions_addclosefrom_np(&actions, 3);
#endif
  }

  int resetSignals() {
    sigset_t signals;
    ::sigemptyset(&signals);
    int error = ::posix_spawnattr_setsigmask(&attributes, &signals);
    ::sigfillset(&signals);
    ::sigdelset(&signals, SIGKILL);
    ::sigdelset(&signals, SIGSTOP);
    if (error == 0) error = ::posix_spawnattr_setsigdefault(&attributes, &signals);
    m_flags |= POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF;
    if (error == 0) error = ::posix_spawnattr_setflags(&attributes, static_cast<short>(m_flags));
    return error;
  }

  int m_error;
  int m_flags = 0;
};

std::string waitForEnd(pid_t pid) {
  int status = 0;
  while (::waitpid(pid, &status, 0) < 0) {
    if (errno != EINTR) return "it cannot be waited for: " + errorText(errno);
  }
  if (WIFSIGNALED(status)) return "it was ended by signal " + std::to_string(WTERMSIG(status));
  if (WEXITSTATUS(status) == 0) return std::string();
  return "it ended with status " + std::to_string(WEXITSTATUS(status));
}

}  // namespace

std::string runCommand(const std::vector<std::string>& words) {
  std::vector<std::string> copies = words;
  std::vector<char*> argv;
  for (std::string& word : copies) argv.push_back(word.data());
  argv.push_back(nullptr);

  SpawnSettings settings;
  int error = settings.prepare();
  pid_t pid = -1;
  if (error == 0) {
    error =
        ::posix_spawn(&pid, argv[0], &settings.actions, &settings.attributes, argv.data(), environ);
  }
  return error ? "it cannot be started: " + errorText(error) : waitForEnd(pid);
}

}  // namespace host
