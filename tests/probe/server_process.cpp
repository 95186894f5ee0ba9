#include "tests/probe/server_process.h"

#include <arpa/inet.h>
#include <fcntl.h>
#include <netinet/in.h>
#include <sched.h>
#include <signal.h>
#include <spawn.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdint>
#include <stdexcept>

#include "tests/probe/loopback.h"
#include "tests/support/test_agent.h"

extern char** environ;

namespace test {
namespace {

bool isAccepting(int port) {
  const int socket = ::socket(AF_INET, SOCK_STREAM, 0);
  const sockaddr_in address = loopback(port);
  const bool isOpen =
      ::connect(socket, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0;
  ::close(socket);
  return isOpen;
}

}  // namespace

std::vector<int> freePorts(std::size_t count) {
  std::vector<int> sockets;
  std::vector<int> ports;
  for (std::size_t i = 0; i < count; ++i) {
    const int socket = ::socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in address = loopback(0);
    socklen_t size = sizeof address;
    if (::bind(socket, reinterpret_cast<const sockaddr*>(&address), size) != 0 ||
        ::getsockname(socket, reinterpret_cast<sockaddr*>(&address), &size) != 0) {
      throw std::runtime_error("no free port");
    }
    sockets.push_back(socket);
    ports.push_back(ntohs(address.sin_port));
  }
  for (const int socket : sockets) ::close(socket);
  return ports;
}

ServerProcess::ServerProcess(const std::vector<std::string>& commandLine, const std::string& log,
                             const std::string& input)
    : m_log(log), m_pid(-1) {
  writeFile(log, "");
  writeFile(log + ".in", input);
  std::vector<std::string> words = commandLine;
  std::vector<char*> pointers;
  for (std::string& word : words) pointers.push_back(word.data());
  pointers.push_back(nullptr);
  posix_spawn_file_actions_t actions;
  ::posix_spawn_file_actions_init(&actions);
  ::posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, (log + ".in").c_str(), O_RDONLY, 0);
  ::posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, log.c_str(), O_WRONLY, 0);
  ::posix_spawn_file_actions_adddup2(&actions, STDOUT_FILENO, STDERR_FILENO);
  const int error =
      ::posix_spawnp(&m_pid, words[0].c_str(), &actions, nullptr, pointers.data(), environ);
  ::posix_spawn_file_actions_destroy(&actions);
  if (error != 0) throw std::runtime_error("cannot start " + words[0]);
}

ServerProcess::~ServerProcess() {
  if (m_pid < 0) return;
  ::kill(m_pid, SIGKILL);  // some servers miss another signal while they start or wait
  ::waitpid(m_pid, nullptr, 0);
}

bool ServerProcess::isRunning() {
  if (m_pid >= 0 && ::waitpid(m_pid, nullptr, WNOHANG) != 0) m_pid = -1;
  return m_pid >= 0;
}

bool ServerProcess::awaitPort(int port) {
  while (isRunning()) {
    if (isAccepting(port)) return true;
    ::sched_yield();
  }
  return false;
}

std::string ServerProcess::awaitLine() {
  for (;;) {
    const bool mayWrite = isRunning();
    const std::string text = readFile(m_log);
    const std::size_t end = text.find('\n');
    if (end != std::string::npos) return text.substr(0, end);
    if (!mayWrite) throw std::runtime_error("the server has ended: " + text);
    ::sched_yield();
  }
}

void startOnFreePorts(std::size_t count,
                      const std::function<bool(const std::vector<int>&)>& start) {
  constexpr int c_attempts = 20;
  for (int i = 0; i < c_attempts; ++i) {
    if (start(freePorts(count))) return;
  }
  throw std::runtime_error("a server does not start");
}

}  // namespace test
