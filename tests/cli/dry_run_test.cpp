#include "tests/cli/edit_fixture.h"

namespace test {
namespace {

using testing::HasSubstr;
using testing::Not;

class CliDryRun : public CliTest {
 protected:
  void SetUp() override { initAgent(); }

  std::string preview(const std::string& text) {
    const auto before = agentFiles();
    const Output output = sitelist({"import", "--dry-run", write("in/list.xml", text)});
    EXPECT_EQ(output.status, 0) << output.err;
    EXPECT_EQ(agentFiles(), before);
    EXPECT_THAT(output.out, testing::EndsWith("\nNothing was written.\n"));
    return output.out;
  }
};

TEST_F(CliDryRun, SaysWhatAnEmptyAgentWouldGet) {
  EXPECT_EQ(preview(document(httpSite("depot"))),
            "What would change in " + ownList() +
                "\n\n"
                "Versions\n"
                "  changed    globalVersion: (none) -> 20260101000000\n"
                "  changed    localVersion: (none) -> 20260102000000\n"
                "  changed    type: (none) -> Client\n\n"
                "Sites\n  added      http depot  (depot.example:8080 Current)\n\n"
                "Nothing was written.\n");
  EXPECT_FALSE(exists(ownList()));
}

TEST_F(CliDryRun, TellsAddedRemovedAndChangedSitesApart) {
  const std::string sealed = protectedText("one");
  setOwnList(document(httpSite("same", "1", sealed) + httpSite("gone") + httpSite("moved", "2") +
                      httpSite("repassworded", "3", protectedText("old"))));
  const std::string out =
      preview(document(httpSite("same", "1", protectedText("one")) + httpSite("moved", "7") +
                       httpSite("new") + httpSite("repassworded", "3", protectedText("fresh"))));
  EXPECT_THAT(out, HasSubstr("Sites\n"
                             "  reordered  http moved\n"
                             "               order               2 -> 7\n"
                             "  added      http new  (depot.example:8080 Current)\n"
                             "  changed    http repassworded\n"
                             "               password            ******** -> another\n"
                             "  removed    http gone  (depot.example:8080 Current)\n"
                             "  1 unchanged\n"));
  EXPECT_THAT(out, Not(HasSubstr("fresh")));
}

TEST_F(CliDryRun, ShowsTheExchangeOfTheDefaultRepositories) {
  const auto vendor = [](const char* kind, const char* name, const char* server, int order) {
    return "<" + std::string(kind) + " Type=\"repository\" Name=\"" + name + "\" Order=\"" +
           std::to_string(order) + "\" Enabled=\"1\" Server=\"" + server + "\"/>";
  };
  setOwnList(document(vendor("FTPSite", "f", "ftp.wex.example:21", 1) +
                      vendor("HttpSite", "h", "update.wex.example:80", 2)));
  const std::string out = preview(readFile(ownList()));
  EXPECT_THAT(out, HasSubstr("  reordered  ftp f\n"
                             "               order               1 -> 2\n"
                             "  reordered  http h\n"
                             "               order               2 -> 1\n\n"));
}

TEST_F(CliDryRun, TellsVersionsCertificatesAndPoliciesApart) {
  const auto bundle = [](const std::string& texts) { return "<CaBundle>" + texts + "</CaBundle>"; };
  const auto policies = [](const std::string& a, const std::string& b) {
    return "<Policies><Setting name=\"kept\">1</Setting><Setting name=\"" + a + "\">" + b +
           "</Setting></Policies>";
  };
  const std::string pem = std::string("<CaCertificate>") + c_certificatePem + "</CaCertificate>";
  setOwnList(document(httpSite("depot"),
                      bundle("<CaCertificate>text</CaCertificate>") + policies("old", "1"),
                      "GlobalVersion=\"1\" LocalVersion=\"2\""));
  const std::string out = preview(document(httpSite("depot"), bundle(pem) + policies("new", "2"),
                                           "GlobalVersion=\"1\" LocalVersion=\"3\""));
  EXPECT_THAT(out, HasSubstr("Versions\n  changed    localVersion: 2 -> 3\n  2 unchanged\n"));
  EXPECT_THAT(out, HasSubstr("  added      O = Tui Instruments, CN = Test authority\n"
                             "               SHA-256 " +
                             std::string(c_certificateFingerprint).substr(0, 35) +
                             "...\n"
                             "  removed    a text that is not readable as a certificate\n"));
  EXPECT_THAT(out, HasSubstr("  added      new = 2\n  removed    old = 1\n  1 unchanged\n"));
}

TEST_F(CliDryRun, TellsWhichKeyFilesWouldBeWritten) {
  write("in/srpubkey.bin", "public");
  write("in/reqseckey.bin", "request");
  write("agent/etc/srpubkey.bin", "another");
  write("agent/etc/reqseckey.bin", "request");
  write("in/sr2048pubkey.bin", "public 2048");
  write("in/req2048seckey.bin", "request 2048");
  write("in\\agentfipsmode", "marker");
  EXPECT_THAT(preview(document(serverSite({{"Version", "5.9"}}))),
              HasSubstr("Files beside the list\n"
                        "  changed    srpubkey.bin\n"
                        "  added      sr2048pubkey.bin\n"
                        "  added      req2048seckey.bin\n"
                        "  added      etc\\agentfipsmode\n"
                        "  1 unchanged\n"));
}

TEST_F(CliDryRun, TellsThatAStaleRequestKeyWouldGo) {
  write("keys/srpubkey.bin", "public");
  write("agent/etc/reqseckey.bin", "stale");
  const auto before = agentFiles();
  const std::string path = write("in/list.xml", document(httpSite("depot")));
  const Output output = sitelist({"import", "--dry-run", "--keys", file("keys"), path});
  EXPECT_THAT(output.out, HasSubstr("Files beside the list\n"
                                    "  added      srpubkey.bin\n"
                                    "  removed    reqseckey.bin\n"));
  EXPECT_EQ(agentFiles(), before);
  ASSERT_EQ(sitelist({"import", "--keys", file("keys"), path}).status, 0);
  EXPECT_FALSE(exists(file("agent/etc/reqseckey.bin"))) << "the dry run announced this removal";
}

TEST_F(CliDryRun, WritesNothingAtAllIntoAnAgentWithoutLocksAndKeys) {
  const std::string bare = file("bare");
  write("bare/etc/SiteList.xml", document(httpSite("depot", "1", "protected elsewhere")));
  const auto before = snapshot(bare);
  const std::string path =
      write("in/list.xml", document(httpSite("depot", "1", "protected elsewhere")));
  const Output refused = this->bare({"--agent-dir", bare, "import", "--dry-run", path});
  EXPECT_EQ(refused.status, 5) << refused.err;
  EXPECT_EQ(snapshot(bare), before);
  const Output output =
      this->bare({"--agent-dir", bare, "import", "--dry-run", "--allow-lost-passwords", path});
  EXPECT_EQ(output.status, 0) << output.err;
  EXPECT_EQ(snapshot(bare), before);
  EXPECT_FALSE(exists(bare + "/locks"));
  EXPECT_FALSE(exists(bare + "/keystore"));
}

TEST_F(CliDryRun, NeedsTheDataDirectoryOfAnAgent) {
  const std::string in = write("in/list.xml", document(httpSite("Depot")));
  for (const Arguments& arguments : {Arguments{"import", in},
                                     {"install", in},
                                     {"modify", "--servers", in},
                                     {"merge", "--first", in},
                                     {"policies", "set", "Name", "Value"},
                                     {"policies", "unset", "Name"},
                                     {"edit", "disable", "Depot"},
                                     {"undo"}}) {
    const Output output =
        bare(Arguments{"--agent-dir", file("none")} + arguments + Arguments{"--dry-run"});
    EXPECT_EQ(output.status, 4) << testing::PrintToString(arguments);
    EXPECT_EQ(output.err, "sitelist: " + file("none") +
                              ": the agent's data directory does not exist\n"
                              "  next: name another directory with --agent-dir, or create one "
                              "with `sitelist init`\n")
        << testing::PrintToString(arguments);
  }
}

TEST_F(CliDryRun, FailsAsTheImportWould) {
  write("agent/agent.toml", "managed = true\n");
  const auto before = agentFiles();
  const std::string incomplete = write("a.xml", document(serverSite({{"Name", ""}})));
  const std::string keyless = write("b.xml", document(serverSite({{"Version", "5.9"}})));
  const std::string broken = write("c.xml", "<a>");
  for (const auto& [path, status] : std::map<std::string, int>{
           {incomplete, 1}, {keyless, 1}, {broken, 3}, {file("none.xml"), 4}}) {
    const Output output = sitelist({"import", "--dry-run", path});
    EXPECT_EQ(output.status, status) << path << output.err;
    EXPECT_EQ(output.err, sitelist({"import", path}).err);
    EXPECT_EQ(output.out, "");
  }
  const Output keys = sitelist({"install", "--dry-run", keyless});
  EXPECT_EQ(keys.status, 5);
  EXPECT_EQ(keys.err, sitelist({"install", keyless}).err);
  EXPECT_EQ(agentFiles(), before);
}

}  // namespace
}  // namespace test
