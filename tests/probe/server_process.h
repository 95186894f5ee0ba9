#ifndef TESTS_PROBE_SERVER_PROCESS_H
#define TESTS_PROBE_SERVER_PROCESS_H

#include <sys/types.h>

#include <functional>
#include <string>
#include <vector>

namespace test {

// Returns ports of the loopback address that were free a moment ago.
std::vector<int> freePorts(std::size_t count);

// A server program in a process of its own. The destructor ends it.
class ServerProcess {
 public:
  // Starts the program. `input` is its standard input. Its output goes to the file `log`.
  ServerProcess(const std::vector<std::string>& commandLine, const std::string& log,
                const std::string& input = "");
  ~ServerProcess();
  ServerProcess(const ServerProcess&) = delete;
  ServerProcess& operator=(const ServerProcess&) = delete;

  // Waits until the server accepts connections to the port. Returns false if it has ended.
  bool awaitPort(int port);
  // Waits until the log has a whole line, and returns the first one. Throws if the server has
  // ended.
  std::string awaitLine();

 private:
  bool isRunning();

  std::string m_log;
  pid_t m_pid;
};

// Calls `start` with free ports until it returns true. Another process may take a port before the
// server does.
void startOnFreePorts(std::size_t count, const std::function<bool(const std::vector<int>&)>& start);

}  // namespace test

#endif
