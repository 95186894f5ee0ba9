#include <algorithm>

#include "tests/cli/edit_fixture.h"
#include "tests/cli/json_report.h"

namespace test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

class CliDiff : public CliTest {
 protected:
  Output diff(const std::string& before, const std::string& after, const Arguments& options = {}) {
    return sitelist(Arguments{"diff", write("a.xml", before), write("b.xml", after)} + options);
  }

  // Every change in a line: "SECTION CHANGE [KIND] NAME [FIELD: BEFORE -> AFTER]".
  std::vector<std::string> changes(const std::string& before, const std::string& after,
                                   const Arguments& options = {}) {
    const Output output = diff(before, after, Arguments{"--json"} + options);
    EXPECT_EQ(output.status, 0) << output.err;
    std::vector<std::string> lines;
    for (JsonReport::Record row : readReport(output.out).rows) {
      std::string line = row["section"] + ' ' + row["change"];
      if (!row["kind"].empty()) line += ' ' + row["kind"];
      line += ' ' + row["name"];
      if (!row["field"].empty()) line += ' ' + row["field"];
      if (!row["before"].empty() || !row["after"].empty()) {
        line += ": " + row["before"] + " -> " + row["after"];
      }
      lines.push_back(line);
    }
    return lines;
  }

  std::vector<std::string> siteChanges(const std::string& before, const std::string& after) {
    return changes(document(before), document(after));
  }
};

TEST_F(CliDiff, FindsNothingInWhatIsWrittenDifferently) {
  const std::string before = document(serverSite() + httpSite("depot"));
  std::string after = before;
  after.insert(after.find("<HttpSite"), "<!-- comment -->\n\n  ");
  const std::string order = "Order=\"1\" Enabled=\"1\"";
  after.replace(after.rfind(order), order.size(), "Enabled=\"1\" New=\"x\" Order=\"01\"");
  EXPECT_THAT(changes(before, after), IsEmpty());
  const Output output = diff(before, after, {"--exit-code"});
  EXPECT_EQ(output.status, 0);
  EXPECT_THAT(output.out, HasSubstr("Nothing differs.\n"));
}

TEST_F(CliDiff, TellsVersionsTypeAndFipsMode) {
  EXPECT_THAT(
      changes(document("", "", "GlobalVersion=\"1\" LocalVersion=\"2\" FipsMode=\"1\""),
              document("", "", "GlobalVersion=\"3\" LocalVersion=\"2\" Type=\"Server\"")),
      ElementsAre("version changed globalVersion: 1 -> 3", "version changed type: Client -> Server",
                  "version changed fipsMode: 1 -> "));
}

TEST_F(CliDiff, TellsSitesThatCameAndWentAndEveryFieldThatChanged) {
  EXPECT_THAT(siteChanges(siteElement("HttpSite", "kept", "1", "Server=\"a:80\" Enabled=\"1\"") +
                              siteElement("HttpSite", "gone", "2", "Server=\"g\""),
                          siteElement("HttpSite", "kept", "1", "Server=\"b:81\" Enabled=\"0\"") +
                              siteElement("FTPSite", "new", "2", "Server=\"n:21\"",
                                          "<RelativePath>p</RelativePath>")),
              ElementsAre("site changed http kept enabled: true -> false",
                          "site changed http kept server: a -> b",
                          "site changed http kept serverPort: 80 -> 81",
                          "site added ftp new:  -> n:21 p", "site removed http gone: g:80 -> "));
}

TEST_F(CliDiff, ARenamedSiteIsAnotherOneAndSoIsOneOfAnotherKind) {
  EXPECT_THAT(siteChanges(siteElement("HttpSite", "old", "1"), siteElement("HttpSite", "new", "1")),
              ElementsAre("site added http new", "site removed http old"));
  EXPECT_THAT(siteChanges(siteElement("HttpSite", "a", "1"), siteElement("UNCSite", "a", "1")),
              ElementsAre("site added unc a", "site removed http a"));
}

TEST_F(CliDiff, PairsSitesOfOneNameAsTheyStand) {
  const std::string one = siteElement("HttpSite", "twin", "1", "Server=\"a\"");
  const std::string two = siteElement("HttpSite", "twin", "2", "Server=\"b\"");
  EXPECT_THAT(siteChanges(one + two, one + two), IsEmpty());
  EXPECT_THAT(siteChanges(one + two, one), ElementsAre("site removed http twin: b:80 -> "));
  EXPECT_THAT(siteChanges(one, one + two), ElementsAre("site added http twin:  -> b:80"));
}

TEST_F(CliDiff, TellsTheOrderApartFromOtherFields) {
  EXPECT_THAT(siteChanges(siteElement("HttpSite", "a", "2", "Enabled=\"1\""),
                          siteElement("HttpSite", "a", "7", "Enabled=\"1\"")),
              ElementsAre("site reordered http a order: 2 -> 7"));
  const std::string table = diff(document(siteElement("HttpSite", "a", "2", "Enabled=\"1\"")),
                                 document(siteElement("HttpSite", "a", "7")))
                                .out;
  EXPECT_THAT(table, HasSubstr("\n  changed    http a\n")) << "not merely reordered";
}

TEST_F(CliDiff, AMovedSiteIsTheOnlyOneThatIsReordered) {
  const std::vector<std::string> sites = {
      siteElement("HttpSite", "a", "1"), siteElement("HttpSite", "b", "1"),
      siteElement("HttpSite", "c", "1"), siteElement("HttpSite", "d", "1")};
  const auto list = [&](const std::vector<std::size_t>& order) {
    std::string text;
    for (const std::size_t i : order) text += sites[i];
    return text;
  };
  const std::string before = list({0, 1, 2, 3});
  EXPECT_THAT(siteChanges(before, list({1, 2, 3, 0})),
              ElementsAre("site reordered http a position: 1 -> 4"));
  EXPECT_THAT(siteChanges(before, list({3, 0, 1, 2})),
              ElementsAre("site reordered http d position: 4 -> 1"));
  EXPECT_EQ(siteChanges(before, list({1, 0, 2, 3})).size(), 1U);
  EXPECT_EQ(siteChanges(before, list({3, 2, 1, 0})).size(), 3U);
  EXPECT_THAT(siteChanges(before, list({0, 2, 3})), ElementsAre("site removed http b"))
      << "the sites after it have not moved";
}

TEST_F(CliDiff, TellsProxySettingsFieldByField) {
  const auto proxy = [](const std::string& host) {
    return "<ProxyConfigList><ProxyConfig Name=\"p\" HttpProxyServer=\"" + host +
           "\" HttpProxyPort=\"1\"/></ProxyConfigList>";
  };
  EXPECT_THAT(siteChanges(proxy("a"), proxy("b")),
              ElementsAre("proxy changed proxy p httpProxyServer: a -> b"));
  EXPECT_THAT(siteChanges(proxy("a"), ""), ElementsAre("proxy removed proxy p"));
}

TEST_F(CliDiff, TellsThatAPasswordChangedAndNotWhichOneItIs) {
  initAgent();
  const std::string before = document(httpSite("a", "1", protectedText("first one")) +
                                      httpSite("b", "2") + httpSite("c", "3"));
  const std::string after =
      document(httpSite("a", "1", protectedText("second one")) +
               httpSite("b", "2", protectedText("third one")) + httpSite("c", "3"));
  EXPECT_THAT(changes(before, after),
              ElementsAre("site changed http a password: ******** -> ********",
                          "site changed http b password:  -> ********"));
  EXPECT_THAT(changes(before, after, {"--show-secrets"}),
              ElementsAre("site changed http a password: first one -> second one",
                          "site changed http b password:  -> third one"));
  const Output table = diff(before, after);
  EXPECT_THAT(table.out, HasSubstr("password            ******** -> another\n"));
  EXPECT_THAT(table.out, Not(HasSubstr("one\n")));
  const std::string again = document(httpSite("a", "1", protectedText("first one")) +
                                     httpSite("b", "2") + httpSite("c", "3"));
  EXPECT_THAT(changes(before, again), IsEmpty()) << "the password was encrypted again";
}

TEST_F(CliDiff, SaysWhichPasswordsItCannotCompare) {
  initAgent();
  const std::string before = document(httpSite("depot", "1", protectedText("fair")));
  const std::string after = document(httpSite("depot", "1", "QUJD"));
  EXPECT_THAT(changes(before, after), ElementsAre("site incomparable http depot password"));
  const Output output = diff(before, after);
  EXPECT_EQ(output.status, 0);
  EXPECT_EQ(output.err,
            "sitelist: warning: 1 password cannot be compared, because the password key does not "
            "decrypt it\n  next: name the agent that the lists belong to with --agent-dir\n");
  EXPECT_THAT(output.out, HasSubstr("  incomparable http depot\n"
                                    "               password            cannot be compared\n"));
  EXPECT_THAT(output.out, Not(HasSubstr("Nothing differs")));
}

TEST_F(CliDiff, DoesNotTakePasswordsThatItCannotCompareForTheSame) {
  initAgent();
  const std::string before = document(httpSite("a", "1", "QUJD") + httpSite("b", "2", "REVG"));
  const std::string after = document(httpSite("a", "1", "QUJE") + httpSite("b", "2", "REVH"));
  const Output output = diff(before, after, {"--exit-code"});
  EXPECT_EQ(output.status, 5);
  EXPECT_THAT(output.err, HasSubstr("2 passwords cannot be compared, because the password key does "
                                    "not decrypt them\n"));
  EXPECT_THAT(diff(before, after, {"--exit-code", "--json"}).out, HasSubstr("\"differs\": false"));
  const Output elsewhere = diff(before, document(httpSite("a", "1", "QUJE")), {"--exit-code"});
  EXPECT_EQ(elsewhere.status, 1) << "the lists differ, whatever the passwords are";
  EXPECT_THAT(elsewhere.err, HasSubstr("1 password cannot be compared"));
  EXPECT_EQ(diff(before, document(httpSite("a", "1") + httpSite("b", "2", "REVG")), {"--exit-code"})
                .status,
            5)
      << "also if one list has no password, because the other password may be empty";
}

TEST_F(CliDiff, ComparesPasswordsThatCannotBeDecryptedByTheirEncryptedForm) {
  initAgent();
  const std::string proxy =
      "<ProxyConfigList><ProxyConfig Name=\"p\"><HttpProxyPassword>QUJD</HttpProxyPassword>"
      "<FtpProxyPassword>REVG</FtpProxyPassword></ProxyConfig></ProxyConfigList>";
  const std::string list = document(httpSite("a", "1", "QUJD") + proxy);
  const Output output = diff(list, list, {"--exit-code"});
  EXPECT_EQ(output.status, 0) << output.err;
  EXPECT_EQ(output.err, "");
  EXPECT_THAT(output.out, HasSubstr("Nothing differs."));
  std::string other = list;
  other.replace(other.find("REVG"), 4, "REVH");
  EXPECT_THAT(changes(list, other), ElementsAre("proxy incomparable proxy p ftpProxyPassword"));
}

std::string withCertificates(const std::vector<std::string>& texts) {
  std::string bundle;
  for (const std::string& text : texts) bundle += "<CaCertificate>" + text + "</CaCertificate>";
  return document("", "<CaBundle>" + bundle + "</CaBundle>");
}

TEST_F(CliDiff, TellsCertificatesByWhatTheyAre) {
  std::string bare = c_certificatePem;
  bare = bare.substr(bare.find('\n'), bare.rfind('\n') - bare.find('\n'));
  bare.erase(std::remove(bare.begin(), bare.end(), '\n'), bare.end());
  EXPECT_THAT(
      changes(withCertificates({c_certificatePem, "text"}), withCertificates({"text", bare})),
      IsEmpty())
      << "only the form and the place differ";
  EXPECT_THAT(changes(withCertificates({c_certificatePem, "text"}), withCertificates({"other"})),
              ElementsAre("certificate added a text that is not readable as a certificate",
                          "certificate removed O = Tui Instruments, CN = Test authority: " +
                              std::string(c_certificateFingerprint) + " -> ",
                          "certificate removed a text that is not readable as a certificate"));
}

TEST_F(CliDiff, TellsPolicySettings) {
  const auto policies = [](const std::string& settings) {
    return document("", "<Policies>" + settings + "</Policies>");
  };
  const auto setting = [](const std::string& name, const std::string& value) {
    return "<Setting name=\"" + name + "\">" + value + "</Setting>";
  };
  EXPECT_THAT(changes(policies(setting("a", "1") + setting("b", "2") + setting("c", "3")),
                      policies(setting("c", "3") + setting("d", "4") + setting("b", ""))),
              testing::UnorderedElementsAre("policy changed b: 2 -> ", "policy added d:  -> 4",
                                            "policy removed a: 1 -> "));
}

TEST_F(CliDiff, ExitCodeTellsWhetherTheyDiffer) {
  const std::string one = document(httpSite("a"));
  const std::string two = document(httpSite("b"));
  EXPECT_EQ(diff(one, two).status, 0);
  EXPECT_EQ(diff(one, two, {"--exit-code"}).status, 1);
  EXPECT_EQ(diff(one, one, {"--exit-code"}).status, 0);
}

TEST_F(CliDiff, FailsOnAListThatCannotBeReadWhicheverItIs) {
  const std::string good = write("good.xml", document(httpSite("a")));
  const std::string broken = write("broken.xml", "<a>");
  for (const auto& [path, status] :
       std::map<std::string, int>{{broken, 3}, {file("none.xml"), 4}, {file("tmp"), 4}}) {
    for (const Arguments& lists : {Arguments{path, good}, Arguments{good, path}}) {
      const Output output = sitelist(Arguments{"diff", "--exit-code"} + lists);
      EXPECT_EQ(output.status, status) << path;
      EXPECT_EQ(output.out, "");
      EXPECT_THAT(output.err, HasSubstr(path));
    }
  }
}

}  // namespace
}  // namespace test
