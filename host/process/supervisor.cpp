#include "host/process/supervisor.h"

#include <fcntl.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>

#include "host/process/descriptors.h"

namespace host {
namespace {

constexpr int c_report = 3;
constexpr int c_firstOther = 4;
constexpr unsigned int c_graceSeconds = 2;
constexpr int c_lastAlarm = 4;

std::atomic<pid_t> g_program{0};
std::atomic<int> g_alarms{0};
static_assert(std::atomic<pid_t>::is_always_lock_free);
static_assert(std::atomic<int>::is_always_lock_free);

void report(SupervisorReport::Kind kind, int value) {
  const SupervisorReport text{kind, value};
  // The write fails only if the reader has ended, so there is nobody to report the failure to.
  if (::write(c_report, &text, sizeof text) < 0) ::_exit(1);
}

// Sets up descriptors 0 to 3: no input, the output twice, and the reports. Closes all others.
bool arrangeDescriptors(const SupervisorPlan& plan) {
  if (::dup2(plan.report, c_report) < 0 || ::fcntl(c_report, F_SETFD, FD_CLOEXEC) < 0) return false;
  ::close(0);
  if (::open("/dev/null", O_RDONLY) != 0 || ::dup2(plan.output, 1) < 0 ||
      ::dup2(plan.output, 2) < 0) {
    return false;
  }
  closeDescriptors(c_firstOther, plan.descriptorLimit);
  return true;
}

void resetSignals() {
  struct sigaction byDefault = {};
  byDefault.sa_handler = SIG_DFL;
  for (int number = 1; number < NSIG; ++number) ::sigaction(number, &byDefault, nullptr);
  sigset_t none;
  sigemptyset(&none);  // may be a macro
  ::sigprocmask(SIG_SETMASK, &none, nullptr);
}

void onAlarm(int) {
  const int error = errno;
  const int number = ++g_alarms;
  if (number == c_lastAlarm) {
    // The signals had no effect: the program has the rights of another user, or the system cannot
    // end it.
    report(SupervisorReport::NotEnded, 0);
    ::_exit(0);
  }
  const int sent = number == 1 ? SIGTERM : SIGKILL;
  ::kill(-g_program, sent);
  ::kill(g_program, sent);  // it may have left its process group
  ::alarm(c_graceSeconds);
  errno = error;
}

[[noreturn]] void become(const SupervisorPlan& plan) {
  ::setpgid(0, 0);
  ::execv(plan.argv[0], plan.argv);
  report(SupervisorReport::NotStarted, errno);
  ::_exit(127);
}

void watchTime(pid_t program, unsigned int seconds) {
  g_program = program;
  struct sigaction action = {};
  action.sa_handler = onAlarm;
  ::sigaction(SIGALRM, &action, nullptr);
  ::alarm(seconds);
}

// The program remains a zombie until the alarm is off. Its number can therefore not be given to
// another process, which would then get the signal.
int waitFor(pid_t program) {
  siginfo_t ended;
  while (::waitid(P_PID, static_cast<id_t>(program), &ended, WEXITED | WNOWAIT) < 0 &&
         errno == EINTR) {
  }
  ::alarm(0);
  if (g_alarms > 0) ::kill(-program, SIGKILL);  // ends the other processes of its group
  int status = 0;
  while (::waitpid(program, &status, 0) < 0 && errno == EINTR) {
  }
  return status;
}

}  // namespace

void supervise(const SupervisorPlan& plan) {
  resetSignals();
  // Otherwise a signal from the terminal would end the supervisor before its program.
  ::setpgid(0, 0);
  if (!arrangeDescriptors(plan)) {
    const int error = errno;
    ::dup2(plan.report, c_report);
    report(SupervisorReport::NotStarted, error);
    ::_exit(1);
  }
  const pid_t program = ::fork();
  if (program == 0) become(plan);
  if (program < 0) {
    report(SupervisorReport::NotStarted, errno);
    ::_exit(1);
  }
  ::setpgid(program, program);  // also set here, because either process may run first
  watchTime(program, plan.timeoutSeconds);
  const int status = waitFor(program);
  report(g_alarms > 0 ? SupervisorReport::TimedOut : SupervisorReport::Ended, status);
  ::_exit(0);
}

}  // namespace host
