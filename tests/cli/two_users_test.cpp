#include "tests/links/two_users.h"

#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <iostream>

#include "tests/cli/edit_fixture.h"

namespace fs = std::filesystem;

// Root uses an agent of another user. Afterwards that user uses it.
namespace test {
namespace {

using testing::HasSubstr;
using testing::IsEmpty;

class CliTwoUsers : public CliTest {
 protected:
  // The agent's user owns everything in the directory of the test.
  CliTwoUsers() {
    list = write("lists/list.xml", document(httpSite("Offered")));
    owner = std::to_string(agentUser());
    handOver();
  }

  // Root's stream files are removed first, because the agent's user could not write to them.
  void handOver() {
    for (const char* name : {"stdin", "stdout", "stderr"}) ::unlink(file(name).c_str());
    giveToAgent(file("lists"));
    giveToAgent(file("tmp"));
    if (haveTwoUsers()) {
      ASSERT_EQ(::chown(file("").c_str(), agentUser(), agentGroup()), 0);
    }
  }

  // Returns whether the test can run. Prints what is missing.
  bool isPossible() {
    if (!::getpwuid(agentUser())) {
      std::cout << "Not tried: the agent's user has no account name on this machine.\n";
      return false;
    }
    const bool canStart = asAgentUser([] {
                            return std::vector<std::string>(::access(SITELIST_TOOL, X_OK) == 0, "");
                          }).size() == 1;
    if (!canStart)
      std::cout << "Not tried: the agent's user cannot start the tool in the build directory.\n";
    return canStart;
  }

  std::vector<Arguments> commands() const {
    return {{"show"},
            {"get", "globalVersion"},
            {"explain"},
            {"servers"},
            {"diff", ownList(), list},
            {"validate", "--unmanaged", ownList()},
            {"protect"},
            {"import", list},
            {"import", list, "--dry-run"},
            {"edit", "disable", "Offered", "--force"},
            {"edit", "enable", "Offered", "--force"},
            {"policies", "set", "Name", "Value"},
            {"modify", list, "--repositories"},
            {"merge", "--first", list, "--output", file("agent/merged.xml")},
            {"server-list", list},
            {"derive-server-list", file("agent/etc")},
            {"history"},
            {"undo"}};
  }

  // Runs every command as the agent's user. Returns one line for each failure.
  std::vector<std::string> runAllAsAgentUser() {
    handOver();
    return asAgentUser([this] {
      std::vector<std::string> lines;
      for (const Arguments& arguments : commands()) {
        const Output output = sitelist(arguments, "fair\n");
        if (output.status == 0 || output.status == 1) continue;
        lines.push_back(testing::PrintToString(arguments) + ": " + output.err);
      }
      return lines;
    });
  }

  // Returns the files and directories of the agent that do not belong to the agent's user.
  std::vector<std::string> foreign() const {
    std::vector<std::string> found;
    for (const auto& entry : fs::recursive_directory_iterator(file("agent"))) {
      struct stat info {};
      if (::lstat(entry.path().c_str(), &info) != 0 || info.st_uid != agentUser()) {
        found.push_back(entry.path().string());
      }
    }
    return found;
  }

  std::string list;
  std::string owner;
};

TEST_F(CliTwoUsers, AfterEveryCommandOfRootTheAgentsUserRunsEveryCommand) {
  if (!isPossible()) return;
  const Output init = sitelist({"init", "--owner", owner, "--mesh-command", "/bin/sh", "-c", ":"});
  ASSERT_EQ(init.status, 0) << init.err;
  EXPECT_THAT(foreign(), IsEmpty());
  EXPECT_EQ(sitelist({"import", list}).status, 0);
  EXPECT_THAT(runAllAsAgentUser(), IsEmpty());
  for (const Arguments& arguments : commands()) {
    SCOPED_TRACE(testing::PrintToString(arguments));
    for (const char* made : {"locks", "mesh/SiteList.xml", "ServerSiteList.xml"}) {
      fs::remove_all(file(std::string("agent/") + made));
    }
    const Output output = sitelist(arguments, "fair\n");
    EXPECT_LE(output.status, 1) << output.err;
    EXPECT_THAT(foreign(), IsEmpty());
    EXPECT_THAT(runAllAsAgentUser(), IsEmpty());
  }
}

#ifdef INTERPOSER
TEST_F(CliTwoUsers, ALinkInRootsDraftLeadsNowhere) {
  if (!haveTwoUsers()) return;
  write("lists/srpubkey.bin", "key");
  giveToAgent(file("lists"));
  const std::string ofRoot = write("root/secret", "of root");
  const std::string before = readFile(list);
  const Output output = shell("LINK_TO='" + ofRoot + "' LINK_OWNER=" + owner +
                                  " LD_PRELOAD='" INTERPOSER "' \"$0\" --agent-dir agent \"$@\"",
                              {"edit", "--file", list, "--force", "disable", "Offered"});
  EXPECT_EQ(output.status, 4) << output.err;
  EXPECT_THAT(output.err, HasSubstr("cannot be written: Operation not permitted"));
  EXPECT_EQ(readFile(ofRoot), "of root");
  EXPECT_EQ(readFile(list), before);
}
#endif

class CliInitOwner : public CliTest {};

TEST_F(CliInitOwner, IsAUserOfTheSystem) {
  for (const char* user : {"no such user", "999999999", ""}) {
    const Output output = sitelist({"init", "--owner", user});
    EXPECT_EQ(output.status, 2) << user;
    EXPECT_THAT(output.err, HasSubstr("--owner: "));
    EXPECT_FALSE(exists(file("agent")));
  }
}

TEST_F(CliInitOwner, MayBeTheUserOfTheProcess) {
  const Output output = sitelist({"init", "--owner", std::to_string(::geteuid())});
  EXPECT_EQ(output.status, 0) << output.err;
}

TEST_F(CliInitOwner, TakesNoDirectoryWithContentFromAnotherUser) {
  if (!haveTwoUsers() || !::getpwuid(agentUser())) return;
  write("agent/file", "of root");
  const Output output = sitelist({"init", "--owner", std::to_string(agentUser())});
  EXPECT_EQ(output.status, 6);
  EXPECT_THAT(output.err, HasSubstr("the directory belongs to another user and is not empty"));
  EXPECT_EQ(agentFiles().size(), 1U);
}

TEST_F(CliTwoUsers, OnlyRootMakesAnAgentForAnotherUser) {
  if (!isPossible()) return;
  EXPECT_THAT(asAgentUser([this] {
                const Output output = sitelist({"init", "--owner", "root"});
                return std::vector<std::string>{std::to_string(output.status), output.err};
              }),
              testing::Contains(HasSubstr("the owner cannot be changed: Operation not permitted")));
  EXPECT_FALSE(exists(file("agent/agent.toml")));
}

}  // namespace
}  // namespace test
