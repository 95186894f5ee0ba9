#include "tests/cli/edit_fixture.h"

// The effects of the environment and the current directory on every command.
namespace test {
namespace {

using testing::HasSubstr;

class CliAgentDirectory : public CliTest {
 protected:
  CliAgentDirectory() {
    initAgent();
    setOwnList(document(httpSite("Depot")));
    write("lists/list.xml", document(httpSite("Offered")));
  }

  // Runs the tool in the directory of the test with these environment settings.
  Output with(const std::string& settings, const Arguments& arguments) {
    return shell(settings + " \"$0\" \"$@\"", arguments);
  }
};

TEST_F(CliAgentDirectory, IsThatOfTheEnvironmentForEveryCommand) {
  for (const Arguments& arguments : {Arguments{"show"},
                                     {"get", "globalVersion"},
                                     {"explain"},
                                     {"versions"},
                                     {"servers"},
                                     {"certs"},
                                     {"policies"},
                                     {"merge", "--first", "lists/list.xml", "--dry-run"},
                                     {"import", "lists/list.xml", "--dry-run"},
                                     {"modify", "lists/list.xml", "--servers", "--dry-run"},
                                     {"rewrite", "lists/list.xml", "copy.xml"},
                                     {"edit", "disable", "Depot"},
                                     {"policies", "set", "Name", "Value"},
                                     {"server-list", "lists/list.xml"},
                                     {"history"},
                                     {"protect"},
                                     {"init"}}) {
    const auto before = agentFiles();
    const Output named = with("", Arguments{"--agent-dir", "agent"} + arguments);
    for (const auto& [name, bytes] : before) write("agent/" + name, bytes);
    const Output found = with("SITELIST_AGENT_DIR=agent", arguments);
    EXPECT_EQ(found.status, named.status) << testing::PrintToString(arguments) << found.err;
    EXPECT_EQ(found.out, named.out) << testing::PrintToString(arguments);
    EXPECT_EQ(found.err, named.err) << testing::PrintToString(arguments);
    EXPECT_THAT(found.err, testing::Not(HasSubstr("/Library")))
        << testing::PrintToString(arguments);
  }
  EXPECT_EQ(with("SITELIST_AGENT_DIR=agent", {"__complete", "--", "show", "--sort", ""}).status, 0);
}

TEST_F(CliAgentDirectory, OfTheCommandLineComesFirst) {
  const Output output = with("SITELIST_AGENT_DIR=none", {"--agent-dir", "agent", "show"});
  EXPECT_EQ(output.status, 0) << output.err;
}

TEST_F(CliAgentDirectory, OfAnEmptyVariableIsTheDefault) {
  const std::string unset = with("unset SITELIST_AGENT_DIR;", {"show"}).err;
  EXPECT_EQ(with("SITELIST_AGENT_DIR=", {"show"}).err, unset);
  EXPECT_NE(with("SITELIST_AGENT_DIR=agent", {"show"}).err, unset);
}

TEST_F(CliAgentDirectory, ThatIsRelativeNeedsACurrentDirectory) {
  const std::string gone = "mkdir gone && cd gone && rmdir ../gone &&";
  for (const Arguments& arguments :
       {Arguments{"--agent-dir", "agent", "show"},
        {"--agent-dir", "agent", "init"},
        {"--agent-dir", file("other"), "init", "--mesh-path", "copy.xml"}}) {
    const Output output = with(gone, arguments);
    EXPECT_EQ(output.status, 4) << testing::PrintToString(arguments);
    EXPECT_THAT(output.err,
                HasSubstr(": the path is relative, and the current directory cannot be determined: "
                          "No such file or directory\n"
                          "  next: change to another directory, or give the full path\n"));
  }
  EXPECT_EQ(with(gone + " SITELIST_AGENT_DIR=agent", {"show"}).status, 4);
  const Output full = with(gone, {"--agent-dir", file("agent"), "show"});
  EXPECT_EQ(full.status, 0) << full.err;
}

}  // namespace
}  // namespace test
