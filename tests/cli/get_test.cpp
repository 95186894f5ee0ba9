#include "tests/cli/edit_fixture.h"
#include "tests/cli/json_report.h"

namespace test {
namespace {

using testing::HasSubstr;

class CliGet : public CliTest {
 protected:
  // Returns the printed value. Fails the test if there is none.
  std::string value(const Arguments& arguments) {
    const Output output = sitelist(Arguments{"get"} + arguments);
    EXPECT_EQ(output.status, 0) << testing::PrintToString(arguments) << output.err;
    EXPECT_EQ(output.err, "");
    EXPECT_THAT(output.out, testing::EndsWith("\n"));
    return output.out.substr(0, output.out.size() - 1);
  }

  void fail(int status, const Arguments& arguments, const std::string& message) {
    const Output output = sitelist(Arguments{"get"} + arguments);
    EXPECT_EQ(output.status, status) << testing::PrintToString(arguments) << output.out;
    EXPECT_EQ(output.out, "");
    EXPECT_THAT(output.err, HasSubstr(message));
    EXPECT_THAT(output.err, HasSubstr("\n  next: "));
  }

  // Expects that `get` prints each field of each site and proxy as `show --json` has it.
  void expectEveryField(const std::string& path) {
    for (const auto& row : readReport(sitelist({"show", "--json", path}).out).rows) {
      for (const auto& [name, expected] : row) {
        EXPECT_EQ(value({name, path, "--site", row.at("name"), "--kind", row.at("kind")}), expected)
            << row.at("kind") << ' ' << name;
      }
    }
  }
};

TEST_F(CliGet, PrintsWhatTheListSaysOfItself) {
  const std::string path = write("list.xml", document("", "",
                                                      "GlobalVersion=\"g 1\" LocalVersion=\"l\" "
                                                      "Type=\"Server\" FipsMode=\"2\""));
  EXPECT_EQ(value({"globalVersion", path}), "g 1");
  EXPECT_EQ(value({"localVersion", path}), "l");
  EXPECT_EQ(value({"type", path}), "Server");
  EXPECT_EQ(value({"fipsMode", path}), "2");
}

TEST_F(CliGet, PrintsEveryFieldOfASite) {
  expectEveryField(write("list.xml", document(serverSite({{"SecurePort", "443"}}))));
}

TEST_F(CliGet, PrintsEveryFieldOfAProxy) {
  expectEveryField(
      write("list.xml", document("<ProxyConfigList><ProxyConfig Name=\"p\" HttpProxyServer=\"h\" "
                                 "HttpProxyPort=\"3128\"><BypassLocalAddress>1"
                                 "</BypassLocalAddress></ProxyConfig></ProxyConfigList>")));
}

TEST_F(CliGet, PrintsPolicySettingsByTheirWholeName) {
  const std::string path =
      write("list.xml", document("",
                                 "<Policies><Setting name=\"a.b c\">x = 1</Setting><Setting "
                                 "name=\"empty\"></Setting></Policies>"));
  EXPECT_EQ(value({"policy.a.b c", path}), "x = 1");
  EXPECT_EQ(value({"policy.empty", path}), "");
  fail(7, {"policy.a", path}, "there is no policy setting \"a\"");
  fail(7, {"policy.", path}, "there is no policy setting \"\"");
}

TEST_F(CliGet, ReadsTheAgentsOwnListWithoutAFile) {
  initAgent();
  setOwnList(document(httpSite("of-the-agent")));
  EXPECT_EQ(value({"server", "--site", "of-the-agent"}), "depot.example");
  EXPECT_EQ(value({"type"}), "Client");
}

TEST_F(CliGet, PrintsTheVeryTextUnlessOnATerminal) {
  const std::string path = write("list.xml", document(httpSite("a&#10;b"), "",
                                                      "GlobalVersion=\"1&#10;2&#x9B;\" "
                                                      "LocalVersion=\"1\\u000A\""));
  EXPECT_EQ(value({"globalVersion", path}), "1\n2\u009B");
  EXPECT_EQ(value({"localVersion", path}), "1\\u000A");
  EXPECT_EQ(value({"serverPort", path, "--site", "a\nb"}), "8080");
  EXPECT_THAT(onTerminal(80, {"get", "globalVersion", path}).out, HasSubstr("1\\u000A2\\u009B"));
  EXPECT_THAT(onTerminal(80, {"get", "localVersion", path}).out, HasSubstr("1\\u005Cu000A"));
}

TEST_F(CliGet, FailsWithStatus7OnWhatIsNotThere) {
  const std::string path = write("list.xml", document(httpSite("depot")));
  fail(7, {"fipsMode", path}, "the list has no FIPS mode");
  fail(7, {"server", path, "--site", "Depot"}, "there is no site \"Depot\"; did you mean depot?\n");
  fail(7, {"server", path, "--site", "depot", "--kind", "ftp"},
       "there is no site \"depot\" of kind ftp\n");
  fail(7, {"shareName", path, "--site", "depot"}, "a site of kind http has no field \"shareName\"");
}

TEST_F(CliGet, FailsWithStatus2OnWhatIsNoField) {
  const std::string path = write("list.xml", document(httpSite("depot")));
  fail(2, {"server", path}, "a field of a site with --site NAME");
  fail(2, {"file", path}, "unknown field \"file\"");
  fail(2, {"nothing", path, "--site", "depot"}, "use one of kind, ");
  fail(2, {"nothing", path, "--site", "none"}, "unknown field \"nothing\"");
  fail(2, {"server", path, "--site", "depot", "--kind", "nothing"},
       "is not one of server, agent, ");
}

TEST_F(CliGet, FailsWithStatus6OnSeveralOfTheName) {
  const std::string path = write("list.xml", document(httpSite("twin") + httpSite("twin") +
                                                      siteElement("FTPSite", "twin", "3")));
  fail(6, {"server", path, "--site", "twin"},
       "several sites are named \"twin\": http, http, ftp\n  next: choose one with --kind");
  EXPECT_EQ(value({"order", path, "--site", "twin", "--kind", "ftp"}), "3");
  fail(6, {"server", path, "--site", "twin", "--kind", "http"},
       "next: see them all with `sitelist show --json`");
}

// The status is that of a password that is empty in the list.
TEST_F(CliGet, WarnsThatAPasswordCannotBeDecrypted) {
  initAgent();
  const std::string path = write(
      "list.xml", document(httpSite("depot", "1", "foreign") + httpSite("other", "2", "foreign")));
  const Output output = sitelist({"get", "password", path, "--site", "depot"});
  EXPECT_EQ(output.status, 0);
  EXPECT_EQ(output.out, "\n");
  EXPECT_EQ(output.err, "sitelist: warning: " + path +
                            ": 2 passwords cannot be decrypted with the password key and "
                            "are read as empty\n"
                            "  next: name the agent that the list belongs to with --agent-dir\n");
  EXPECT_EQ(sitelist({"get", "server", path, "--site", "depot"}).err, "")
      << "the command does not print a password";
  EXPECT_THAT(sitelist({"--verbose", "get", "password", path, "--site", "depot"}).err,
              testing::AllOf(HasSubstr(file("agent/keystore/password.key")),
                             testing::Not(HasSubstr(file("tmp")))));
}

TEST_F(CliGet, MasksAPasswordThatIsNotEmpty) {
  initAgent();
  setOwnList(document(httpSite("depot", "1", protectedText("fair & windy")) + httpSite("open")));
  EXPECT_EQ(value({"password", "--site", "depot"}), "********");
  EXPECT_EQ(value({"password", "--site", "open"}), "");
  EXPECT_EQ(value({"password", "--site", "depot", "--show-secrets"}), "fair & windy");
}

}  // namespace
}  // namespace test
