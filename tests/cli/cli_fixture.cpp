#include "tests/cli/cli_fixture.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>
#include <stdexcept>

#include "tests/cli/pseudo_terminal.h"

extern char** environ;

namespace fs = std::filesystem;

namespace test {
namespace {

std::vector<char*> pointersTo(std::vector<std::string>& texts) {
  std::vector<char*> pointers;
  for (std::string& text : texts) pointers.push_back(text.data());
  pointers.push_back(nullptr);
  return pointers;
}

bool isSetByUs(const std::string& entry) {
  for (const char* name : {"TMPDIR=", "NO_COLOR=", "TERM=", "COLUMNS=", "SITELIST_AGENT_DIR="}) {
    if (entry.rfind(name, 0) == 0) return true;
  }
  return false;
}

std::vector<std::string> environmentWith(const std::string& temporaryDirectory) {
  std::vector<std::string> environment;
  for (char** entry = environ; *entry; ++entry) {
    if (!isSetByUs(*entry)) environment.emplace_back(*entry);
  }
  environment.push_back("TMPDIR=" + temporaryDirectory);
  return environment;
}

// Starts the program with these standard streams.
pid_t spawn(std::vector<std::string> commandLine, std::vector<std::string> environment,
            const int (&streams)[3]) {
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  for (int i = 0; i < 3; ++i) posix_spawn_file_actions_adddup2(&actions, streams[i], i);
  pid_t pid = 0;
  const int error = ::posix_spawn(&pid, commandLine[0].c_str(), &actions, nullptr,
                                  pointersTo(commandLine).data(), pointersTo(environment).data());
  posix_spawn_file_actions_destroy(&actions);
  if (error != 0) throw std::runtime_error("posix_spawn " + commandLine[0]);
  return pid;
}

class File {
 public:
  File(const std::string& path, int flags) : m_fd(::open(path.c_str(), flags | O_CLOEXEC)) {}
  ~File() { ::close(m_fd); }
  File(const File&) = delete;
  File& operator=(const File&) = delete;
  int fd() const { return m_fd; }

 private:
  int m_fd;
};

int waitFor(pid_t pid) {
  int status = 0;
  while (::waitpid(pid, &status, 0) < 0) {
    if (errno != EINTR) throw std::runtime_error("waitpid");
  }
  return WIFSIGNALED(status) ? 128 + WTERMSIG(status) : WEXITSTATUS(status);
}

}  // namespace

CliTest::CliTest() { fs::create_directory(file("tmp")); }

CliTest::~CliTest() { EXPECT_TRUE(fs::is_empty(file("tmp"))) << "temporary files are left"; }

// Uses files instead of pipes, so that the tool never blocks while it writes.
Output CliTest::run(const std::string& program, const std::vector<std::string>& arguments,
                    const std::string& input) {
  const File in(write("stdin", input), O_RDONLY);
  const File out(write("stdout", ""), O_WRONLY);
  const File err(write("stderr", ""), O_WRONLY);
  std::vector<std::string> commandLine = {program};
  commandLine.insert(commandLine.end(), arguments.begin(), arguments.end());
  Output output;
  output.status =
      waitFor(spawn(commandLine, environmentWith(file("tmp")), {in.fd(), out.fd(), err.fd()}));
  output.out = readFile(file("stdout"));
  output.err = readFile(file("stderr"));
  return output;
}

Output CliTest::onTerminal(int columns, const std::vector<std::string>& arguments,
                           const std::vector<std::string>& settings) {
  PseudoTerminal terminal(columns);
  const File in(write("stdin", ""), O_RDONLY);
  const File err(write("stderr", ""), O_WRONLY);
  std::vector<std::string> commandLine = {SITELIST_TOOL, "--agent-dir", file("agent")};
  commandLine.insert(commandLine.end(), arguments.begin(), arguments.end());
  std::vector<std::string> environment = environmentWith(file("tmp"));
  environment.insert(environment.end(), settings.begin(), settings.end());
  const pid_t pid = spawn(commandLine, environment, {in.fd(), terminal.programEnd(), err.fd()});
  Output output;
  output.out = terminal.readAll();
  output.status = waitFor(pid);
  output.err = readFile(file("stderr"));
  return output;
}

Output CliTest::withTerminalForMessages(const std::vector<std::string>& arguments,
                                        const std::string& text,
                                        const std::function<void()>& then) {
  constexpr int columns = 80;
  PseudoTerminal terminal(columns);
  const File in(write("stdin", ""), O_RDONLY);
  const File out(write("stdout", ""), O_WRONLY);
  std::vector<std::string> commandLine = {SITELIST_TOOL, "--agent-dir", file("agent")};
  commandLine.insert(commandLine.end(), arguments.begin(), arguments.end());
  const pid_t pid =
      spawn(commandLine, environmentWith(file("tmp")), {in.fd(), out.fd(), terminal.programEnd()});
  Output output;
  output.err = terminal.readUntil(text);
  then();
  output.err += terminal.readAll();
  output.status = waitFor(pid);
  output.out = readFile(file("stdout"));
  return output;
}

Output CliTest::sitelist(const std::vector<std::string>& arguments, const std::string& input) {
  std::vector<std::string> all = {"--agent-dir", file("agent")};
  all.insert(all.end(), arguments.begin(), arguments.end());
  return run(SITELIST_TOOL, all, input);
}

Output CliTest::bare(const std::vector<std::string>& arguments) {
  return run(SITELIST_TOOL, arguments, "");
}

Output CliTest::shell(const std::string& script, const std::vector<std::string>& arguments) {
  std::vector<std::string> all = {"-c", "cd '" + file("") + "' && " + script, SITELIST_TOOL};
  all.insert(all.end(), arguments.begin(), arguments.end());
  return run("/bin/sh", all, "");
}

void CliTest::initAgent(const std::vector<std::string>& options) {
  std::vector<std::string> arguments = {"init"};
  arguments.insert(arguments.end(), options.begin(), options.end());
  arguments.insert(arguments.end(), {"--mesh-command", "/bin/sh", "-c", "exit 0"});
  const Output output = sitelist(arguments);
  if (output.status != 0) throw std::runtime_error("init: " + output.err);
}

void CliTest::setOwnList(const std::string& document) { writeFile(ownList(), document); }

std::string CliTest::protectedText(const std::string& clear) {
  const Output output = sitelist({"protect"}, clear + "\n");
  if (output.status != 0) throw std::runtime_error("protect: " + output.err);
  return output.out.substr(0, output.out.size() - 1);
}

std::string CliTest::write(const std::string& name, const std::string& text) {
  writeFile(file(name), text);
  return file(name);
}

}  // namespace test
