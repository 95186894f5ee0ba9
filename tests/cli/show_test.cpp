#include "tests/cli/cli_fixture.h"
#include "tests/cli/documents.h"

namespace test {
namespace {

using testing::HasSubstr;
using testing::Not;

std::vector<std::string> linesOf(const std::string& text) {
  std::vector<std::string> lines;
  std::size_t begin = 0;
  for (std::size_t end; (end = text.find('\n', begin)) != std::string::npos; begin = end + 1) {
    lines.push_back(text.substr(begin, end - begin));
  }
  return lines;
}

class CliShow : public CliTest {};

constexpr const char* c_proxy =
    "<ProxyConfigList><ProxyConfig Name=\"Site proxy\" HttpProxyServer=\"proxy.example\" "
    "HttpProxyPort=\"3128\" FtpProxyServer=\"ftpproxy.example\" FtpProxyPort=\"2121\">"
    "<BypassLocalAddress>1</BypassLocalAddress><HttpUseAuth>1</HttpUseAuth>"
    "<HttpProxyUser>agent</HttpProxyUser><AlternateFtpProxyUser>other</AlternateFtpProxyUser>"
    "<ExclusionList><ExclusionHost>one.example</ExclusionHost>"
    "<ExclusionHost>two.example</ExclusionHost></ExclusionList></ProxyConfig></ProxyConfigList>";

TEST_F(CliShow, ListsTheSitesInSearchOrderAndKeepsEqualOnesAsTheyCame) {
  const std::string path =
      write("list.xml", document(httpSite("third", "5") + httpSite("fourth", "5") +
                                 httpSite("first", "-1") + httpSite("second", "2")));
  const std::vector<std::string> lines = linesOf(sitelist({"show", path}).out);
  ASSERT_EQ(lines.size(), 5U);
  EXPECT_THAT(lines[1], HasSubstr(" first "));
  EXPECT_THAT(lines[2], HasSubstr(" second "));
  EXPECT_THAT(lines[3], HasSubstr(" third "));
  EXPECT_THAT(lines[4], HasSubstr(" fourth "));
}

TEST_F(CliShow, PrintsEveryKindOfSite) {
  const std::string path = write(
      "list.xml",
      document(serverSite({{"SecurePort", "443"}}) +
               "<KeystoneSite Type=\"repository\" Name=\"k\" Order=\"2\" Enabled=\"1\" "
               "Server=\"K1:8081\"/>"
               "<FTPSite Type=\"repository\" Name=\"f\" Order=\"3\" Server=\"ftp.example:21\"/>"
               "<UNCSite Type=\"repository\" Name=\"u\" Order=\"4\" Enabled=\"1\" Server=\"FILES\">"
               "<ShareName>Orb</ShareName><RelativePath>new</RelativePath></UNCSite>"
               "<LocalSite Type=\"repository\" Name=\"l\" Order=\"5\" Enabled=\"1\">"
               "<RelativePath>&lt;DATA&gt;/x</RelativePath></LocalSite>"
               "<HttpSite Type=\"mirror\" Name=\"m\" Enabled=\"1\" Server=\"m.example\"/>"
               "<HttpSite Type=\"fallback\" Name=\"b\" Enabled=\"1\" Server=\"b.example\"/>"
               "<OtherSite Type=\"repository\" Name=\"o\" Order=\"9\" Enabled=\"1\"/>"
               "<HttpSite Type=\"repository\" Name=\"z\" Order=\"10\" Enabled=\"1\" "
               "Server=\"z.example\"/>"));
  const Output output = sitelist({"show", path});
  EXPECT_EQ(output.status, 0) << output.err;
  EXPECT_EQ(output.out,
            "ORDER  KIND     TYPE        NAME  ADDRESS               PATH      STATE\n"
            "1      server   master      Main  pyx.example:80 (443)  Software  on\n"
            "2      agent    repository  k     K1:8081               -         on\n"
            "3      ftp      repository  f     ftp.example:21        -         off\n"
            "4      unc      repository  u     FILES                 Orb\\new   on\n"
            "5      local    repository  l     -                     <DATA>/x  on\n"
            "9      unknown  repository  -     -                     -         on\n"
            "10     http     repository  z     z.example:80          -         on\n"
            "last   http     fallback    b     b.example:80          -         on\n"
            "-      http     mirror      m     m.example:80          -         on\n"
            "\n"
            "A port in brackets is the one for secure connections.\n");
}

TEST_F(CliShow, PrintsTheProxyBehindTheSites) {
  const std::string path = write("list.xml", document(c_proxy + httpSite("depot")));
  const Output output = sitelist({"show", path});
  EXPECT_EQ(output.status, 0) << output.err;
  const std::string expected =
      "\nProxy Site proxy\n"
      "  HTTP                proxy.example:3128\n"
      "  HTTP user           agent\n"
      "  FTP                 ftpproxy.example:2121\n"
      "  FTP alternate       other (not used)\n"
      "  system settings     no\n"
      "  user may change     no\n"
      "  bypass local        yes\n"
      "  not for             one.example\n"
      "                      two.example\n";
  EXPECT_THAT(output.out, testing::EndsWith(expected));
  EXPECT_EQ(linesOf(output.out).size(), 13U);
}

TEST_F(CliShow, ServesTheAgentsOwnListWithoutAFile) {
  initAgent();
  setOwnList(document(httpSite("of-the-agent")));
  EXPECT_THAT(sitelist({"show"}).out, HasSubstr("of-the-agent"));
}

TEST_F(CliShow, MasksPasswordsUnlessAskedNotTo) {
  initAgent();
  const std::string secret = "fair & windy";
  const std::string sealed = protectedText(secret);
  std::string proxy = c_proxy;
  const std::string place = "<AlternateFtpProxyUser>";
  proxy.insert(proxy.find(place), "<HttpProxyPassword>" + sealed + "</HttpProxyPassword>");
  setOwnList(document(httpSite("depot", "1", sealed) + proxy));
  for (const std::vector<std::string>& form :
       {std::vector<std::string>{"show"}, std::vector<std::string>{"show", "--json"}}) {
    const Output masked = sitelist(form);
    EXPECT_EQ(masked.status, 0) << masked.err;
    EXPECT_THAT(masked.out, HasSubstr("********"));
    EXPECT_THAT(masked.out + masked.err, Not(HasSubstr(secret)));
    EXPECT_THAT(masked.out + masked.err, Not(HasSubstr(sealed)));
    std::vector<std::string> open = form;
    open.emplace_back("--show-secrets");
    const Output clear = sitelist(open);
    EXPECT_THAT(clear.out, HasSubstr(secret));
    EXPECT_THAT(clear.out, Not(HasSubstr("********")));
  }
}

TEST_F(CliShow, SaysThatAListHasNoSites) {
  const std::string path = write("list.xml", document(""));
  const Output output = sitelist({"show", path});
  EXPECT_EQ(output.status, 1);
  EXPECT_EQ(output.out, "");
  EXPECT_EQ(output.err, "sitelist: " + path + ": the list has no sites\n");
}

TEST_F(CliShow, PrintsAListWhoseLastSiteIsUnknownAndSaysSo) {
  const std::string path =
      write("list.xml", document(httpSite("depot") + "<OtherSite Name=\"x\" Order=\"2\"/>"));
  const Output output = sitelist({"show", path});
  EXPECT_EQ(output.status, 3);
  EXPECT_THAT(output.out, HasSubstr("depot"));
  EXPECT_THAT(output.err, HasSubstr("is of unknown kind (-1, 0xFFFFFFFF)"));
}

TEST_F(CliShow, WritesNothingIntoTheAgentWhenItReadsANamedFile) {
  initAgent();
  const std::string path = write("list.xml", document(httpSite("depot", "1", "not sealed")));
  const auto before = agentFiles();
  EXPECT_EQ(sitelist({"show", path}).status, 0);
  EXPECT_EQ(agentFiles(), before);
}

TEST_F(CliShow, NeedsNoAgentToReadANamedFile) {
  const std::string path = write("list.xml", document(httpSite("depot")));
  EXPECT_EQ(sitelist({"show", path}).status, 0);
  EXPECT_FALSE(exists(file("agent")));
}

// The exit status is 0, as for a list without such passwords.
TEST_F(CliShow, WarnsOncePerListThatPasswordsCannotBeDecrypted) {
  initAgent();
  const std::string good = protectedText("good");
  setOwnList(document(httpSite("kept", "1", good) + httpSite("lost", "2", "foreign")));
  const std::string warning =
      "sitelist: warning: " + ownList() +
      ": 1 password cannot be decrypted with the password key and is read as empty\n"
      "  next: restore the agent's password key, or set the passwords again\n";
  for (const char* format : {"table", "json", "csv", "xml"}) {
    const Output output = sitelist({"show", "--format", format});
    EXPECT_EQ(output.status, 0) << format;
    EXPECT_EQ(output.err, warning) << format;
    const bool isTold = format == std::string("json") || format == std::string("xml");
    EXPECT_EQ(output.out.find("decrypt") != std::string::npos, isTold) << format;
  }
  setOwnList(document(httpSite("kept", "1", good)));
  EXPECT_EQ(sitelist({"show"}).err, "");
}

}  // namespace
}  // namespace test
