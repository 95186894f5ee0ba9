#include "tests/cli/cli_fixture.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>

#include <filesystem>
#include <stdexcept>

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

std::vector<std::string> environmentWith(const std::string& temporaryDirectory) {
  std::vector<std::string> environment;
  for (char** entry = environ; *entry; ++entry) {
    if (std::string(*entry).rfind("TMPDIR=", 0) != 0) environment.emplace_back(*entry);
  }
  environment.push_back("TMPDIR=" + temporaryDirectory);
  return environment;
}

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

// Files in place of pipes: nothing can block, however much the tool writes.
Output CliTest::run(const std::string& program, const std::vector<std::string>& arguments,
                    const std::string& input) {
  const std::string in = write("stdin", input);
  const std::string out = write("stdout", "");
  const std::string err = write("stderr", "");
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_addopen(&actions, 0, in.c_str(), O_RDONLY, 0);
  posix_spawn_file_actions_addopen(&actions, 1, out.c_str(), O_WRONLY, 0);
  posix_spawn_file_actions_addopen(&actions, 2, err.c_str(), O_WRONLY, 0);
  std::vector<std::string> commandLine = {program};
  commandLine.insert(commandLine.end(), arguments.begin(), arguments.end());
  std::vector<std::string> environment = environmentWith(file("tmp"));
  pid_t pid = 0;
  const int error = ::posix_spawn(&pid, program.c_str(), &actions, nullptr,
                                  pointersTo(commandLine).data(), pointersTo(environment).data());
  posix_spawn_file_actions_destroy(&actions);
  if (error != 0) throw std::runtime_error("posix_spawn " + program);
  Output output;
  output.status = waitFor(pid);
  output.out = readFile(out);
  output.err = readFile(err);
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
