#include "tests/cli/cli_fixture.h"
#include "tests/cli/documents.h"

namespace test {
namespace {

using testing::HasSubstr;
using testing::Not;

class CliEditing : public CliTest {
 protected:
  // A list of the agent with a server that the source does not have, and a comment.
  void setListToEdit() {
    initAgent();
    setOwnList(document("<!-- kept -->" + serverSite({{"Name", "Old"}}) + httpSite("depot")));
  }
};

TEST_F(CliEditing, ModifyTakesServersOverAndKeepsTheRest) {
  setListToEdit();
  const std::string source = write("in/list.xml", document(serverSite({{"Name", "New"}})));
  const Output output = sitelist({"modify", "--servers", source});
  EXPECT_EQ(output.status, 0) << output.err;
  EXPECT_EQ(output.out, "");
  EXPECT_EQ(output.err, "sitelist: " + ownList() + ": modified\n");
  const std::string list = readFile(ownList());
  EXPECT_THAT(list, HasSubstr("Name=\"New\""));
  EXPECT_THAT(list, Not(HasSubstr("Name=\"Old\"")));
  EXPECT_THAT(list, HasSubstr("<!-- kept -->"));
  EXPECT_THAT(list, HasSubstr("Name=\"depot\""));
}

TEST_F(CliEditing, ModifyWithoutAFlagTakesOnlyTheKeyFiles) {
  setListToEdit();
  const std::string source =
      write("in/list.xml", document(serverSite({{"Name", "New"}, {"Version", "5.9"}})));
  write("in/srpubkey.bin", "public");
  write("in/reqseckey.bin", "secret");
  EXPECT_EQ(sitelist({"modify", source}).status, 0);
  EXPECT_THAT(readFile(ownList()), HasSubstr("Name=\"Old\""));
  EXPECT_EQ(readFile(file("agent/etc/srpubkey.bin")), "public");
}

TEST_F(CliEditing, ModifyDryRunSaysWhatWouldChangeAndWritesNothing) {
  setListToEdit();
  const std::string source = write("in/list.xml", document(serverSite({{"Name", "New"}})));
  const auto before = agentFiles();
  const Output output = sitelist({"modify", "--servers", "--dry-run", source});
  EXPECT_EQ(output.status, 0) << output.err;
  EXPECT_THAT(output.out, HasSubstr("New"));
  EXPECT_THAT(output.out, HasSubstr("Old"));
  EXPECT_THAT(output.out, HasSubstr("Nothing was written."));
  EXPECT_EQ(agentFiles(), before);
}

TEST_F(CliEditing, ModifyWithoutAListOfItsOwnFails) {
  initAgent();
  const std::string source = write("in/list.xml", document(serverSite()));
  const Output output = sitelist({"modify", "--servers", source});
  EXPECT_EQ(output.status, 4);
  EXPECT_THAT(output.err, HasSubstr(ownList() + ": the file does not exist (-4, 0xFFFFFFFC)"));
}

TEST_F(CliEditing, ModifyNamesThePlaceOfAFaultInTheSource) {
  setListToEdit();
  const auto before = agentFiles();
  const std::string source = write("in/list.xml", "<ns:SiteLists>\n</a>");
  const Output output = sitelist({"modify", "--servers", source});
  EXPECT_EQ(output.status, 3);
  EXPECT_THAT(output.err, HasSubstr(source));
  EXPECT_THAT(output.err, HasSubstr("line 2, column 3"));
  EXPECT_EQ(agentFiles(), before);
}

TEST_F(CliEditing, ModifyNamesThePlaceOfALastSiteOfUnknownKindInTheSource) {
  setListToEdit();
  const auto before = agentFiles();
  const std::string source = write("in/list.xml",
                                   "<ns:SiteLists xmlns:ns=\"wxSiteList\">\n <SiteList>\n  <Odd/>\n"
                                   " </SiteList>\n</ns:SiteLists>\n");
  for (const char* const option : {"--servers", "--dry-run"}) {
    const Output output = sitelist({"modify", option, source});
    EXPECT_EQ(output.status, 3);
    EXPECT_THAT(output.err,
                HasSubstr(source + ": the last site of the list is of unknown kind "
                                   "(-1, 0xFFFFFFFF)\n  line 3, column 3: unknown site element "
                                   "\"Odd\"\n"));
  }
  EXPECT_EQ(agentFiles(), before);
}

TEST_F(CliEditing, ModifyRefusesWhatIsNoSiteList) {
  setListToEdit();
  const std::string source = write("in/list.xml", "<other/>");
  const Output output = sitelist({"modify", "--servers", source});
  EXPECT_EQ(output.status, 3);
  EXPECT_THAT(output.err, HasSubstr("the document is not a site list"));
}

TEST_F(CliEditing, ModifyWithoutTheKeyFilesOfAServerFails) {
  setListToEdit();
  const std::string before = readFile(ownList());
  const std::string source = write("in/list.xml", document(serverSite({{"Version", "5.9"}})));
  const Output output = sitelist({"modify", "--servers", source});
  EXPECT_EQ(output.status, 5);
  EXPECT_THAT(output.err, HasSubstr("the key files that belong to the list could not be copied"));
  EXPECT_EQ(readFile(ownList()), before);
}

TEST_F(CliEditing, DeriveLeavesLocalRepositoriesOut) {
  const std::string local = "<UNCSite Name=\"near\" Local=\"1\"/>";
  write("lists/SiteList.xml", document(serverSite() + local + httpSite("depot")));
  const Output output = bare({"derive-server-list", file("lists")});
  EXPECT_EQ(output.status, 0) << output.err;
  EXPECT_EQ(output.err, "sitelist: wrote " + file("lists/ServerSiteList.xml") + "\n");
  const std::string derived = readFile(file("lists/ServerSiteList.xml"));
  EXPECT_THAT(derived, HasSubstr("Name=\"depot\""));
  EXPECT_THAT(derived, Not(HasSubstr("near")));
}

TEST_F(CliEditing, DeriveWritesIntoAnotherDirectoryThatMustExist) {
  write("lists/SiteList.xml", document(httpSite("depot")));
  write("out/other", "");
  EXPECT_EQ(bare({"derive-server-list", file("lists"), file("out")}).status, 0);
  EXPECT_TRUE(exists(file("out/ServerSiteList.xml")));
  EXPECT_FALSE(exists(file("lists/ServerSiteList.xml")));
  const Output output = bare({"derive-server-list", file("lists"), file("none")});
  EXPECT_EQ(output.status, 4);
  EXPECT_THAT(output.err, HasSubstr("the file could not be written (-11, 0xFFFFFFF5)"));
}

TEST_F(CliEditing, DeriveSaysWhatIsWrongWithTheSource) {
  const Output missing = bare({"derive-server-list", file("lists")});
  EXPECT_EQ(missing.status, 4);
  write("lists/SiteList.xml", "<ns:SiteLists xmlns:ns=\"wxSiteList\"/>");
  const Output empty = bare({"derive-server-list", file("lists")});
  EXPECT_EQ(empty.status, 3);
  EXPECT_THAT(empty.err, HasSubstr("the document has no \"SiteList\""));
}

TEST_F(CliEditing, ServerListIsStoredByteForByte) {
  initAgent();
  const std::string text = document(httpSite("depot")) + "<!-- as it is -->\n";
  EXPECT_EQ(sitelist({"server-list"}, text).status, 0);
  EXPECT_EQ(readFile(file("agent/ServerSiteList.xml")), text);
  const std::string path = write("list.xml", document(httpSite("other")));
  EXPECT_EQ(sitelist({"server-list", path}).status, 0);
  EXPECT_EQ(readFile(file("agent/ServerSiteList.xml")), readFile(path));
}

TEST_F(CliEditing, ServerListIsRewrittenToAdjustPasswords) {
  initAgent();
  const Output output =
      sitelist({"server-list", "--adjust-passwords", "-"}, document(httpSite("depot")));
  EXPECT_EQ(output.status, 0) << output.err;
  const std::string list = readFile(file("agent/ServerSiteList.xml"));
  EXPECT_THAT(list, HasSubstr("Encrypted=\"1\""));
  EXPECT_THAT(list, HasSubstr("GlobalVersion=\"20260101000000\""));
}

TEST_F(CliEditing, ServerListSaysOnceThatTheServersKeyIsMissing) {
  initAgent();
  const std::string sites = httpSite("one", "1", "QUJD") + httpSite("two", "2", "QUJD");
  const Output output =
      sitelist({"server-list", "--adjust-passwords", "--allow-lost-passwords"}, document(sites));
  EXPECT_EQ(output.status, 0) << output.err;
  const std::size_t first = output.err.find("keystore/server.key: cannot be opened");
  ASSERT_NE(first, std::string::npos) << output.err;
  EXPECT_EQ(output.err.find("keystore/server.key", first + 1), std::string::npos) << output.err;
}

TEST_F(CliEditing, ServerListThatIsNoDocumentChangesNothing) {
  initAgent();
  EXPECT_EQ(sitelist({"server-list"}, document(httpSite("depot"))).status, 0);
  const auto before = agentFiles();
  const Output output = sitelist({"server-list", "--adjust-passwords"}, "<a>");
  EXPECT_EQ(output.status, 3);
  EXPECT_THAT(output.err, HasSubstr("standard input: the document is not well formed"));
  EXPECT_EQ(agentFiles(), before);
}

TEST_F(CliEditing, FromBufferRefusesWhatIsNoDocument) {
  initAgent();
  const auto before = agentFiles();
  const Output empty = sitelist({"from-buffer"}, "");
  EXPECT_EQ(empty.status, 3);
  EXPECT_THAT(empty.err, HasSubstr("(-2, 0xFFFFFFFE)"));
  const Output broken = sitelist({"from-buffer", "-"}, "<a>\n<b>");
  EXPECT_EQ(broken.status, 3);
  EXPECT_THAT(broken.err, HasSubstr("(-5, 0xFFFFFFFB)"));
  EXPECT_THAT(broken.err, HasSubstr("line 2"));
  const Output unknown = sitelist({"from-buffer", write("list.xml", document("<What/>"))});
  EXPECT_EQ(unknown.status, 3);
  EXPECT_THAT(unknown.err, HasSubstr("(-1, 0xFFFFFFFF)"));
  const Output encoding = sitelist({"from-buffer"}, "<a>\xC3</a>");
  EXPECT_EQ(encoding.status, 3);
  EXPECT_THAT(encoding.err, HasSubstr("not valid"));
  EXPECT_EQ(agentFiles(), before);
}

TEST_F(CliEditing, FilesThatCannotBeReadAreNamed) {
  initAgent();
  for (const char* command : {"from-buffer", "server-list"}) {
    const Output output = sitelist({command, file("none.xml")});
    EXPECT_EQ(output.status, 4);
    EXPECT_THAT(output.err, HasSubstr(file("none.xml") +
                                      ": the file does not exist\n  next: check the path\n"));
  }
}

}  // namespace
}  // namespace test
