#include "tests/cli/cli_fixture.h"
#include "tests/cli/documents.h"

namespace test {
namespace {

using testing::HasSubstr;
using testing::Not;

class CliIncoming : public CliTest {
 protected:
  void SetUp() override {
    initAgent();
    setOwnList(document(httpSite("depot")));
  }
};

TEST_F(CliIncoming, ADocumentThatIsNoSiteListIsRefused) {
  const auto before = agentFiles();
  for (const char* text : {"<configuration/>", "<configuration><SiteList/></configuration>",
                           "<SiteLists2/>", "<ns:sitelists/>"}) {
    const std::string path = write("list.xml", text);
    for (const std::vector<std::string>& command : {
             std::vector<std::string>{"install", path},
             {"install", "--allow-empty", path},
             {"install", "--dry-run", path},
             {"import", path},
             {"import", "--dry-run", path},
             {"server-list", path},
             {"server-list", "--adjust-passwords", path},
         }) {
      SCOPED_TRACE(text + testing::PrintToString(command));
      const Output output = sitelist(command);
      EXPECT_EQ(output.status, 3);
      EXPECT_THAT(output.err,
                  HasSubstr(path + ": the document is not a site list\n  its root is "));
      EXPECT_EQ(agentFiles(), before);
    }
  }
}

TEST_F(CliIncoming, ThePrefixAndTheNamespaceOfTheRootDoNotMatter) {
  const std::string content = "<SiteList>" + httpSite("new") + "</SiteList>";
  for (const char* root : {"SiteLists", "ns:SiteLists", "other:SiteLists"}) {
    const std::string path =
        write("list.xml", "<" + std::string(root) + ">" + content + "</" + root + ">");
    EXPECT_EQ(sitelist({"install", path}).status, 0) << root;
    EXPECT_EQ(sitelist({"server-list", path}).status, 0) << root;
  }
}

TEST_F(CliIncoming, AListWithoutSitesNeedsAnOption) {
  const auto before = agentFiles();
  for (const std::string& text : {document(""), std::string("<ns:SiteLists/>")}) {
    const std::string path = write("list.xml", text);
    for (const std::vector<std::string>& command :
         {std::vector<std::string>{"install", path}, {"install", "--dry-run", path}}) {
      SCOPED_TRACE(testing::PrintToString(command));
      const Output refused = sitelist(command);
      EXPECT_EQ(refused.status, 1);
      EXPECT_THAT(refused.err, HasSubstr(path + ": the list has no site\n"));
      EXPECT_THAT(refused.err, HasSubstr("--allow-empty"));
      EXPECT_EQ(agentFiles(), before);
    }
    EXPECT_EQ(sitelist({"import", path}).status, 1) << "by the rule no-sites";
    EXPECT_EQ(agentFiles(), before);
  }
  const std::string path = write("list.xml", document(""));
  EXPECT_EQ(sitelist({"install", "--allow-empty", path}).status, 0);
  EXPECT_EQ(readFile(ownList()).find("depot"), std::string::npos);
}

TEST_F(CliIncoming, AnImportNamesEveryErrorBesideALastSiteOfUnknownKind) {
  write("agent/agent.toml", "managed = true\n");
  const auto before = agentFiles();
  const std::string path =
      write("list.xml", "<ns:SiteLists xmlns:ns=\"wxSiteList\">\n<SiteList>\n" +
                            serverSite({{"Name", ""}, {"ServerIP", ""}}) +
                            "\n<VestaSit/></SiteList></ns:SiteLists>");
  for (const std::vector<std::string>& command :
       {std::vector<std::string>{"import", path}, {"import", "--dry-run", path}}) {
    const Output output = sitelist(command);
    EXPECT_EQ(output.status, 3);
    EXPECT_EQ(output.err,
              "sitelist: " + path +
                  ": the last site of the list is of unknown kind (-1, 0xFFFFFFFF)\n"
                  "  line 4, column 1: unknown site element \"VestaSit\"\n  " +
                  path + ":3:1: server-name: the management server has no \"Name\"\n  " + path +
                  ":3:1: server-ip-address: the management server has no \"ServerIP\"\n"
                  "  next: fix these errors; `sitelist explain-rule RULE` says how\n");
    EXPECT_EQ(agentFiles(), before);
  }
}

// The library exchanges the orders before it looks for the key files.
TEST_F(CliIncoming, AnImportThatFailsDoesNotTellOfAnExchangeOfOrders) {
  const auto site = [](const char* kind, const char* name, const char* server, int order) {
    return "<" + std::string(kind) + " Type=\"repository\" Name=\"" + name + "\" Order=\"" +
           std::to_string(order) + "\" Enabled=\"1\" Server=\"" + server + "\"/>";
  };
  const std::string repositories = site("FTPSite", "f", "ftp.wex.example:21", 1) +
                                   site("HttpSite", "h", "update.wex.example:80", 2);
  const std::string list = write("list.xml", document(repositories));
  EXPECT_THAT(sitelist({"import", list}).err, HasSubstr("swapped the orders of the default"));
  const std::string keyless =
      write("keyless.xml", document(repositories + serverSite({{"Version", "5.9"}})));
  const Output refused = sitelist({"import", keyless});
  EXPECT_EQ(refused.status, 5);
  EXPECT_THAT(refused.err, Not(HasSubstr("swapped")));
}

TEST_F(CliIncoming, TheServerListIsStoredOnlyIfItIsADocument) {
  const auto before = agentFiles();
  for (const char* text : {"", "no markup", "<ns:SiteLists>", "\xFF\xFE"}) {
    const Output output = sitelist({"server-list"}, text);
    EXPECT_EQ(output.status, 3) << output.err;
    EXPECT_EQ(agentFiles(), before);
  }
}

}  // namespace
}  // namespace test
