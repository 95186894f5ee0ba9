#include "tests/cli/cli_fixture.h"
#include "tests/cli/documents.h"
#include "tests/cli/json_report.h"

namespace test {
namespace {

using testing::HasSubstr;
using testing::MatchesRegex;

class CliVersions : public CliTest {};

TEST_F(CliVersions, PrintsWhatTheRootSays) {
  const std::string path = write("list.xml", document("", "",
                                                      "GlobalVersion=\"g\" LocalVersion=\"l\" "
                                                      "Type=\"Server\" FipsMode=\"2\""));
  const Output output = sitelist({"versions", path});
  EXPECT_EQ(output.status, 0) << output.err;
  EXPECT_EQ(output.out,
            "global version  g\nlocal version   l\ntype            Server\nFIPS mode       2\n");
}

TEST_F(CliVersions, FailsOnWhatIsNoDocument) {
  const Output output = sitelist({"versions", write("list.xml", "<a>")});
  EXPECT_EQ(output.status, 3);
  EXPECT_THAT(output.err, HasSubstr("(-1, 0xFFFFFFFF)\n  line 1, column "));
}

class CliCerts : public CliTest {};

std::string bundle(const std::string& texts) { return "<CaBundle>" + texts + "</CaBundle>"; }
std::string certificate(const std::string& text) {
  return "<CaCertificate>" + text + "</CaCertificate>";
}

TEST_F(CliCerts, DescribesACertificateInPemForm) {
  const Output output =
      sitelist({"certs", write("list.xml", document("", bundle(certificate(c_certificatePem))))});
  EXPECT_EQ(output.status, 0) << output.err;
  EXPECT_THAT(output.out, HasSubstr("Certificate 1 of 1\n"
                                    "  subject      O = Tui Instruments, CN = Test authority\n"
                                    "  issuer       O = Tui Instruments, CN = Test authority\n"));
  std::string fingerprint = c_certificateFingerprint;
  fingerprint.insert(48, "\n               ");
  EXPECT_THAT(output.out, HasSubstr("  SHA-256      " + fingerprint + "\n"));
  EXPECT_THAT(output.out, HasSubstr("  valid from   2026-11-21 00:28:13 UTC\n"
                                    "  valid until  2126-10-28 00:28:13 UTC\n"));
  EXPECT_THAT(output.out, MatchesRegex("(.|\n)*  days left    [0-9]+\n"));
}

TEST_F(CliCerts, ReadsBareBase64) {
  std::string base64 = c_certificatePem;
  base64.erase(0, base64.find('\n'));
  base64.erase(base64.find('-'));
  const Output output =
      sitelist({"certs", write("list.xml", document("", bundle(certificate(base64))))});
  EXPECT_THAT(output.out, HasSubstr("CN = Test authority\n"));
}

TEST_F(CliCerts, PrintsTheTextOfWhatItCannotRead) {
  const std::string path =
      write("list.xml", document("", bundle(certificate("plain text") + certificate("aGFsbG8=") +
                                            certificate(c_certificatePem))));
  const Output output = sitelist({"certs", path});
  EXPECT_EQ(output.status, 0);
  EXPECT_THAT(output.out,
              HasSubstr("Certificate 1 of 3\n  cannot be read as a certificate; its "
                        "text is\n  plain text\n\nCertificate 2 of 3\n  cannot be read"));
  EXPECT_THAT(output.out, HasSubstr("Certificate 3 of 3\n  subject "));
}

TEST_F(CliCerts, SaysThatThereAreNone) {
  const Output output = sitelist({"certs", write("list.xml", document(""))});
  EXPECT_EQ(output.status, 1);
  EXPECT_EQ(output.out, "");
  EXPECT_THAT(output.err, HasSubstr("the list has no certificates"));
}

TEST_F(CliCerts, LooksForWhatExpires) {
  const std::string path = write("list.xml", document("", bundle(certificate(c_certificatePem))));
  const JsonReport report = readReport(sitelist({"certs", "--json", path}).out);
  const int left = std::stoi(report.rows.at(0).at("daysLeft"));
  ASSERT_GT(left, 1000) << "the certificate is valid until 2126";
  // One day more or less is accepted, because midnight may be between the two calls.
  const auto expiring = [&](int days) {
    return sitelist({"certs", "--json", "--expiring", std::to_string(days), path});
  };
  EXPECT_EQ(expiring(left - 2).status, 0);
  EXPECT_THAT(readReport(expiring(left - 2).out).column("expiring"), testing::ElementsAre("false"));
  EXPECT_EQ(expiring(left + 1).status, 1);
  EXPECT_THAT(readReport(expiring(left + 1).out).column("expiring"), testing::ElementsAre("true"));
  EXPECT_EQ(sitelist({"certs", path}).status, 0);
}

TEST_F(CliCerts, SaysThatAnExpiryIsUnknown) {
  const std::string one =
      write("one.xml", document("", bundle(certificate(c_certificatePem) + certificate("text"))));
  const Output output = sitelist({"certs", "--expiring", "0", "--json", one});
  EXPECT_EQ(output.status, 1);
  EXPECT_THAT(readReport(output.out).column("expiring"), testing::ElementsAre("false", ""));
  EXPECT_EQ(output.err, "sitelist: warning: " + one +
                            ": 1 certificate cannot be read, so its expiry is unknown\n");
  const std::string two =
      write("two.xml", document("", bundle(certificate("aGFsbG8=") + certificate("text"))));
  const Output both = sitelist({"certs", "--expiring", "0", two});
  EXPECT_EQ(both.status, 1);
  EXPECT_EQ(both.err, "sitelist: warning: " + two +
                          ": 2 certificates cannot be read, so their expiry is unknown\n");
  const Output all = sitelist({"certs", one});
  EXPECT_EQ(all.status, 0) << "without --expiring the status is 0";
  EXPECT_EQ(all.err, "");
}

TEST_F(CliCerts, WhatHasExpiredIsExpiringWhateverTheDays) {
  const std::string path = write(
      "list.xml",
      document("", bundle(certificate(c_certificatePem) + certificate(c_expiredCertificatePem))));
  const Output output = sitelist({"certs", "--expiring", "0", path});
  EXPECT_EQ(output.status, 1);
  EXPECT_THAT(output.out, MatchesRegex("(.|\n)*  days left    -[0-9]+ \\(expired\\)\n"));
  EXPECT_EQ(sitelist({"certs", path}).status, 0) << "without --expiring the status is 0";
}

TEST_F(CliCerts, TakesAWholeNumberOfDaysOnly) {
  const std::string path = write("list.xml", document("", bundle(certificate(c_certificatePem))));
  for (const char* days : {"-1", "x", "1.5", "30 ", "99999999999"}) {
    const Output output = sitelist({"certs", std::string("--expiring=") + days, path});
    EXPECT_EQ(output.status, 2) << days;
    EXPECT_THAT(output.err, HasSubstr("is not a number of days\n  next: "));
  }
}

TEST_F(CliCerts, FailsOnADocumentOverALimitAsOnAnyOtherInvalidOne) {
  std::string deep;
  for (int i = 0; i < 100000; ++i) deep += "<a>";
  for (int i = 0; i < 100000; ++i) deep += "</a>";
  EXPECT_EQ(sitelist({"certs", write("list.xml", deep)}).status, 3);
  EXPECT_EQ(sitelist({"certs", write("list.xml", "<a>")}).status, 3);
}

class CliServers : public CliTest {
 protected:
  void SetUp() override { initAgent(); }
};

TEST_F(CliServers, PrintsTheFirstServerOrAllOfThem) {
  setOwnList(document(
      serverSite({{"Name", "second"}, {"Order", "2"}, {"SecurePort", "8443"}}) +
      serverSite({{"Name", "first"}, {"ServerIP", "[2001:db8::1]:80"}, {"Version", "5.9"}})));
  EXPECT_EQ(sitelist({"servers"}).out,
            "names           first\nservers         pyx.example\nIP addresses    2001:db8::1\n"
            "computer names  PYX\nversions        5.9\nport            80\n");
  EXPECT_EQ(sitelist({"servers", "--all"}).out,
            "names           first;second\nservers         pyx.example;pyx.example\n"
            "IP addresses    2001:db8::1;192.0.2.1\ncomputer names  PYX;PYX\n"
            "versions        5.9;\nport            8443\n");
  EXPECT_THAT(sitelist({"servers", "--all", "--non-secure-port"}).out,
              HasSubstr("port            80\n"));
}

TEST_F(CliServers, SaysThatThereIsNone) {
  setOwnList(document(httpSite("depot")));
  const Output none = sitelist({"servers"});
  EXPECT_EQ(none.status, 1);
  EXPECT_THAT(none.err, HasSubstr("the list has no management server (-8, 0xFFFFFFF8)"));
  setOwnList(document(""));
  EXPECT_EQ(sitelist({"servers"}).status, 1);
}

class CliPolicies : public CliTest {
 protected:
  void SetUp() override { initAgent(); }
};

TEST_F(CliPolicies, PrintsThemByName) {
  const std::string path =
      write("list.xml", document(httpSite("depot"),
                                 "<Policies><Setting name=\"b\">2</Setting><Setting name=\"a\">1"
                                 "</Setting></Policies>"));
  EXPECT_EQ(sitelist({"policies", path}).out, "a = 1\nb = 2\n");
  const Output none = sitelist({"policies", write("none.xml", document(httpSite("depot")))});
  EXPECT_EQ(none.status, 1);
  EXPECT_THAT(none.err, HasSubstr("the list has no policy settings"));
}

TEST_F(CliPolicies, SetChangesOneSettingAndNothingElse) {
  setOwnList(
      document(httpSite("depot", "4", protectedText("fair & windy")),
               bundle(certificate("text")) + "<Policies><Setting name=\"a\">1</Setting></Policies>",
               "GlobalVersion=\"g\" LocalVersion=\"l\" Type=\"Server\""));
  const std::string before = sitelist({"show", "--json", "--show-secrets"}).out;
  const Output output = sitelist({"policies", "set", "b", "two words"});
  EXPECT_EQ(output.status, 0) << output.err;
  EXPECT_EQ(sitelist({"policies"}).out, "a = 1\nb = two words\n");
  EXPECT_EQ(sitelist({"policies", "set", "a", "-1"}).status, 0);
  EXPECT_EQ(sitelist({"policies"}).out, "a = -1\nb = two words\n");
  EXPECT_EQ(sitelist({"show", "--json", "--show-secrets"}).out, before);
  EXPECT_THAT(sitelist({"certs"}).out, HasSubstr("text"));
  EXPECT_EQ(readFile(file("agent/mesh/SiteList.xml")), readFile(ownList()));
}

TEST_F(CliPolicies, SetFailsWithoutAListAndRefusesToLosePasswords) {
  EXPECT_EQ(sitelist({"policies", "set", "a", "1"}).status, 4);
  EXPECT_FALSE(exists(ownList()));
  setOwnList(document(httpSite("depot", "1", "elsewhere")));
  const std::string before = readFile(ownList());
  EXPECT_EQ(sitelist({"policies", "set", "a", "1"}).status, 5);
  EXPECT_EQ(readFile(ownList()), before);
}

}  // namespace
}  // namespace test
