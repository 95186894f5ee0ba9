#include "tests/cli/cli_fixture.h"
#include "tests/cli/documents.h"

namespace test {
namespace {

using testing::HasSubstr;
using testing::Not;

constexpr const char* c_proxy = "<ProxyConfigList><ProxyConfig Name=\"p\"/></ProxyConfigList>";

class CliMerge : public CliTest {
 protected:
  void SetUp() override {
    initAgent();
    setOwnList(document(serverSite({{"Name", "own-server"}}) + httpSite("own-site") +
                            "<HttpSite Type=\"fallback\" Name=\"own-fallback\"/>",
                        "<CaBundle><CaCertificate>own-text</CaCertificate></CaBundle><Policies>"
                        "<Setting name=\"of\">own</Setting></Policies>",
                        "GlobalVersion=\"own-version\" LocalVersion=\"old\""));
  }
};

TEST_F(CliMerge, PutsTheFirstListsServersIntoTheOwnList) {
  const std::string first =
      write("first.xml", document(serverSite({{"Name", "first-server"}}) + httpSite("first-site")));
  const auto before = agentFiles();
  const Output output = sitelist({"merge", "--first", first});
  EXPECT_EQ(output.status, 0) << output.err;
  EXPECT_EQ(output.err, "");
  const std::string merged = write("merged.xml", output.out);
  const std::string shown = sitelist({"show", merged}).out;
  EXPECT_THAT(shown, HasSubstr("first-server"));
  EXPECT_THAT(shown, HasSubstr("own-site"));
  EXPECT_THAT(shown, HasSubstr("own-fallback"));
  EXPECT_THAT(shown, Not(HasSubstr("own-server")));
  EXPECT_THAT(shown, Not(HasSubstr("first-site")));
  EXPECT_THAT(output.out, HasSubstr("GlobalVersion=\"own-version\""));
  EXPECT_THAT(output.out, Not(HasSubstr("LocalVersion=\"old\"")));
  EXPECT_THAT(output.out, HasSubstr("own-text"));
  EXPECT_THAT(output.out, HasSubstr("<Setting name=\"of\">own</Setting>"));
  EXPECT_EQ(agentFiles(), before) << "neither the own list nor the mesh copy has changed";
}

TEST_F(CliMerge, AppendsTheFirstListWithoutItsProxyToTheSecond) {
  const std::string first = write("first.xml", document(c_proxy + httpSite("first-site")));
  const std::string second = write(
      "second.xml",
      document(httpSite("second-site"), "", "GlobalVersion=\"second-version\" LocalVersion=\"1\""));
  const std::string target = file("merged.xml");
  const Output output =
      sitelist({"merge", "--first", first, "--second", second, "--output", target});
  EXPECT_EQ(output.status, 0) << output.err;
  EXPECT_EQ(output.out, "");
  EXPECT_EQ(output.err, "sitelist: wrote 2 entries to " + target + "\n");
  const std::string merged = readFile(target);
  EXPECT_LT(merged.find("second-site"), merged.find("first-site"));
  EXPECT_THAT(merged, HasSubstr("GlobalVersion=\"second-version\""));
  EXPECT_THAT(merged, Not(HasSubstr("own")));
  EXPECT_THAT(merged, Not(HasSubstr("ProxyConfig")));
}

TEST_F(CliMerge, PutsTheOwnServersIntoTheSecondListAlone) {
  const std::string second = write(
      "second.xml", document(serverSite({{"Name", "second-server"}}) + httpSite("second-site")));
  const Output output = sitelist({"merge", "--second", second});
  EXPECT_EQ(output.status, 0) << output.err;
  EXPECT_THAT(output.out, HasSubstr("own-server"));
  EXPECT_THAT(output.out, HasSubstr("second-site"));
  EXPECT_THAT(output.out, HasSubstr("own-fallback"));
  EXPECT_THAT(output.out, Not(HasSubstr("second-server")));
  EXPECT_THAT(output.out, Not(HasSubstr("own-site")));
}

TEST_F(CliMerge, CarriesPasswordsAlong) {
  setOwnList(document(httpSite("depot", "1", protectedText("fair & windy"))));
  const std::string merged = file("merged.xml");
  EXPECT_EQ(sitelist({"merge", "--output", merged}).status, 0);
  EXPECT_THAT(sitelist({"show", "--json", "--show-secrets", merged}).out,
              HasSubstr("fair & windy"));
}

TEST_F(CliMerge, WritesTheOwnListAndTellsTheMeshServiceWhenThatIsTheOutput) {
  const std::string first = write("first.xml", document(serverSite({{"Name", "first-server"}})));
  const Output output = sitelist({"merge", "--first", first, "--output", ownList()});
  EXPECT_EQ(output.status, 0) << output.err;
  EXPECT_THAT(readFile(ownList()), HasSubstr("first-server"));
  EXPECT_EQ(readFile(file("agent/mesh/SiteList.xml")), readFile(ownList()));
}

TEST_F(CliMerge, RefusesToLosePasswords) {
  const std::string first = write("first.xml", document(httpSite("depot", "1", "never protected")));
  const auto before = agentFiles();
  const Output output = sitelist({"merge", "--first", first, "--output", ownList()});
  EXPECT_EQ(output.status, 5);
  EXPECT_THAT(output.err, HasSubstr(first + ": passwords cannot be decrypted with the password "
                                            "key:\n  site \"depot\"\n"));
  EXPECT_EQ(agentFiles(), before);
}

TEST_F(CliMerge, FailsOnWhatCannotBeRead) {
  EXPECT_EQ(sitelist({"merge", "--first", file("none.xml")}).status, 4);
  EXPECT_EQ(sitelist({"merge", "--second", write("broken.xml", "<a>")}).status, 3);
  EXPECT_EQ(sitelist({"merge", "--output", file("no/such/directory.xml")}).status, 4);
}

class CliRewrite : public CliTest {};

TEST_F(CliRewrite, CarriesEverythingThatIsReadOver) {
  initAgent();
  const std::string source = write(
      "source.xml",
      document(httpSite("depot", "3", protectedText("fair & windy")),
               "<CaBundle><CaCertificate>one</CaCertificate><CaCertificate>two</CaCertificate>"
               "</CaBundle><Policies><Setting name=\"a\">1</Setting></Policies>",
               "GlobalVersion=\"g\" LocalVersion=\"l\" Type=\"Server\" FipsMode=\"1\""));
  const auto before = agentFiles();
  const std::string target = file("target.xml");
  const Output output = sitelist({"rewrite", source, target});
  EXPECT_EQ(output.status, 0) << output.err;
  EXPECT_THAT(output.err, HasSubstr("the FIPS mode \"1\" is not kept\n"));
  EXPECT_THAT(output.err, HasSubstr("wrote 1 entry to " + target));
  EXPECT_EQ(sitelist({"versions", target}).out,
            "global version  g\nlocal version   l\ntype            Server\n"
            "FIPS mode       none\n");
  EXPECT_EQ(sitelist({"policies", target}).out, "a = 1\n");
  const std::string certificates = sitelist({"certs", target}).out;
  EXPECT_LT(certificates.find("one"), certificates.find("two"));
  EXPECT_THAT(sitelist({"show", "--json", "--show-secrets", target}).out,
              HasSubstr("fair & windy"));
  EXPECT_EQ(agentFiles(), before);
}

TEST_F(CliRewrite, RefusesToLosePasswords) {
  initAgent();
  const std::string source = write("source.xml", document(httpSite("depot", "1", "elsewhere")));
  const Output output = sitelist({"rewrite", source, file("target.xml")});
  EXPECT_EQ(output.status, 5);
  EXPECT_FALSE(exists(file("target.xml")));
}

TEST_F(CliRewrite, NeedsTheAgentsKey) {
  const std::string source = write("source.xml", document(httpSite("depot")));
  EXPECT_EQ(sitelist({"rewrite", source, file("target.xml")}).status, 4) << "no agent at all";
  write("agent/etc/other", "");
  const Output output = sitelist({"rewrite", source, file("target.xml")});
  EXPECT_EQ(output.status, 5);
  EXPECT_THAT(output.err, HasSubstr("password.key: the agent has no password key\n  next: "));
  EXPECT_FALSE(exists(file("target.xml")));
}

}  // namespace
}  // namespace test
