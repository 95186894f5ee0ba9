#include "platform/config/mesh_service.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <signal.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <filesystem>
#include <thread>

#include "tests/support/test_agent.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

const std::string c_advice = "; next: run the command by hand; the log has its output";

int load() {
  return MeshServiceStartupControl::GetInstance(nullptr, nullptr)->RunMeshServiceLoadSiteListCmd();
}

class MeshService : public testing::Test {
 protected:
  test::TestAgent agent;

  int loadWith(const std::vector<std::string>& command) {
    agent.settings.meshLoadCommand = command;
    agent.apply();
    agent.clearLog();
    return load();
  }

  int loadWithScript(const std::string& script) {
    return loadWith({"/bin/sh", "-c", script, "sh", out()});
  }

  std::string out() const { return agent.dataDirectory() + "/out"; }

  static test::LogLine line(const std::wstring& text) {
    return {LogLevel::Info, L"Host", L"Mesh service load command: " + text};
  }

  std::string onlyError() {
    EXPECT_EQ(agent.log().size(), 1U);
    const auto errors = agent.texts(LogLevel::Error);
    return errors.size() == 1 ? test::narrow(errors[0]) : "no single error";
  }
};

TEST_F(MeshService, LoadsWhenTheCommandEndsWithStatusZero) {
  EXPECT_EQ(loadWithScript("exit 0"), 1);
  EXPECT_TRUE(agent.log().empty());
}

TEST_F(MeshService, WaitsForTheCommand) {
  EXPECT_EQ(loadWithScript("echo done > \"$1\""), 1);
  EXPECT_EQ(test::readFile(out()), "done\n");
}

TEST_F(MeshService, HandsArgumentsOverAsTheyAre) {
  const std::string script = agent.dataDirectory() + "/command";
  test::writeFile(script, "#!/bin/sh\nout=$1\nshift\nprintf '[%s]' \"$@\" > \"$out\"\n", 0755);
  EXPECT_EQ(loadWith({script, out(), "two words", "", "$HOME `id` * ;", "\"'\\"}), 1);
  EXPECT_EQ(test::readFile(out()), "[two words][][$HOME `id` * ;][\"'\\]");
}

TEST_F(MeshService, FailsWithoutACommand) {
  EXPECT_EQ(loadWith({}), 0);
  EXPECT_EQ(onlyError(),
            "The mesh service did not load the list: no load command is set; next: set "
            "mesh.load_command in agent.toml");
}

TEST_F(MeshService, FailsWhenTheCommandCannotBeStarted) {
  EXPECT_EQ(loadWith({"/no/such/command"}), 0);
  EXPECT_EQ(onlyError(),
            "Mesh service load command /no/such/command failed: it cannot be started: "
            "No such file or directory" +
                c_advice);
  test::writeFile(out(), "not executable", 0644);
  EXPECT_EQ(loadWith({out()}), 0);
  EXPECT_EQ(onlyError(), "Mesh service load command " + out() +
                             " failed: it cannot be started: Permission denied" + c_advice);
}

TEST_F(MeshService, LooksForNoCommandInThePath) {
  EXPECT_EQ(loadWith({"sh", "-c", "exit 0"}), 0);
  EXPECT_EQ(agent.texts(LogLevel::Error).size(), 1U);
}

TEST_F(MeshService, FailsWhenTheCommandFails) {
  EXPECT_EQ(loadWithScript("exit 3"), 0);
  EXPECT_EQ(onlyError(),
            "Mesh service load command /bin/sh failed: it ended with status 3" + c_advice);
  EXPECT_EQ(loadWithScript("kill -TERM $$"), 0);
  EXPECT_EQ(onlyError(),
            "Mesh service load command /bin/sh failed: it was ended by signal 15" + c_advice);
}

TEST_F(MeshService, LogsNoArguments) {
  EXPECT_EQ(loadWith({"/bin/sh", "-c", "exit 1", "topsecret"}), 0);
  EXPECT_THAT(onlyError(), testing::Not(testing::HasSubstr("topsecret")));
}

// The result of the command does not depend on how the process handles its children.
TEST_F(MeshService, WorksInAProcessThatIgnoresTheEndOfChildren) {
  for (const int flags : {0, SA_NOCLDWAIT}) {
    struct sigaction action = {};
    struct sigaction before = {};
    action.sa_handler = flags ? SIG_DFL : SIG_IGN;
    action.sa_flags = flags;
    ASSERT_EQ(::sigaction(SIGCHLD, &action, &before), 0);
    for (int i = 0; i < 10; ++i) EXPECT_EQ(loadWithScript("exit 0"), 1);
    EXPECT_EQ(loadWithScript("exit 3"), 0);
    EXPECT_EQ(onlyError(),
              "Mesh service load command /bin/sh failed: it ended with status 3" + c_advice);
    ::sigaction(SIGCHLD, &before, nullptr);
  }
}

TEST_F(MeshService, WorksBesideThreadsThatReapEveryChild) {
  std::atomic<bool> done{false};
  std::vector<std::thread> reapers;
  for (int i = 0; i < 2; ++i) {
    reapers.emplace_back([&] {
      while (!done) {
        if (::waitpid(-1, nullptr, 0) < 0) std::this_thread::yield();
      }
    });
  }
  for (int i = 0; i < 30; ++i) EXPECT_EQ(loadWithScript("exit 0"), 1);
  EXPECT_EQ(loadWithScript("exit 3"), 0);
  done = true;
  for (std::thread& reaper : reapers) reaper.join();
  EXPECT_EQ(onlyError(),
            "Mesh service load command /bin/sh failed: it ended with status 3" + c_advice);
}

TEST_F(MeshService, LeavesNoChildBehind) {
  EXPECT_EQ(loadWithScript("exit 0"), 1);
  EXPECT_EQ(loadWith({"/no/such/command"}), 0);
  EXPECT_EQ(::waitpid(-1, nullptr, WNOHANG), -1);
  EXPECT_EQ(errno, ECHILD);
}

TEST_F(MeshService, FailsWhenTheEndOfTheCommandCannotBeKnown) {
  EXPECT_EQ(loadWithScript("kill -KILL $PPID"), 0);
  EXPECT_EQ(onlyError(),
            "Mesh service load command /bin/sh failed: its end is not known, because the process "
            "that waited for it was ended" +
                c_advice);
}

// SIGTERM ends the first script. Only SIGKILL ends the second. On a busy machine the limit may end
// before the command has started. The test then tries a longer limit.
TEST_F(MeshService, EndsACommandThatRunsTooLongAndAllThatItStarted) {
  ASSERT_EQ(::mkfifo(out().c_str(), 0600), 0);
  const int fifo = ::open(out().c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
  for (const char* script : {"exec 9>\"$1\"; echo begun; sleep 600 & sleep 600",
                             "trap '' TERM; exec 9>\"$1\"; echo begun; sleep 600 & sleep 600"}) {
    std::vector<std::wstring> printed;
    for (int limit = 1; limit <= 64 && printed.empty(); limit *= 2) {
      agent.settings.meshLoadTimeoutSeconds = limit;
      EXPECT_EQ(loadWithScript(script), 0);
      EXPECT_THAT(
          agent.texts(LogLevel::Error),
          ElementsAre(L"Mesh service load command /bin/sh failed: it exceeded the limit of " +
                      std::to_wstring(limit) + L" s and was ended" + test::wide(c_advice)));
      printed = agent.texts(LogLevel::Info);
    }
    ASSERT_THAT(printed, ElementsAre(L"Mesh service load command: begun"));
    pollfd end = {fifo, POLLIN, 0};
    EXPECT_EQ(::poll(&end, 1, 60000), 1);
    EXPECT_NE(end.revents & POLLHUP, 0) << "a process that it started still lives";
  }
  ::close(fifo);
}

// The process that is left running waits for a line and sends it back.
TEST_F(MeshService, DoesNotWaitForWhatTheCommandLeavesRunning) {
  const std::string answers = out() + ".answer";
  ASSERT_EQ(::mkfifo(out().c_str(), 0600), 0);
  ASSERT_EQ(::mkfifo(answers.c_str(), 0600), 0);
  const int answer = ::open(answers.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
  EXPECT_EQ(loadWithScript("exec 9>\"$1.answer\"; { read line < \"$1\"; echo \"$line\" >&9; } & "
                           "echo told; exit 0"),
            1);
  EXPECT_THAT(agent.texts(LogLevel::Info), ElementsAre(L"Mesh service load command: told"));
  // The test opens a reader itself, so that opening the writer does not wait for a process that may
  // have ended.
  const int reader = ::open(out().c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
  const int writer = ::open(out().c_str(), O_WRONLY | O_NONBLOCK | O_CLOEXEC);
  EXPECT_EQ(::write(writer, "go\n", 3), 3);
  pollfd end = {answer, POLLIN, 0};
  EXPECT_EQ(::poll(&end, 1, 60000), 1);
  char line[4] = {};
  EXPECT_EQ(::read(answer, line, 3), 3) << "it was ended with the command";
  EXPECT_STREQ(line, "go\n");
  for (const int fd : {answer, reader, writer}) ::close(fd);
}

TEST_F(MeshService, GivesTheCommandNothingToRead) {
  EXPECT_EQ(loadWithScript("cat > \"$1\""), 1);
  EXPECT_EQ(test::readFile(out()), "");
}

TEST_F(MeshService, LogsWhatTheCommandPrints) {
  testing::internal::CaptureStdout();
  testing::internal::CaptureStderr();
  EXPECT_EQ(loadWithScript("echo told; echo warned >&2; echo; printf 'no end'"), 1);
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
  EXPECT_THAT(agent.log(), ElementsAre(line(L"told"), line(L"warned"), line(L"no end")));
}

TEST_F(MeshService, LogsNoMoreThanTheFirstLinesOfWhatTheCommandPrints) {
  EXPECT_EQ(loadWithScript("for i in `seq 100`; do echo line; done; exit 3"), 0);
  const auto lines = agent.texts(LogLevel::Info);
  ASSERT_EQ(lines.size(), 65U);
  EXPECT_EQ(lines[63], L"Mesh service load command: line");
  EXPECT_EQ(lines[64], L"Mesh service load command: (180 more bytes)");
  EXPECT_EQ(loadWithScript("head -c 1000000 /dev/zero | tr '\\0' x"), 1);
  EXPECT_THAT(agent.texts(LogLevel::Info),
              ElementsAre(L"Mesh service load command: " + std::wstring(8192, L'x'),
                          L"Mesh service load command: (991808 more bytes)"));
}

TEST_F(MeshService, HandsDownNoOtherDescriptor) {
  const int inheritable = ::dup(1);
  ASSERT_EQ(::fcntl(inheritable, F_GETFD), 0);
  const std::string script =
      "if { true >&" + std::to_string(inheritable) + "; } 2> /dev/null; " + "then exit 1; fi";
  ASSERT_LT(inheritable, 10) << "a shell takes a single digit only";
  EXPECT_EQ(loadWithScript(script), 1);
  ::close(inheritable);
  for (const char* fd : {"3", "4", "5", "6", "7", "8", "9"}) {
    EXPECT_EQ(
        loadWithScript(std::string("if { true >&") + fd + "; } 2> /dev/null; then exit 1; fi"), 1)
        << fd;
  }
}

TEST_F(MeshService, HandsDownTheEnvironment) {
  ::setenv("SITEHLP_TEST", "handed down", 1);
  EXPECT_EQ(loadWithScript("printf %s \"$SITEHLP_TEST\" > \"$1\""), 1);
  ::unsetenv("SITEHLP_TEST");
  EXPECT_EQ(test::readFile(out()), "handed down");
}

TEST_F(MeshService, HandsDownNoSignalSettings) {
  const auto before = ::signal(SIGTERM, SIG_IGN);
  sigset_t blocked;
  sigset_t old;
  sigemptyset(&blocked);
  sigaddset(&blocked, SIGINT);
  ::pthread_sigmask(SIG_BLOCK, &blocked, &old);
  EXPECT_EQ(loadWithScript("kill -TERM $$"), 0);
  EXPECT_THAT(onlyError(), testing::HasSubstr("signal 15"));
  EXPECT_EQ(loadWithScript("kill -INT $$"), 0);
  EXPECT_THAT(onlyError(), testing::HasSubstr("signal 2"));
  ::pthread_sigmask(SIG_SETMASK, &old, nullptr);
  ::signal(SIGTERM, before);
}

TEST_F(MeshService, WorksInAProcessWithoutStandardStreams) {
  const int saved[] = {::fcntl(0, F_DUPFD_CLOEXEC, 10), ::fcntl(1, F_DUPFD_CLOEXEC, 10),
                       ::fcntl(2, F_DUPFD_CLOEXEC, 10)};
  for (int fd = 0; fd < 3; ++fd) ::close(fd);
  const int result = loadWithScript("echo text && echo text >&2 && cat && echo done > \"$1\"");
  for (int fd = 0; fd < 3; ++fd) {
    ::dup2(saved[fd], fd);
    ::close(saved[fd]);
  }
  EXPECT_EQ(result, 1);
  EXPECT_EQ(test::readFile(out()), "done\n");
}

}  // namespace
