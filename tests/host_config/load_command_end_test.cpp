#include <gmock/gmock.h>
#include <signal.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

#include "platform/config/mesh_service.h"
#include "tests/support/child_process.h"
#include "tests/support/test_agent.h"

// Load commands that the signals to their process group do not end.
namespace {

using testing::ElementsAre;

constexpr uid_t c_otherUser = 65534;
const std::wstring c_printed = L"Mesh service load command: ";

std::wstring failure(const std::string& program, int limit, const std::string& end) {
  return test::wide("Mesh service load command " + program + " failed: it exceeded the limit of " +
                    std::to_string(limit) + " s and " + end +
                    "; next: run the command by hand; the log has its output");
}

// Loads with a child function as the command. Returns what it printed.
std::vector<std::wstring> load(test::TestAgent& agent, const std::string& program,
                               const char* function, int limit) {
  agent.settings.meshLoadCommand = {program, "--child", function};
  agent.settings.meshLoadTimeoutSeconds = limit;
  agent.apply();
  agent.clearLog();
  EXPECT_EQ(
      MeshServiceStartupControl::GetInstance(nullptr, nullptr)->RunMeshServiceLoadSiteListCmd(), 0);
  return agent.texts(LogLevel::Info);
}

std::string thisProgram() {
  return std::filesystem::absolute(testing::internal::GetArgvs().front()).string();
}

[[noreturn]] void stay(const std::string& line) {
  std::printf("%s\n", line.c_str());
  std::fflush(stdout);
  for (;;) ::pause();
}

// Joins the process group of its supervisor.
CHILD_PROCESS(leaveTheProcessGroup) {
  if (::setpgid(0, ::getppid()) != 0) return 1;
  stay("left");
}

// On a busy machine the limit may end before the command has started. The test then tries a longer
// limit.
TEST(LoadCommand, IsEndedAfterItLeftItsProcessGroup) {
  test::TestAgent agent;
  std::vector<std::wstring> printed;
  for (int limit = 1; limit <= 64 && printed.empty(); limit *= 2) {
    printed = load(agent, thisProgram(), "leaveTheProcessGroup", limit);
    EXPECT_THAT(agent.texts(LogLevel::Error),
                ElementsAre(failure(thisProgram(), limit, "was ended")));
  }
  EXPECT_THAT(printed, ElementsAre(c_printed + L"left"));
}

// Permanently takes the rights of the owner of its file.
CHILD_PROCESS(takeOtherRights) {
  if (::setuid(::geteuid()) != 0) return 1;
  stay(std::to_string(::getuid()) + " " + std::to_string(::getpid()));
}

// Loads as another user, with a command that takes the rights of root. Sends what the command
// printed and the error line. The parent removes the directory for its temporary files, because the
// other user cannot.
CHILD_PROCESS(loadAsAnotherUser) {
  ::setenv("TMPDIR", args[1].c_str(), 1);
  test::TestAgent agent;
  if (::setgid(c_otherUser) != 0 || ::setuid(c_otherUser) != 0) return 1;
  std::vector<std::wstring> printed;
  int limit = 1;
  for (; limit <= 64 && printed.empty(); limit *= 2) {
    printed = load(agent, args[0], "takeOtherRights", limit);
  }
  channel.send(printed.empty() ? "nothing" : test::narrow(printed[0].substr(c_printed.size())));
  const std::vector<std::wstring> errors = agent.texts(LogLevel::Error);
  const bool isTold =
      errors.size() == 1 && errors[0] == failure(args[0], limit / 2, "could not be ended");
  channel.send(isTold ? "told" : errors.empty() ? "no line" : test::narrow(errors[0]));
  return 0;
}

TEST(LoadCommand, IsGivenUpWhenItCannotBeEnded) {
  if (::geteuid() != 0) {
    std::printf("Not run as root: a command with the rights of another user is not tried.\n");
    return;
  }
  const test::TempDir directory;
  const std::string program = directory.file("command");
  std::filesystem::copy_file(thisProgram(), program);
  ASSERT_EQ(::chmod(directory.path().c_str(), 0755), 0);
  ASSERT_EQ(::chmod(program.c_str(), 04755), 0);
  test::ChildProcess child("loadAsAnotherUser", {program, directory.path()});
  const std::string printed = child.receive();
  if (printed.rfind("0 ", 0) != 0) {
    std::printf("Not tried: the file system ignores the set-user-ID bit (%s).\n", printed.c_str());
    return;
  }
  EXPECT_EQ(child.receive(), "told");
  EXPECT_EQ(child.wait(), 0);
  // It still runs, without a parent that waits for it.
  EXPECT_EQ(::kill(std::stoi(printed.substr(2)), SIGKILL), 0);
}

}  // namespace
