#include <sys/stat.h>

#include <filesystem>

#include "tests/cli/cli_fixture.h"
#include "tests/cli/documents.h"

namespace test {
namespace {

using testing::HasSubstr;
using testing::Not;

class CliImport : public CliTest {
 protected:
  // An incoming list of a server with a version, and its key files.
  std::string incomingWithKeys() {
    for (const char* name : {"srpubkey.bin", "reqseckey.bin"}) {
      write(std::string("in/") + name, std::string("content of ") + name);
    }
    return write("in/list.xml", document(serverSite({{"Version", "5.9"}}) + httpSite("depot")));
  }
};

TEST_F(CliImport, MakesTheListAndItsKeyFilesTheAgentsOwn) {
  initAgent({"--managed"});
  const Output output = sitelist({"import", incomingWithKeys()});
  EXPECT_EQ(output.status, 0) << output.err;
  EXPECT_EQ(output.out, "");
  EXPECT_EQ(output.err,
            "sitelist: " + ownList() + " now has 2 entries, global version 20260101000000\n");
  EXPECT_THAT(readFile(ownList()), HasSubstr("LocalVersion=\"20260102000000\""));
  EXPECT_EQ(readFile(file("agent/etc/srpubkey.bin")), "content of srpubkey.bin");
  EXPECT_EQ(readFile(file("agent/etc/reqseckey.bin")), "content of reqseckey.bin");
  EXPECT_EQ(readFile(file("agent/mesh/SiteList.xml")), readFile(ownList()));
}

TEST_F(CliImport, RefusesAListThatBreaksRulesAndNamesThem) {
  initAgent({"--managed"});
  setOwnList(document(serverSite()));
  const auto before = agentFiles();
  const std::string path = write(
      "list.xml", "<ns:SiteLists xmlns:ns=\"wxSiteList\">\n<SiteList>\n" +
                      serverSite({{"Name", ""}, {"ServerIP", ""}}) + "</SiteList></ns:SiteLists>");
  const Output output = sitelist({"import", path});
  EXPECT_EQ(output.status, 1);
  EXPECT_EQ(output.err, "sitelist: " + path +
                            ": the list was refused and nothing was changed (-9, 0xFFFFFFF7)\n  " +
                            path + ":3:1: server-name: the management server has no \"Name\"\n  " +
                            path +
                            ":3:1: server-ip-address: the management server has no \"ServerIP\"\n"
                            "  next: fix these errors; `sitelist explain-rule RULE` says how\n");
  EXPECT_EQ(agentFiles(), before);
}

TEST_F(CliImport, ChecksForAServerOnlyOnAManagedAgent) {
  const std::string path = write("list.xml", document(httpSite("depot")));
  initAgent();
  EXPECT_EQ(sitelist({"import", path}).status, 0);
  write("agent/agent.toml", "managed = true\n");
  const Output refused = sitelist({"import", path});
  EXPECT_EQ(refused.status, 1);
  EXPECT_THAT(refused.err, HasSubstr("(-8, 0xFFFFFFF8)"));
  EXPECT_EQ(sitelist({"install", path}).status, 0) << "install checks nothing";
}

TEST_F(CliImport, NamesThePlaceOfALastSiteOfUnknownKind) {
  initAgent();
  const std::string path = write("list.xml",
                                 "<ns:SiteLists>\n <SiteList>\n  <VestaSit/>\n"
                                 " </SiteList>\n</ns:SiteLists>\n");
  const Output output = sitelist({"import", path});
  EXPECT_EQ(output.status, 3);
  EXPECT_EQ(output.err, "sitelist: " + path +
                            ": the last site of the list is of unknown kind (-1, 0xFFFFFFFF)\n"
                            "  line 3, column 3: unknown site element \"VestaSit\"\n"
                            "  next: correct the name of the element\n");
}

TEST_F(CliImport, PassesOnTheLibrarysWarnings) {
  initAgent();
  const std::string path =
      write("list.xml", document(httpSite("depot"),
                                 "<Policies><Setting name=\"OverwriteClientSites\">1</Setting>"
                                 "</Policies>"));
  const Output output = sitelist({"import", path});
  EXPECT_EQ(output.status, 0);
  EXPECT_THAT(output.err, HasSubstr("sitelist: warning: " + path +
                                    ": the next list from the management server "
                                    "will overwrite this one (policy setting "
                                    "\"OverwriteClientSites\")\n"));
}

TEST_F(CliImport, SaysThatTheMeshServiceWasNotReached) {
  ASSERT_EQ(sitelist({"init", "--mesh-command", "/bin/sh", "-c", "exit 3"}).status, 0);
  const Output output = sitelist({"import", write("list.xml", document(httpSite("depot")))});
  EXPECT_EQ(output.status, 0);
  EXPECT_THAT(
      output.err,
      HasSubstr(
          "sitelist: warning: Mesh service load command /bin/sh failed: it ended with status 3\n"
          "  next: run the command by hand; the log has its output\n"));
  EXPECT_THAT(output.err, Not(HasSubstr("Load new sitelist command failed.")));
}

// The class logs an error for a list without sites, although the operation succeeds.
TEST_F(CliImport, RepeatsNoErrorOfTheLogAfterASuccess) {
  initAgent();
  const std::string path = write("list.xml", document(""));
  const Output quiet = sitelist({"install", "--allow-empty", path});
  EXPECT_EQ(quiet.status, 0);
  EXPECT_THAT(quiet.err, Not(HasSubstr("Failed hr=0")));
  const Output verbose = sitelist({"--verbose", "install", "--allow-empty", path});
  EXPECT_EQ(verbose.status, 0);
  EXPECT_THAT(verbose.err, HasSubstr("error SiteHlp: Failed hr=0\n"));
}

TEST_F(CliImport, NamesTheSitesWhosePasswordsAreLost) {
  initAgent();
  const std::string good = protectedText("good");
  const std::string path = write(
      "list.xml", document(httpSite("kept", "1", good) + httpSite("lost", "2", "never protected")));
  const Output output = sitelist({"import", "--allow-lost-passwords", path});
  EXPECT_EQ(output.status, 0);
  EXPECT_THAT(output.err, HasSubstr("a password of site \"lost\" cannot be decrypted with the "
                                    "password key; it is now empty"));
  EXPECT_THAT(output.err, Not(HasSubstr("of kept")));
}

TEST_F(CliImport, MissingKeyFilesAreAKeyFailure) {
  initAgent();
  const std::string path = write("in/list.xml", document(serverSite({{"Version", "5.9"}})));
  const Output beside = sitelist({"install", path});
  EXPECT_EQ(beside.status, 5);
  EXPECT_THAT(beside.err, HasSubstr("key files that belong to the list could not be copied (-1, "
                                    "0xFFFFFFFF)\n  " +
                                    file("in/srpubkey.bin") + ": No such file or directory\n"));
  EXPECT_THAT(beside.err, HasSubstr("\n  next: put srpubkey.bin and reqseckey.bin"));
  const std::string unversioned = write("list.xml", document(httpSite("depot")));
  const Output named = sitelist({"import", unversioned, "--keys", file("tmp")});
  EXPECT_EQ(named.status, 5);
  EXPECT_THAT(named.err, HasSubstr("\n  " + file("tmp/srpubkey.bin") +
                                   ": No such file or directory\n  next: put a srpubkey.bin that "
                                   "is not empty into the directory of --keys, or omit --keys\n"));
  EXPECT_THAT(named.err, Not(HasSubstr("reqseckey")));
  EXPECT_FALSE(exists(ownList()));
}

TEST_F(CliImport, NamesEachKeyFileThatCannotBeUsed) {
  initAgent();
  const std::string path = write("in/list.xml", document(serverSite({{"Version", "5.9"}})));
  write("in/srpubkey.bin", "key");
  write("in/sr2048pubkey.bin", "");
  std::filesystem::create_directory(file("in/req2048seckey.bin"));
  const Output output = sitelist({"install", path});
  EXPECT_EQ(output.status, 5);
  EXPECT_THAT(output.err, HasSubstr("(-1, 0xFFFFFFFF)\n  " + file("in/reqseckey.bin") +
                                    ": No such file or directory\n  " +
                                    file("in/sr2048pubkey.bin") + ": it is empty\n  " +
                                    file("in/req2048seckey.bin") + ": it is a directory\n"));
}

TEST_F(CliImport, TakesThePublicKeyFromTheNamedDirectory) {
  initAgent();
  write("keys/srpubkey.bin", "public");
  const std::string path = write("list.xml", document(httpSite("depot")));
  EXPECT_EQ(sitelist({"import", path, "--keys", file("keys")}).status, 0);
  EXPECT_EQ(readFile(file("agent/etc/srpubkey.bin")), "public");
}

TEST_F(CliImport, AListThatCannotBeWrittenIsAFileFailure) {
  initAgent();
  write("agent/etc/SiteList.xml/in-the-way", "");
  const Output output = sitelist({"import", write("list.xml", document(httpSite("depot")))});
  EXPECT_EQ(output.status, 4) << output.err;
  EXPECT_THAT(output.err,
              testing::EndsWith(ownList() + ": the list could not be written (-1, 0xFFFFFFFF)\n"
                                            "  Is a directory\n"
                                            "  next: check that its directory exists, that you may "
                                            "write there and that there is free space\n"));
  EXPECT_THAT(output.err, Not(HasSubstr("not written: ")));
}

TEST_F(CliImport, ADirectoryThatCannotBeMadeIsAFileFailure) {
  write("agent/etc", "a file in its place");
  const Output output = sitelist({"import", write("list.xml", document(httpSite("depot")))});
  EXPECT_EQ(output.status, 4) << output.err;
  EXPECT_THAT(output.err, HasSubstr(file("agent/etc") + ": the agent's files could not be"));
}

TEST_F(CliImport, ABrokenDocumentLeavesEverythingAsItWas) {
  initAgent();
  setOwnList(document(httpSite("depot")));
  const auto before = agentFiles();
  const Output output = sitelist({"import", write("list.xml", "<a>\n<b></a>")});
  EXPECT_EQ(output.status, 3);
  EXPECT_THAT(output.err, HasSubstr("list.xml: the document is not well formed (-5, 0xFFFFFFFB)\n"
                                    "  line 2, column "));
  EXPECT_EQ(sitelist({"install", file("none.xml")}).status, 4);
  EXPECT_EQ(agentFiles(), before);
}

}  // namespace
}  // namespace test
