#include "tests/support/child_process.h"

#include <fcntl.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <map>
#include <stdexcept>

namespace test {
namespace {

std::map<std::string, ChildFunction>& registry() {
  static std::map<std::string, ChildFunction> functions;
  return functions;
}

std::string g_program;

}  // namespace

void Channel::send(const std::string& line) {
  const std::string text = line + "\n";
  std::size_t done = 0;
  while (done < text.size()) {
    const ssize_t n = ::write(m_writeFd, text.data() + done, text.size() - done);
    if (n < 0 && errno == EINTR) continue;
    if (n < 0) return;  // the other process has ended; the next receive shows this
    done += static_cast<std::size_t>(n);
  }
}

std::string Channel::receive() {
  for (;;) {
    const std::size_t end = m_pending.find('\n');
    if (end != std::string::npos) {
      const std::string line = m_pending.substr(0, end);
      m_pending.erase(0, end + 1);
      return line;
    }
    char buffer[4096];
    const ssize_t n = ::read(m_readFd, buffer, sizeof buffer);
    if (n < 0 && errno == EINTR) continue;
    if (n <= 0) return std::string();
    m_pending.append(buffer, static_cast<std::size_t>(n));
  }
}

ChildProcess::Started ChildProcess::start(const std::string& name,
                                          const std::vector<std::string>& args) {
  int toChild[2];
  int toParent[2];
  if (::pipe(toChild) != 0 || ::pipe(toParent) != 0) throw std::runtime_error("pipe");
  std::vector<std::string> words = {g_program, "--child", name};
  words.insert(words.end(), args.begin(), args.end());
  std::vector<char*> argv;
  for (std::string& word : words) argv.push_back(word.data());
  argv.push_back(nullptr);

  const pid_t pid = ::fork();
  if (pid < 0) throw std::runtime_error("fork");
  if (pid == 0) {
    // The child gets its channel as descriptors 3 and 4.
    const int in = ::fcntl(toChild[0], F_DUPFD, 10);
    const int out = ::fcntl(toParent[1], F_DUPFD, 10);
    ::dup2(in, 3);
    ::dup2(out, 4);
    for (int fd = 5; fd < 256; ++fd) ::close(fd);
    ::execv(g_program.c_str(), argv.data());
    ::_exit(127);
  }
  ::close(toChild[0]);
  ::close(toParent[1]);
  ::fcntl(toChild[1], F_SETFD, FD_CLOEXEC);
  ::fcntl(toParent[0], F_SETFD, FD_CLOEXEC);
  return {pid, toParent[0], toChild[1]};
}

ChildProcess::ChildProcess(const std::string& name, const std::vector<std::string>& args)
    : ChildProcess(start(name, args)) {}

ChildProcess::ChildProcess(Started started)
    : m_pid(started.pid),
      m_readFd(started.readFd),
      m_writeFd(started.writeFd),
      m_channel(started.readFd, started.writeFd) {}

ChildProcess::~ChildProcess() {
  if (m_pid > 0) {
    ::kill(m_pid, SIGKILL);
    wait();
  }
  ::close(m_readFd);
  ::close(m_writeFd);
}

int ChildProcess::wait() {
  int status = 0;
  while (::waitpid(m_pid, &status, 0) < 0) {
    if (errno != EINTR) return -1;
  }
  m_pid = -1;
  return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

void ChildProcess::kill(int signal) { ::kill(m_pid, signal); }

ChildRegistration::ChildRegistration(const char* name, ChildFunction function) {
  registry()[name] = function;
}

void runChildIfAsked(int argc, char** argv) {
  char program[4096];
  const ssize_t length = ::readlink("/proc/self/exe", program, sizeof program);
  g_program = length > 0 ? std::string(program, static_cast<std::size_t>(length)) : argv[0];
  ::signal(SIGPIPE, SIG_IGN);
  if (argc < 3 || std::strcmp(argv[1], "--child") != 0) return;
  const auto found = registry().find(argv[2]);
  if (found == registry().end()) {
    std::fprintf(stderr, "no child function %s\n", argv[2]);
    std::exit(126);
  }
  Channel channel(3, 4);
  std::exit(found->second(std::vector<std::string>(argv + 3, argv + argc), channel));
}

}  // namespace test
