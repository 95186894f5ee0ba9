#include "host/process/command.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <sys/ioctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdint>

#include "host/process/descriptors.h"
#include "host/process/failure_text.h"
#include "host/process/supervisor.h"

namespace host {
namespace {

constexpr int c_aboveFixed = 4;  // descriptors below this are for the supervisor

// Makes a pipe. If the system supports it, a program that another thread starts does not inherit
// the descriptors.
int openEnds(int (&ends)[2]) {
#ifdef __linux__
  return ::pipe2(ends, O_CLOEXEC);
#else
  return ::pipe(ends);
#endif
}

// A pipe whose descriptors no other program inherits.
class Pipe {
 public:
  Pipe() = default;
  Pipe(const Pipe&) = delete;
  Pipe& operator=(const Pipe&) = delete;
  ~Pipe() {
    closeEnd(m_read);
    closeEnd(m_write);
  }

  // Returns 0 or an errno.
  int open() {
    int ends[2] = {-1, -1};
    if (openEnds(ends) != 0) return errno;
    m_read = ::fcntl(ends[0], F_DUPFD_CLOEXEC, c_aboveFixed);
    m_write = m_read < 0 ? -1 : ::fcntl(ends[1], F_DUPFD_CLOEXEC, c_aboveFixed);
    const int error = m_write < 0 ? errno : 0;
    ::close(ends[0]);
    ::close(ends[1]);
    return error;
  }

  int readEnd() const { return m_read; }
  int writeEnd() const { return m_write; }
  void closeWriteEnd() { closeEnd(m_write); }

 private:
  static void closeEnd(int& fd) {
    if (fd >= 0) ::close(fd);
    fd = -1;
  }

  int m_read = -1;
  int m_write = -1;
};

// Forks with all signals blocked, so that no signal handler of this process runs in the child.
pid_t startSupervisor(const SupervisorPlan& plan, int& error) {
  sigset_t all;
  sigset_t before;
  sigfillset(&all);  // may be a macro
  ::pthread_sigmask(SIG_SETMASK, &all, &before);
  const pid_t pid = ::fork();
  if (pid == 0) supervise(plan);
  error = errno;
  ::pthread_sigmask(SIG_SETMASK, &before, nullptr);
  return pid;
}

// Its destructor waits for a child process, so that no zombie remains. Other code of this process
// may already have waited for the child.
class WaitAtExit {
 public:
  explicit WaitAtExit(pid_t pid) : m_pid(pid) {}
  ~WaitAtExit() {
    while (::waitpid(m_pid, nullptr, 0) < 0 && errno == EINTR) {
    }
  }
  WaitAtExit(const WaitAtExit&) = delete;
  WaitAtExit& operator=(const WaitAtExit&) = delete;

 private:
  pid_t m_pid;
};

// Returns the number of bytes that were read, or 0 at the end and on failure.
std::size_t readSome(int fd, void* data, std::size_t size) {
  ssize_t count = 0;
  while ((count = ::read(fd, data, size)) < 0 && errno == EINTR) {
  }
  return count > 0 ? static_cast<std::size_t>(count) : 0;
}

// Passes on at most `limit` bytes from the pipe. Returns the number of bytes, or 0 at the end.
std::size_t passOn(int fd, std::size_t limit, OutputLines& output) {
  char buffer[4096];
  const std::size_t count = readSome(fd, buffer, std::min(limit, sizeof buffer));
  output.add(buffer, count);
  return count;
}

// Passes on the output until there is a report.
void passOnUntilReport(int reports, int printed, OutputLines& output) {
  for (pollfd ends[] = {{printed, POLLIN, 0}, {reports, POLLIN, 0}};;) {
    if (::poll(ends, 2, -1) < 0) {
      if (errno == EINTR) continue;
      return;
    }
    if (ends[0].revents != 0 && passOn(printed, SIZE_MAX, output) == 0) ends[0].fd = -1;
    if (ends[1].revents != 0) break;
  }
  // All output of the program is now in the pipe. This does not read to the end of the pipe,
  // because a process that the program left running may still write.
  int left = 0;
  ::ioctl(printed, FIONREAD, &left);
  for (std::size_t count = 1; left > 0 && count > 0; left -= static_cast<int>(count)) {
    count = passOn(printed, static_cast<std::size_t>(left), output);
  }
}

std::string describe(const SupervisorReport& report, unsigned int timeoutSeconds) {
  if (report.kind == SupervisorReport::NotStarted) {
    return "it cannot be started: " + errorText(report.value);
  }
  if (report.kind == SupervisorReport::TimedOut) {
    return "it exceeded the limit of " + std::to_string(timeoutSeconds) + " s and was ended";
  }
  if (report.kind == SupervisorReport::NotEnded) {
    return "it exceeded the limit of " + std::to_string(timeoutSeconds) +
           " s and could not be ended";
  }
  if (WIFSIGNALED(report.value)) {
    return "it was ended by signal " + std::to_string(WTERMSIG(report.value));
  }
  const int status = WEXITSTATUS(report.value);
  return status == 0 ? std::string() : "it ended with status " + std::to_string(status);
}

}  // namespace

std::string runCommand(const std::vector<std::string>& words, unsigned int timeoutSeconds,
                       OutputLines& output) {
  std::vector<std::string> copies = words;
  std::vector<char*> argv;
  for (std::string& word : copies) argv.push_back(word.data());
  argv.push_back(nullptr);

  Pipe printed;
  Pipe reports;
  int error = printed.open();
  if (error == 0) error = reports.open();
  if (error) return "it cannot be started: " + errorText(error);
  const SupervisorPlan plan = {argv.data(), timeoutSeconds, printed.writeEnd(), reports.writeEnd(),
                               descriptorLimit()};
  const pid_t supervisor = startSupervisor(plan, error);
  if (supervisor < 0) return "it cannot be started: " + errorText(error);
  const WaitAtExit wait(supervisor);
  printed.closeWriteEnd();
  reports.closeWriteEnd();

  passOnUntilReport(reports.readEnd(), printed.readEnd(), output);
  output.end();
  SupervisorReport report = {};
  const bool isReported = readSome(reports.readEnd(), &report, sizeof report) == sizeof report;
  return isReported ? describe(report, timeoutSeconds)
                    : "its end is not known, because the process that waited for it was ended";
}

}  // namespace host
