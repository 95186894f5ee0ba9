#include <nlohmann/json.hpp>

#include "tests/cli/documents.h"
#include "tests/cli/edit_fixture.h"

namespace test {
namespace {

using nlohmann::json;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

// The content of `warnings` in the formats for programs.
class CliWarnings : public CliTest {
 protected:
  void SetUp() override {
    initAgent();
    setOwnList(document(serverSite() + httpSite("depot", "2")));
    m_foreign = write("foreign.xml", document(httpSite("depot", "1", "QUJD")));
  }

  // Returns the warnings of a command. Each must be on standard error as well.
  std::vector<std::string> warningsOf(const Arguments& arguments, int status = 0) {
    const Output output = sitelist(Arguments{"--json"} + arguments);
    EXPECT_EQ(output.status, status) << output.err;
    const json document = json::parse(output.out);
    EXPECT_TRUE(document["warnings"].is_array()) << output.out;
    const std::vector<std::string> texts = document["warnings"];
    for (const std::string& text : texts) {
      EXPECT_THAT(output.err, HasSubstr("sitelist: warning: " + text + "\n"));
    }
    return texts;
  }

  std::string m_foreign;
};

TEST_F(CliWarnings, AreAnEmptyArrayWhenThereAreNone) {
  const std::string list = ownList();
  for (const Arguments& command : {
           Arguments{"show"},
           {"get", "type"},
           {"explain"},
           {"diff", list, list},
           {"versions"},
           {"validate", list},
           {"explain-rule"},
           {"edit", "disable", "depot"},
           {"derive-server-list", file("agent/etc")},
       }) {
    EXPECT_THAT(warningsOf(command), IsEmpty()) << testing::PrintToString(command);
  }
  EXPECT_THAT(warningsOf({"show", file("none.xml")}, 4), IsEmpty());
  EXPECT_THAT(warningsOf({"show", "--bogus"}, 2), IsEmpty());
  EXPECT_THAT(warningsOf({}, 2), IsEmpty());
}

TEST_F(CliWarnings, HaveEachPasswordThatWasLost) {
  const std::string text = m_foreign +
                           ": a password of site \"depot\" cannot be decrypted with the password "
                           "key; it ";
  EXPECT_THAT(warningsOf({"import", "--dry-run", "--allow-lost-passwords", m_foreign}),
              ElementsAre(text + "would be empty"));
  EXPECT_THAT(warningsOf({"rewrite", "--allow-lost-passwords", m_foreign, file("out.xml")}),
              ElementsAre(text + "is now empty"));
  EXPECT_THAT(warningsOf({"show", m_foreign}),
              ElementsAre(m_foreign + ": 1 password cannot be decrypted with the password key and "
                                      "is read as empty"));
}

TEST_F(CliWarnings, HaveAFaultThatAnEditAdds) {
  const std::vector<std::string> texts = warningsOf({"edit", "--force", "set", "depot", "server="});
  ASSERT_EQ(texts.size(), 1U);
  EXPECT_THAT(texts[0], HasSubstr("the change adds a fault: " + ownList() + ":"));
}

TEST_F(CliWarnings, HaveAFailureThatDidNotStopTheCommand) {
  write("agent/agent.toml", "mesh.load_command = [\"/bin/sh\", \"-c\", \"exit 3\"]\n");
  const std::string text = "Mesh service load command /bin/sh failed: it ended with status 3";
  EXPECT_THAT(warningsOf({"edit", "disable", "depot"}), ElementsAre(text));
  EXPECT_THAT(warningsOf({"--verbose", "edit", "enable", "depot"}), ElementsAre(text))
      << "the log does not replace it";
}

TEST_F(CliWarnings, XmlHasThemAsItems) {
  const auto show = [&](const std::string& path) {
    return sitelist({"show", "--format", "xml", path}).out;
  };
  EXPECT_THAT(show(m_foreign),
              HasSubstr("\n  <warnings>\n    <item>" + m_foreign + ": 1 password cannot be "));
  EXPECT_THAT(show(ownList()), HasSubstr("\n  <warnings></warnings>\n"));
}

}  // namespace
}  // namespace test
