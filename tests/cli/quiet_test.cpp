#include <nlohmann/json.hpp>

#include "tests/cli/documents.h"
#include "tests/cli/edit_fixture.h"

namespace test {
namespace {

using nlohmann::json;
using testing::HasSubstr;
using testing::StartsWith;

class CliQuiet : public CliTest {
 protected:
  void SetUp() override {
    initAgent();
    setOwnList(document(serverSite() + httpSite("depot", "2"),
                        "<Policies><Setting name=\"a\">1</Setting></Policies>"));
    write("in/SiteList.xml", document(serverSite({{"Name", "New"}}) + httpSite("depot", "2")));
    write("agent/etc/history/1-20260101T000000Z-import.xml", document(httpSite("store")));
  }

  std::string incoming() const { return file("in/SiteList.xml"); }

  // Each command whose output is its result, and the status that it ends with.
  std::vector<std::pair<Arguments, int>> questions() const {
    return {{{"show"}, 0},
            {{"get", "type"}, 0},
            {{"explain"}, 0},
            {{"diff", "--exit-code", incoming(), ownList()}, 1},
            {{"versions"}, 0},
            {{"servers"}, 0},
            {{"certs"}, 1},
            {{"policies"}, 0},
            {{"validate", incoming()}, 0},
            {{"explain-rule"}, 0},
            {{"history"}, 0},
            {{"import", "--dry-run", incoming()}, 0},
            {{"edit", "--dry-run", "disable", "depot"}, 0},
            {{"undo", "--dry-run"}, 0},
            {{"show", "--filter", "name=nobody"}, 1}};
  }
};

TEST_F(CliQuiet, PrintsNoResultAndNoMessage) {
  for (const auto& [command, status] : questions()) {
    for (const char* option : {"-q", "--quiet"}) {
      const Output output = sitelist(Arguments{option} + command);
      EXPECT_EQ(output.status, status) << testing::PrintToString(command) << output.err;
      EXPECT_EQ(output.out, "") << testing::PrintToString(command);
      EXPECT_EQ(output.err, "") << testing::PrintToString(command);
    }
  }
  const Output output = sitelist({"protect", "-q"}, "secret\n");
  EXPECT_EQ(output.out + output.err, "");
  EXPECT_EQ(output.status, 0);
}

TEST_F(CliQuiet, ACommandThatChangesSomethingDoesItWithoutAWord) {
  const Output made = bare({"--agent-dir", file("new"), "init", "--quiet"});
  EXPECT_EQ(made.out + made.err, "");
  EXPECT_TRUE(exists(file("new/agent.toml")));
  for (const Arguments& command : {
           Arguments{"import", incoming()},
           {"install", "--allow-older", incoming()},
           {"modify", "--servers", incoming()},
           {"policies", "set", "name", "value"},
           {"merge", "--first", incoming(), "--output", file("out.xml")},
           {"rewrite", incoming(), file("rewritten.xml")},
           {"edit", "disable", "depot"},
           {"edit", "disable", "depot"},
           {"undo"},
           {"server-list", incoming()},
           {"derive-server-list", file("in")},
       }) {
    const Output output = sitelist(command + Arguments{"--quiet"});
    EXPECT_EQ(output.status, 0) << testing::PrintToString(command) << output.err;
    EXPECT_EQ(output.out + output.err, "") << testing::PrintToString(command);
  }
  EXPECT_TRUE(exists(file("out.xml")));
  EXPECT_EQ(sitelist({"edit", "disable", "depot"}).status, 0);
}

TEST_F(CliQuiet, OmitsWarnings) {
  const std::string path = write("foreign.xml", document(httpSite("depot", "1", "QUJD")));
  EXPECT_THAT(sitelist({"show", path}).err, HasSubstr("warning: "));
  EXPECT_EQ(sitelist({"show", "--quiet", path}).err, "");
  const Output written =
      sitelist({"--quiet", "rewrite", "--allow-lost-passwords", path, file("out.xml")});
  EXPECT_EQ(written.status, 0);
  EXPECT_EQ(written.err, "");
}

TEST_F(CliQuiet, PrintsErrors) {
  const std::vector<std::pair<Arguments, int>> failures = {
      {{"show", file("none.xml")}, 4},
      {{"show", write("broken.xml", "<a><b></a>")}, 3},
      {{"edit", "disable", "nobody"}, 7},
      {{"show", "--bogus"}, 2},
      {{"validate"}, 2},
      {{}, 2},
  };
  for (const auto& [command, status] : failures) {
    const Output output = sitelist(Arguments{"--quiet"} + command);
    EXPECT_EQ(output.status, status) << testing::PrintToString(command);
    EXPECT_EQ(output.out, "") << testing::PrintToString(command);
    EXPECT_THAT(output.err, StartsWith("sitelist: ")) << testing::PrintToString(command);
    EXPECT_THAT(output.err, HasSubstr("\n  next: ")) << testing::PrintToString(command);
  }
}

TEST_F(CliQuiet, ADocumentForStandardOutputIsPrinted) {
  for (const Arguments& command :
       {Arguments{"merge", "--first", incoming()}, {"rewrite", incoming(), "-"}}) {
    const Output output = sitelist(Arguments{"--quiet"} + command);
    EXPECT_EQ(output.status, 0) << output.err;
    EXPECT_THAT(output.out, testing::StartsWith("<?xml ")) << command.front();
    EXPECT_EQ(output.err, "") << command.front();
  }
  const std::string list = readFile(incoming());
  EXPECT_EQ(sitelist({"--quiet", "edit", "--file", "-", "enable", "depot"}, list).out,
            sitelist({"edit", "--file", "-", "enable", "depot"}, list).out);
}

// The reason in the log belongs to the error.
TEST_F(CliQuiet, PrintsTheSameErrorAsWithoutIt) {
  write("agent/keystore/password.key", "too short");
  const Arguments command = {"protect"};
  const Output usual = sitelist(command, "secret\n");
  ASSERT_EQ(usual.status, 5);
  EXPECT_EQ(sitelist(Arguments{"--quiet"} + command, "secret\n").err, usual.err);
}

TEST_F(CliQuiet, AFormatForProgramsIsPrinted) {
  for (const auto& [command, status] : questions()) {
    for (const char* format : {"json", "csv", "xml"}) {
      const Arguments asked = Arguments{"--format", format} + command;
      const Output quiet = sitelist(Arguments{"--quiet"} + asked);
      EXPECT_EQ(quiet.status, status) << testing::PrintToString(asked);
      EXPECT_EQ(quiet.out, sitelist(asked).out) << testing::PrintToString(asked);
      EXPECT_EQ(quiet.err, "") << testing::PrintToString(asked);
    }
  }
  EXPECT_EQ(sitelist({"--quiet", "--format", "table", "show"}).out, "");
}

TEST_F(CliQuiet, JsonStillHasWarningsAndErrors) {
  const std::string path = write("foreign.xml", document(httpSite("depot", "1", "QUJD")));
  const json warned = json::parse(sitelist({"--quiet", "--json", "show", path}).out);
  EXPECT_EQ(warned["warnings"].size(), 1U);
  const Output failed = sitelist({"--quiet", "--json", "show", file("none.xml")});
  EXPECT_EQ(json::parse(failed.out)["error"]["status"], 4);
  EXPECT_THAT(failed.err, StartsWith("sitelist: "));
}

TEST_F(CliQuiet, HelpAndVersionArePrinted) {
  for (const Arguments& command :
       {Arguments{"--help"}, {"--version"}, {"show", "--help"}, {"help"}}) {
    EXPECT_EQ(bare(Arguments{"--quiet"} + command).out, bare(command).out);
  }
  EXPECT_THAT(bare({"--help"}).out, HasSubstr("\n  -q,--quiet  "));
}

TEST_F(CliQuiet, CannotBeUsedWithVerbose) {
  const Output output = sitelist({"--quiet", "--verbose", "show"});
  EXPECT_EQ(output.status, 2);
  EXPECT_EQ(output.out, "");
  EXPECT_EQ(output.err,
            "sitelist: --quiet and --verbose cannot be used together\n"
            "  next: give only one of them\n");
}

TEST_F(CliQuiet, OutputThatCannotBeWrittenIsStillAFileFailure) {
  const Output output = shell("exec \"$0\" --quiet --json show \"$1\" 1</dev/null", {incoming()});
  EXPECT_EQ(output.status, 4);
  EXPECT_EQ(output.err,
            "sitelist: cannot write to standard output: Bad file descriptor\n"
            "  next: check the disk, or the program that reads the output\n");
  EXPECT_EQ(shell("exec \"$0\" --quiet show \"$1\" 1</dev/null", {incoming()}).status, 0);
}

}  // namespace
}  // namespace test
