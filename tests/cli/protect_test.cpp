#include "tests/cli/cli_fixture.h"
#include "tests/cli/documents.h"

namespace test {
namespace {

using testing::HasSubstr;

std::string lineOf(const std::string& text) { return text.substr(0, text.find('\n')); }

class CliProtect : public CliTest {
 protected:
  void SetUp() override { initAgent(); }
};

TEST_F(CliProtect, MakesWhatTheAgentReadsBack) {
  for (const std::string clear : {"fair & windy", "", "東京 ключ", " spaces "}) {
    setOwnList(document(httpSite("depot", "1", protectedText(clear))));
    EXPECT_THAT(sitelist({"show", "--json", "--show-secrets"}).out, HasSubstr("\"password\": \""));
    const Output shown = sitelist({"rewrite", ownList(), file("copy.xml")});
    EXPECT_EQ(shown.status, 0) << "the key decrypts the password: " << shown.err;
  }
  setOwnList(document(httpSite("depot", "1", protectedText(" spaces "))));
  EXPECT_THAT(sitelist({"show", "--json", "--show-secrets"}).out,
              HasSubstr("\"password\": \" spaces \""));
}

TEST_F(CliProtect, TakesTheFirstLineOnlyWithOrWithoutItsEnd) {
  const Output withoutEnd = sitelist({"protect"}, "fair");
  ASSERT_EQ(withoutEnd.status, 0) << withoutEnd.err;
  setOwnList(document(httpSite("depot", "1", lineOf(withoutEnd.out))));
  const std::string first = sitelist({"show", "--json", "--show-secrets"}).out;
  EXPECT_THAT(first, HasSubstr("\"password\": \"fair\""));
  setOwnList(document(httpSite("depot", "1", lineOf(sitelist({"protect"}, "fair\nwindy\n").out))));
  EXPECT_EQ(sitelist({"show", "--json", "--show-secrets"}).out, first);
}

TEST_F(CliProtect, TakesALineOfAnotherSystemWithoutItsTwoCharacters) {
  const std::string tooLong = std::string(259, 'x') + "\r\n";
  EXPECT_EQ(sitelist({"protect"}, tooLong).status, 0)
      << "the end of the line is not part of the password";
  EXPECT_EQ(sitelist({"protect"}, "x" + tooLong).status, 2);
  for (const char* line : {"fair\r\n", "fair\r", "fair\r\nwindy\r\n"}) {
    setOwnList(document(httpSite("depot", "1", lineOf(sitelist({"protect"}, line).out))));
    EXPECT_THAT(sitelist({"show", "--json", "--show-secrets"}).out,
                HasSubstr("\"password\": \"fair\""));
  }
  const std::string file = write("password.txt", "windy\r\n");
  EXPECT_EQ(sitelist({"edit", "set", "depot", "--password-file", file}).status, 0);
  EXPECT_THAT(sitelist({"show", "--json", "--show-secrets"}).out,
              HasSubstr("\"password\": \"windy\""));
}

TEST_F(CliProtect, RefusesWhatASiteListCannotCarry) {
  EXPECT_EQ(sitelist({"protect"}, std::string(259, 'x') + "\n").status, 0);
  const Output tooLong = sitelist({"protect"}, std::string(260, 'x') + "\n");
  EXPECT_EQ(tooLong.status, 2);
  EXPECT_THAT(tooLong.err, HasSubstr("longer than 259 characters"));
  EXPECT_EQ(sitelist({"protect"}, std::string(100000, 'x')).status, 2);
  const Output invalid = sitelist({"protect"}, "\xFF\xFE\n");
  EXPECT_EQ(invalid.status, 2);
  EXPECT_THAT(invalid.err, HasSubstr("UTF-8"));
  EXPECT_EQ(sitelist({"protect"}, std::string("fa\0ir\n", 6)).status, 2);
  const Output nothing = sitelist({"protect"}, "");
  EXPECT_EQ(nothing.status, 2);
  EXPECT_THAT(nothing.err, HasSubstr("there is no password"));
}

TEST_F(CliProtect, TakesNoPasswordFromTheCommandLine) {
  const Output output = sitelist({"protect", "fair"});
  EXPECT_EQ(output.status, 2);
  EXPECT_EQ(output.err,
            "sitelist: \"protect\" takes no argument\n  next: see `sitelist protect --help`\n");
  EXPECT_THAT(sitelist({"--json", "protect", "fair"}).out, testing::Not(HasSubstr("fair")));
}

TEST_F(CliProtect, FailsWithoutAUsableKey) {
  write("agent/keystore/password.key", "too short");
  const Output output = sitelist({"protect"}, "fair\n");
  EXPECT_EQ(output.status, 5);
  EXPECT_EQ(output.out, "");
  EXPECT_EQ(output.err,
            "sitelist: " + file("agent/keystore") +
                ": the password cannot be encrypted\n  Key file " +
                file("agent/keystore/password.key") +
                ": the file has 9 bytes, but a key has 32\n  next: restore the agent's key file\n");
}

TEST_F(CliProtect, LeavesNoPasswordInTheDetailLog) {
  const std::string clear = "exceedingly fair weather";
  const Output sealed = sitelist({"--verbose", "protect"}, clear + "\n");
  EXPECT_THAT(sealed.err, testing::Not(HasSubstr(clear)));
  setOwnList(document(httpSite("depot", "1", lineOf(sealed.out))));
  const Output shown = sitelist({"--verbose", "show"});
  EXPECT_THAT(shown.err, HasSubstr("detail SiteHlp: "));
  EXPECT_THAT(shown.err, testing::Not(HasSubstr(clear)));
}

}  // namespace
}  // namespace test
