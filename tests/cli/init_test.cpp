#include <sys/stat.h>

#include "tests/cli/cli_fixture.h"

namespace test {
namespace {

using testing::HasSubstr;

class CliInit : public CliTest {};

TEST_F(CliInit, MakesTheWholeDataDirectory) {
  const Output output = sitelist({"init"});
  EXPECT_EQ(output.status, 0) << output.err;
  EXPECT_EQ(output.out, "");
  EXPECT_THAT(output.err, HasSubstr("created an unmanaged agent in " + file("agent")));
  for (const char* name : {"agent/agent.toml", "agent/etc", "agent/mesh", "agent/locks",
                           "agent/keystore/password.key"}) {
    EXPECT_TRUE(exists(file(name))) << name;
  }
}

TEST_F(CliInit, KeepsTheKeysToTheOwner) {
  initAgent();
  struct stat status = {};
  ASSERT_EQ(::stat(file("agent/keystore").c_str(), &status), 0);
  EXPECT_EQ(status.st_mode & 0777, 0700U);
  ASSERT_EQ(::stat(file("agent/keystore/password.key").c_str(), &status), 0);
  EXPECT_EQ(status.st_mode & 0777, 0600U);
}

TEST_F(CliInit, GivesOthersNoRightToWriteUnderAnyUmask) {
  ASSERT_EQ(shell("umask 000 && \"$0\" --agent-dir above/agent init").status, 0);
  const auto modeOf = [this](const std::string& name) {
    struct stat status = {};
    EXPECT_EQ(::stat(file(name).c_str(), &status), 0) << name;
    return status.st_mode & 07777;
  };
  for (const char* name :
       {"above", "above/agent", "above/agent/etc", "above/agent/mesh", "above/agent/locks"}) {
    EXPECT_EQ(modeOf(name), 0755U) << name;
  }
  EXPECT_EQ(modeOf("above/agent/keystore"), 0700U);
  EXPECT_EQ(modeOf("above/agent/agent.toml"), 0640U);
}

TEST_F(CliInit, WritesTheSettingsThatWereAskedFor) {
  const Output output = sitelist({"init", "--managed", "--mesh-path", file("copy.xml"),
                                  "--mesh-command", "/bin/sh", "-c", "exit 0", "--managed"});
  ASSERT_EQ(output.status, 0) << output.err;
  const host::AgentSettings settings = host::readAgentSettings(file("agent"));
  EXPECT_TRUE(settings.managed);
  EXPECT_EQ(settings.meshSiteListPath, file("copy.xml"));
  EXPECT_THAT(settings.meshLoadCommand,
              testing::ElementsAre("/bin/sh", "-c", "exit 0", "--managed"));
}

TEST_F(CliInit, RefusesADirectoryThatHasAnAgent) {
  initAgent({"--managed"});
  const auto before = agentFiles();
  const Output output = sitelist({"init"});
  EXPECT_EQ(output.status, 6);
  EXPECT_THAT(output.err,
              HasSubstr("agent.toml: there is already an agent in this directory\n  next: "));
  EXPECT_EQ(agentFiles(), before);
}

TEST_F(CliInit, NamesTheDirectoryThatCannotBeMade) {
  write("agent", "a file in its place");
  const Output output = sitelist({"init"});
  EXPECT_EQ(output.status, 4);
  EXPECT_THAT(output.err, HasSubstr(file("agent/etc") + ": cannot be created: "));
}

TEST_F(CliInit, AsksForTheMeshProgramsFullPath) {
  EXPECT_EQ(sitelist({"init", "--mesh-command"}).status, 2);
  EXPECT_EQ(sitelist({"init", "--mesh-command", "sh", "-c", "exit 0"}).status, 2);
  EXPECT_FALSE(exists(file("agent")));
}

TEST_F(CliInit, RefusesADirectoryWhoseListTheLibraryCouldNotName) {
  const std::string tooLong = file(std::string(200, 'a') + "/" + std::string(200, 'b'));
  const Output output = bare({"--agent-dir", tooLong, "init"});
  EXPECT_EQ(output.status, 2);
  EXPECT_THAT(output.err,
              HasSubstr("\n  next: name a directory with a shorter path with --agent-dir\n"));
  EXPECT_FALSE(exists(file(std::string(200, 'a'))));
}

}  // namespace
}  // namespace test
