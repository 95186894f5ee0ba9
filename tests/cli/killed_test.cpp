#include <algorithm>
#include <csignal>
#include <filesystem>
#include <stdexcept>

#include "tests/cli/edit_fixture.h"

// Commands that are killed after they replaced the agent's own list and before they ended.
namespace test {
namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::MatchesRegex;
using testing::StartsWith;

class CliKilled : public CliTest {
 protected:
  // The load command runs after the list is replaced. It kills the tool, whose id is in a file.
  CliKilled() {
    const std::string kill = "kill -9 \"$(cat '" + file("id") + "')\"";
    const Output output = sitelist({"init", "--mesh-command", "/bin/sh", "-c", kill});
    if (output.status != 0) throw std::runtime_error("init: " + output.err);
    setOwnList(list());
  }

  static std::string list() { return document(httpSite("Depot")); }

  // Runs a command that must be killed.
  void kill(const Arguments& arguments) {
    const Output output = shell("echo $$ > id; exec \"$0\" --agent-dir agent \"$@\"", arguments);
    ASSERT_EQ(output.status, 128 + SIGKILL) << testing::PrintToString(arguments) << output.err;
  }

  // The names in the history, sorted.
  std::vector<std::string> kept() const {
    std::vector<std::string> names;
    for (const auto& entry : fs::directory_iterator(file("agent/etc/history"))) {
      names.push_back(entry.path().filename());
    }
    std::sort(names.begin(), names.end());
    return names;
  }
};

TEST_F(CliKilled, EveryCommandLeavesTheOldListInTheHistory) {
  const std::string incoming = write("in/SiteList.xml", document(httpSite("Offered")));
  const std::string servers = write("in/servers.xml", document(serverSite()));
  for (const auto& [name, arguments] :
       {std::pair{"edit_disable", Arguments{"edit", "disable", "Depot"}},
        {"policies_set", {"policies", "set", "Name", "Value"}},
        {"merge", {"merge", "--first", servers, "--output", ownList()}},
        {"rewrite", {"rewrite", incoming, ownList()}},
        {"modify", {"modify", "--servers", servers}},
        {"import", {"import", incoming}},
        {"install", {"install", servers}}}) {
    SCOPED_TRACE(name);
    fs::remove_all(file("agent/etc/history"));
    setOwnList(list());
    kill(arguments);
    const std::string present = readFile(ownList());
    EXPECT_NE(present, list());
    EXPECT_EQ(sitelist({"validate", "--unmanaged", ownList()}).status, 0) << "the list is complete";
    ASSERT_EQ(kept().size(), 1U);
    EXPECT_THAT(kept().front(),
                MatchesRegex("pending[0-9]+-[0-9]{8}T[0-9]{6}Z-" + std::string(name) + "\\.xml"));
    EXPECT_EQ(readFile(file("agent/etc/history/" + kept().front())), list());
    EXPECT_THAT(sitelist({"history", "--format", "csv"}).out, HasSubstr("\n1,"));
    EXPECT_EQ(readFile(ownList()), present) << "a look at the history changes nothing";
  }
}

TEST_F(CliKilled, TheNextCommandNumbersTheOldList) {
  kill({"edit", "disable", "Depot"});
  const std::string second = readFile(ownList());
  kill({"policies", "set", "Name", "Value"});
  EXPECT_THAT(kept(), ElementsAre(MatchesRegex("1-.*-edit_disable\\.xml"),
                                  MatchesRegex("pending[0-9]+-.*-policies_set\\.xml")));
  EXPECT_EQ(readFile(file("agent/etc/history/" + kept().front())), list());
  EXPECT_EQ(readFile(file("agent/etc/history/" + kept().back())), second);
  EXPECT_THAT(sitelist({"history", "--format", "csv"}).out,
              testing::AllOf(HasSubstr("\n1,"), HasSubstr("\n2,")));
}

TEST_F(CliKilled, AnUndoRestoresTheOldList) {
  kill({"edit", "disable", "Depot"});
  const std::string second = readFile(ownList());
  kill({"undo"});
  EXPECT_EQ(readFile(ownList()), list());
  write("agent/agent.toml", "");  // no load command
  ASSERT_EQ(sitelist({"undo"}).status, 0);
  EXPECT_EQ(readFile(ownList()), second);
  EXPECT_THAT(kept(), ElementsAre(StartsWith("1-"), StartsWith("2-"), StartsWith("3-")));
}

// The kernel releases the locks of a process that ends.
TEST_F(CliKilled, TheListIsNotLockedAfterwards) {
  kill({"edit", "disable", "Depot"});
  write("agent/agent.toml", "");
  const Output output = sitelist({"--wait", "0", "edit", "enable", "Depot"});
  EXPECT_EQ(output.status, 0) << output.err;
  EXPECT_EQ(readFile(file("agent/mesh/SiteList.xml")), readFile(ownList()));
}

}  // namespace
}  // namespace test
