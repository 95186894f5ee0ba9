#ifndef TESTS_SUPPORT_CHILD_PROCESS_H
#define TESTS_SUPPORT_CHILD_PROCESS_H

#include <sys/types.h>

#include <string>
#include <vector>

// Child processes for tests. The test program starts itself as `program --child NAME ARG...`. The
// child runs the function that is registered with NAME and no tests.
//
//   CHILD_PROCESS(holdWriteLock) {          // (args, channel)
//     ...
//     channel.send("held");                 // tells the parent, one line
//     channel.receive();                    // waits for a line from the parent
//     return 0;                             // the exit status
//   }
//   ...
//   ChildProcess child("holdWriteLock", {dataDirectory});
//   EXPECT_EQ(child.receive(), "held");
//   child.send("go");
//   EXPECT_EQ(child.wait(), 0);
namespace test {

// One end of the two pipes between parent and child. Messages are lines.
class Channel {
 public:
  Channel(int readFd, int writeFd) : m_readFd(readFd), m_writeFd(writeFd) {}
  void send(const std::string& line);
  // Returns the next line, or an empty text if the other process has ended.
  std::string receive();

 private:
  int m_readFd;
  int m_writeFd;
  std::string m_pending;
};

class ChildProcess {
 public:
  ChildProcess(const std::string& name, const std::vector<std::string>& args);
  // Kills the child if it is running.
  ~ChildProcess();
  ChildProcess(const ChildProcess&) = delete;
  ChildProcess& operator=(const ChildProcess&) = delete;

  void send(const std::string& line) { m_channel.send(line); }
  std::string receive() { return m_channel.receive(); }
  // Waits for the child. Returns the exit status, or 128 + the number of the signal that ended it.
  int wait();
  void kill(int signal);
  pid_t pid() const { return m_pid; }

 private:
  struct Started {
    pid_t pid;
    int readFd;
    int writeFd;
  };
  static Started start(const std::string& name, const std::vector<std::string>& args);
  explicit ChildProcess(Started started);

  pid_t m_pid;
  int m_readFd;
  int m_writeFd;
  Channel m_channel;
};

using ChildFunction = int (*)(const std::vector<std::string>& args, Channel& channel);

struct ChildRegistration {
  ChildRegistration(const char* name, ChildFunction function);
};

// Runs the child function that the command line names, and exits. Returns if it names none.
void runChildIfAsked(int argc, char** argv);

}  // namespace test

#define CHILD_PROCESS(NAME)                                                      \
  static int NAME(const std::vector<std::string>& args, test::Channel& channel); \
  static const test::ChildRegistration registration_##NAME(#NAME, NAME);         \
  static int NAME([[maybe_unused]] const std::vector<std::string>& args,         \
                  [[maybe_unused]] test::Channel& channel)

#endif
