#include <filesystem>

#include "tests/cli/cli_fixture.h"
#include "tests/cli/documents.h"
#include "tests/cli/edit_fixture.h"

namespace test {
namespace {

namespace fs = std::filesystem;
using testing::AnyOf;
using testing::HasSubstr;
using testing::Not;

class CliWriteFailure : public CliTest {
 protected:
  void SetUp() override {
    initAgent();
    // A copy for the history would be the first file that cannot be written.
    write("agent/agent.toml", "history = 0\nmesh.load_command = [\"/bin/sh\", \"-c\", \":\"]\n");
    setOwnList(document(httpSite("depot")));
    write("in/SiteList.xml", document(serverSite({{"Version", "5.9"}}) + httpSite("other", "2")));
    write("in/srpubkey.bin", "public");
    write("in/reqseckey.bin", "secret");
  }

  // Runs the tool in a process that cannot write to files, as with a full disk. Returns its output
  // and exit status.
  std::string onFullDisk(const Arguments& arguments) {
    return shell(
               "(trap '' XFSZ; ulimit -f 0; \"$0\" --agent-dir agent \"$@\" 2>&1;"
               " echo \"status $?\") | cat",
               arguments)
        .out;
  }
};

TEST_F(CliWriteFailure, OfAFullDiskIsAFileFailureWithItsReason) {
  const std::string list = write("list.xml", document(httpSite("other")));
  const std::string versioned = file("in/SiteList.xml");
  const std::string own = ownList();
  for (const auto& [arguments, path] : std::vector<std::pair<Arguments, std::string>>{
           {{"import", versioned}, file("agent/etc/srpubkey.bin")},
           {{"install", versioned}, file("agent/etc/srpubkey.bin")},
           {{"import", list}, own},
           {{"policies", "set", "name", "value"}, own},
           {{"merge", "--output", own}, own},
           {{"rewrite", list, file("out.xml")}, file("out.xml")},
           {{"server-list", list}, file("agent/ServerSiteList.xml")},
           {{"server-list", "--adjust-passwords", list}, file("agent/ServerSiteList.xml")},
           {{"derive-server-list", file("in")}, file("in/ServerSiteList.xml")},
           {{"modify", "--servers", versioned}, "SiteList.xml"},
           {{"edit", "disable", "depot"}, "SiteList.xml"},
       }) {
    SCOPED_TRACE(testing::PrintToString(arguments));
    const std::string text = onFullDisk(arguments);
    EXPECT_THAT(text, testing::EndsWith("status 4\n"));
    EXPECT_THAT(text, testing::ContainsRegex(path + ": [^\n]*\n  File too large\n  next: "));
    EXPECT_EQ(readFile(own), document(httpSite("depot")));
  }
}

// The reason depends on whether the machine has the scratch directory.
TEST_F(CliWriteFailure, OfTheScratchDirectoryIsSaidWithItsReason) {
  const std::string text = onFullDisk({"from-buffer", file("in/SiteList.xml")});
  EXPECT_THAT(text, AnyOf(HasSubstr("(-11, 0xFFFFFFF5)\n  No such file or directory\n"),
                          HasSubstr("(-11, 0xFFFFFFF5)\n  File too large\n")));
}

TEST_F(CliWriteFailure, OfAKeyFileNamesThatFile) {
  write("agent/etc/reqseckey.bin/in-the-way", "");
  for (const Arguments& arguments : {Arguments{"import"}, {"install"}, {"modify", "--servers"}}) {
    const Output output = sitelist(arguments + Arguments{file("in/SiteList.xml")});
    EXPECT_EQ(output.status, 4) << output.err;
    EXPECT_THAT(output.err,
                HasSubstr(file("agent/etc/reqseckey.bin") + ": the agent's files could not be "));
    EXPECT_THAT(output.err, HasSubstr("\n  Is a directory\n"));
    EXPECT_THAT(output.err, Not(HasSubstr("next to the list")));
  }
}

TEST_F(CliWriteFailure, OfTheDirectoryNamesItsReason) {
  fs::remove_all(file("agent/etc"));
  write("agent/etc", "a file in its place");
  const Output output = sitelist({"import", file("in/SiteList.xml")});
  EXPECT_EQ(output.status, 4);
  EXPECT_THAT(output.err, testing::ContainsRegex(file("agent/etc") +
                                                 ": the agent's files could not be written "
                                                 "[^\n]*\n  (Not a directory|File exists)\n"));
}

TEST_F(CliWriteFailure, SettingsThatCannotBeReadAreAFileFailure) {
  fs::remove(file("agent/agent.toml"));
  write("agent/agent.toml/in-the-way", "");
  const Output output = sitelist({"show"});
  EXPECT_EQ(output.status, 4);
  EXPECT_EQ(output.err, "sitelist: " + file("agent/agent.toml") +
                            ": cannot be read: it is a directory\n"
                            "  next: check that it is a regular file that you may read\n");
}

TEST_F(CliWriteFailure, AKeystoreThatCannotBeReadIsNotAMissingKey) {
  fs::remove_all(file("agent/keystore"));
  write("agent/keystore", "a file in its place");
  const Output rewritten = sitelist({"rewrite", ownList(), file("out.xml")});
  EXPECT_EQ(rewritten.status, 5);
  EXPECT_THAT(rewritten.err, HasSubstr("Not a directory"));
  EXPECT_THAT(rewritten.err, Not(HasSubstr("init")));
  setOwnList(document(httpSite("depot", "1", "QUJD")));
  for (const Arguments& arguments :
       {Arguments{"policies", "set", "name", "value"}, {"import", ownList()}}) {
    const Output output = sitelist(arguments);
    EXPECT_EQ(output.status, 5);
    EXPECT_THAT(output.err, HasSubstr("keystore/password.key: cannot be opened: Not a directory"));
  }
}

}  // namespace
}  // namespace test
