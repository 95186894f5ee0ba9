#include <fcntl.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <stdexcept>

#include "tests/cli/cli_fixture.h"
#include "tests/cli/pseudo_terminal.h"

extern char** environ;

// A password is typed at a terminal.
namespace test {
namespace {

using testing::HasSubstr;
using testing::Not;

constexpr const char* c_prompt = "Password: ";

class CliPrompt : public CliTest {
 protected:
  CliPrompt() { initAgent(); }
  // A failed test may leave a waiting program.
  ~CliPrompt() override {
    if (m_pid == 0) return;
    ::kill(m_pid, SIGKILL);
    ::waitpid(m_pid, nullptr, 0);
  }

  // Starts the program in its own process group, so that a signal can stop it.
  void startProtect(const PseudoTerminal& terminal) {
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, terminal.programEnd(), STDIN_FILENO);
    posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, file("out").c_str(),
                                     O_WRONLY | O_CREAT, 0600);
    posix_spawn_file_actions_adddup2(&actions, terminal.programEnd(), STDERR_FILENO);
    posix_spawnattr_t attributes;
    posix_spawnattr_init(&attributes);
    sigset_t defaults;
    sigemptyset(&defaults);
    for (const int signal : {SIGHUP, SIGINT, SIGTERM, SIGTSTP}) sigaddset(&defaults, signal);
    posix_spawnattr_setsigdefault(&attributes, &defaults);
    posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETPGROUP | POSIX_SPAWN_SETSIGDEF);
    std::string words[] = {SITELIST_TOOL, "--agent-dir", file("agent"), "protect"};
    char* const arguments[] = {words[0].data(), words[1].data(), words[2].data(), words[3].data(),
                               nullptr};
    const int error =
        ::posix_spawn(&m_pid, arguments[0], &actions, &attributes, arguments, environ);
    posix_spawnattr_destroy(&attributes);
    posix_spawn_file_actions_destroy(&actions);
    if (error != 0) throw std::runtime_error("posix_spawn");
  }

  int waitForTool(int options = 0) {
    int status = 0;
    EXPECT_EQ(::waitpid(m_pid, &status, options), m_pid);
    if (!WIFSTOPPED(status)) m_pid = 0;
    return status;
  }

  pid_t m_pid = 0;
};

TEST_F(CliPrompt, HidesWhatIsTyped) {
  PseudoTerminal terminal(80);
  ASSERT_TRUE(terminal.echoes());
  startProtect(terminal);
  EXPECT_THAT(terminal.readUntil(c_prompt), HasSubstr(c_prompt));
  EXPECT_FALSE(terminal.echoes());
  terminal.type("fair\n");
  EXPECT_THAT(terminal.readAll(), Not(HasSubstr("fair")));
  const int status = waitForTool();
  EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0);
  EXPECT_TRUE(terminal.echoes());
}

TEST_F(CliPrompt, ShowsAgainWhatIsTypedAfterASignal) {
  for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
    PseudoTerminal terminal(80);
    startProtect(terminal);
    terminal.readUntil(c_prompt);
    EXPECT_FALSE(terminal.echoes());
    ::kill(m_pid, signal);
    const int status = waitForTool();
    EXPECT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == signal) << signal;
    EXPECT_TRUE(terminal.echoes()) << signal;
  }
}

TEST_F(CliPrompt, AsksAgainAfterAStop) {
  PseudoTerminal terminal(80);
  startProtect(terminal);
  terminal.readUntil(c_prompt);
  for (int round = 0; round < 2; ++round) {
    ::kill(m_pid, SIGTSTP);
    ASSERT_TRUE(WIFSTOPPED(waitForTool(WUNTRACED)));
    ASSERT_TRUE(terminal.echoes());
    ::kill(m_pid, SIGCONT);
    terminal.readUntil(c_prompt);
    EXPECT_FALSE(terminal.echoes());
  }
  terminal.type("fair\n");
  EXPECT_THAT(terminal.readAll(), Not(HasSubstr("fair")));
  const int status = waitForTool();
  EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0);
  EXPECT_NE(readFile(file("out")), "");
}

}  // namespace
}  // namespace test
