#include "platform/config/mesh_service.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <unistd.h>

#include <filesystem>

#include "tests/support/test_agent.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

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
  EXPECT_EQ(onlyError(), "No mesh service load command is configured");
}

TEST_F(MeshService, FailsWhenTheCommandCannotBeStarted) {
  EXPECT_EQ(loadWith({"/no/such/command"}), 0);
  EXPECT_EQ(onlyError(),
            "Mesh service load command /no/such/command failed: it cannot be started: "
            "No such file or directory");
  test::writeFile(out(), "not executable", 0644);
  EXPECT_EQ(loadWith({out()}), 0);
  EXPECT_EQ(onlyError(), "Mesh service load command " + out() +
                             " failed: it cannot be started: Permission denied");
}

TEST_F(MeshService, LooksForNoCommandInThePath) {
  EXPECT_EQ(loadWith({"sh", "-c", "exit 0"}), 0);
  EXPECT_EQ(agent.texts(LogLevel::Error).size(), 1U);
}

TEST_F(MeshService, FailsWhenTheCommandFails) {
  EXPECT_EQ(loadWithScript("exit 3"), 0);
  EXPECT_EQ(onlyError(), "Mesh service load command /bin/sh failed: it ended with status 3");
  EXPECT_EQ(loadWithScript("kill -TERM $$"), 0);
  EXPECT_EQ(onlyError(), "Mesh service load command /bin/sh failed: it was ended by signal 15");
}

TEST_F(MeshService, LogsNoArguments) {
  EXPECT_EQ(loadWith({"/bin/sh", "-c", "exit 1", "topsecret"}), 0);
  EXPECT_THAT(onlyError(), testing::Not(testing::HasSubstr("topsecret")));
}

TEST_F(MeshService, FailsWhenTheEndOfTheCommandIsLost) {
  const auto before = ::signal(SIGCHLD, SIG_IGN);
  EXPECT_EQ(loadWithScript("exit 0"), 0);
  ::signal(SIGCHLD, before);
  EXPECT_EQ(
      onlyError(),
      "Mesh service load command /bin/sh failed: it cannot be waited for: No child processes");
}

TEST_F(MeshService, GivesTheCommandNothingToRead) {
  EXPECT_EQ(loadWithScript("cat > \"$1\""), 1);
  EXPECT_EQ(test::readFile(out()), "");
}

TEST_F(MeshService, KeepsStandardOutputForTheCallersData) {
  testing::internal::CaptureStdout();
  testing::internal::CaptureStderr();
  EXPECT_EQ(loadWithScript("echo told; echo warned >&2"), 1);
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "told\nwarned\n");
}

TEST_F(MeshService, HandsDownNoOtherDescriptor) {
  const int inheritable = ::dup(1);
  ASSERT_EQ(::fcntl(inheritable, F_GETFD), 0);
  const std::string script =
      "if { true >&" + std::to_string(inheritable) + "; } 2> /dev/null; " + "then exit 1; fi";
  ASSERT_LT(inheritable, 10) << "a shell takes a single digit only";
  EXPECT_EQ(loadWithScript(script), 1);
  ::close(inheritable);
}

TEST_F(MeshService, HandsDownNoSignalSettings) {
  const auto before = ::signal(SIGTERM, SIG_IGN);
  sigset_t blocked;
  sigset_t old;
  ::sigemptyset(&blocked);
  ::sigaddset(&blocked, SIGINT);
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
