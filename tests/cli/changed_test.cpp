#include <cstdint>
#include <filesystem>
#include <nlohmann/json.hpp>

#include "tests/cli/documents.h"
#include "tests/cli/edit_fixture.h"
#include "tests/support/sanitizer.h"

namespace test {
namespace {

namespace fs = std::filesystem;
using nlohmann::json;

// An agent with a list, and a document that is ready to be imported.
class CliChanged : public CliTest {
 protected:
  void SetUp() override {
    ASSERT_EQ(sitelist({"init", "--mesh-command", "/bin/sh", "-c", ":"}).status, 0);
    setOwnList(document(serverSite({{"Name", "Old"}}) + httpSite("depot", "2")));
    write("in/SiteList.xml", document(serverSite({{"Name", "New"}}) + httpSite("depot", "2")));
  }

  // Runs a command that must end with this status. Returns what it says about changes.
  bool isChanged(const Arguments& arguments, int status = 0, const std::string& input = "") {
    const Output output = sitelist(Arguments{"--json"} + arguments, input);
    EXPECT_EQ(output.status, status) << testing::PrintToString(arguments) << output.err;
    const json document = json::parse(output.out);
    EXPECT_TRUE(document["changed"].is_boolean()) << output.out;
    return document["changed"] == true;
  }

  std::string incoming() const { return file("in/SiteList.xml"); }
  std::string out() const { return file("out.xml"); }
};

TEST_F(CliChanged, SaysThatFilesAreOtherThanBefore) {
  const Output made = bare({"--agent-dir", file("new"), "init", "--json"});
  EXPECT_EQ(json::parse(made.out)["changed"], true) << made.out;
  for (const Arguments& command : {
           Arguments{"import", incoming()},
           {"install", write("other.xml", document(httpSite("other")))},
           {"modify", "--servers", incoming()},
           {"policies", "set", "name", "value"},
           {"merge", "--first", incoming(), "--output", out()},
           {"rewrite", incoming(), file("rewritten.xml")},
           {"edit", "add", "http", "store", "server=store.example"},
           {"edit", "--file", incoming(), "disable", "depot"},
           {"undo"},
           {"server-list", incoming()},
           {"derive-server-list", file("in")},
       }) {
    EXPECT_TRUE(isChanged(command)) << testing::PrintToString(command);
  }
}

TEST_F(CliChanged, ARepeatedCommandChangesNothing) {
  for (const Arguments& command : {
           Arguments{"edit", "disable", "depot"},
           {"edit", "--file", incoming(), "disable", "depot"},
           {"server-list", incoming()},
           {"derive-server-list", file("in")},
           {"install", "--allow-empty", write("empty.xml", document(""))},
           {"policies", "set", "name", "value"},
       }) {
    EXPECT_TRUE(isChanged(command)) << testing::PrintToString(command);
    EXPECT_FALSE(isChanged(command)) << testing::PrintToString(command);
  }
}

// Every encryption of a password differs, even that of an empty one.
TEST_F(CliChanged, APasswordThatIsEncryptedAgainIsAChange) {
  EXPECT_TRUE(isChanged({"policies", "set", "name", "value"}));
  EXPECT_TRUE(isChanged({"policies", "set", "name", "value"}));
}

TEST_F(CliChanged, ADryRunChangesNothingAndTellsWhatWouldChange) {
  write("agent/etc/history/1-20260101T000000Z-import.xml", document(httpSite("store")));
  const auto before = agentFiles();
  for (const Arguments& command : {
           Arguments{"import", "--dry-run", incoming()},
           {"install", "--dry-run", incoming()},
           {"modify", "--dry-run", "--servers", incoming()},
           {"merge", "--dry-run", "--first", incoming()},
           {"edit", "--dry-run", "disable", "depot"},
           {"undo", "--dry-run"},
       }) {
    const json document = json::parse(sitelist(Arguments{"--json"} + command).out);
    EXPECT_EQ(document["changed"], false) << testing::PrintToString(command);
    EXPECT_EQ(document["differs"], true) << testing::PrintToString(command);
  }
  EXPECT_EQ(agentFiles(), before);
}

TEST_F(CliChanged, AFailedCommandSaysItToo) {
  EXPECT_FALSE(isChanged({"init"}, 6));
  EXPECT_FALSE(isChanged({"import", write("broken.xml", "<a><b></a>")}, 3));
  EXPECT_FALSE(isChanged({"edit", "disable", "nobody"}, 7));
  EXPECT_FALSE(isChanged({"edit", "set", "depot", "server="}, 1)) << "it would add a fault";
  EXPECT_FALSE(isChanged({"rewrite", file("none.xml"), out()}, 4));
  EXPECT_FALSE(isChanged({"policies", "set", "name"}, 2)) << "wrong usage";
}

// The key files are written before the list.
TEST_F(CliChanged, AFailureAfterAWriteDoesNotHideTheChange) {
  write("in/SiteList.xml", document(serverSite({{"Version", "5.9"}})));
  write("in/reqseckey.bin", "key");
  write("in/srpubkey.bin", "key");
  fs::remove(ownList());
  write("agent/etc/SiteList.xml/file", "in a directory");
  EXPECT_TRUE(isChanged({"install", incoming()}, 4));
  EXPECT_EQ(readFile(file("agent/etc/srpubkey.bin")), "key");
}

TEST_F(CliChanged, AKeyThatIsMadeIsAChange) {
  EXPECT_FALSE(isChanged({"protect"}, 0, "secret\n"));
  fs::remove(file("agent/keystore/password.key"));
  EXPECT_TRUE(isChanged({"protect"}, 0, "secret\n"));
  EXPECT_FALSE(isChanged({"protect"}, 0, "secret\n"));
}

TEST_F(CliChanged, AStaleMeshCopyThatIsRenewedIsAChange) {
  const Arguments command = {"install", "--allow-empty", write("same.xml", document(""))};
  ASSERT_TRUE(isChanged(command));
  EXPECT_FALSE(isChanged(command));
  write("agent/mesh/SiteList.xml", "stale");
  EXPECT_TRUE(isChanged(command));
}

TEST_F(CliChanged, ACommandThatOnlyReadsChangesNothing) {
  for (const Arguments& command : {
           Arguments{"show"},
           {"get", "type"},
           {"explain"},
           {"diff", incoming(), ownList()},
           {"versions"},
           {"servers"},
           {"validate", incoming()},
           {"explain-rule"},
       }) {
    EXPECT_FALSE(isChanged(command)) << testing::PrintToString(command);
  }
}

// A sanitizer needs more memory than the limit.
TEST_F(CliChanged, AFileThatIsTooLongIsNotRead) {
  const std::string servers = file("agent/ServerSiteList.xml");
  write("agent/ServerSiteList.xml", "");
  fs::resize_file(servers, std::uintmax_t{3} << 30);
  const std::string limit = TESTS_SANITIZED ? "" : "ulimit -v 2000000; ";
  const Output output = shell(limit + "exec \"$0\" --agent-dir agent \"$@\"",
                              {"--json", "policies", "set", "name", "value"});
  EXPECT_EQ(output.status, 0) << output.err;
  EXPECT_EQ(fs::file_size(servers), std::uintmax_t{3} << 30);
  EXPECT_TRUE(isChanged({"derive-server-list", file("agent/etc"), file("agent")}));
  EXPECT_LT(fs::file_size(servers), 100000U);
}

TEST_F(CliChanged, XmlHasItAsAnAttribute) {
  const auto head = [&](const Arguments& arguments) {
    return sitelist(Arguments{"--format", "xml"} + arguments).out;
  };
  EXPECT_THAT(head({"edit", "disable", "depot"}), testing::HasSubstr(" changed=\"true\">\n"));
  EXPECT_THAT(head({"edit", "disable", "depot"}), testing::HasSubstr(" changed=\"false\">\n"));
}

}  // namespace
}  // namespace test
