#include "tests/cli/edit_fixture.h"

// What the tool proposes for a name that it does not know.
namespace test {
namespace {

using testing::HasSubstr;
using testing::Not;

class CliSuggestion : public CliTest {
 protected:
  CliSuggestion() {
    m_path =
        write("list.xml", document(httpSite("Depot North") + httpSite("Offices", "2") +
                                       siteElement("HttpSite", "a&#x9B;bcdefgh", "3"),
                                   "<Policies><Setting name=\"Timeout\">1</Setting></Policies>"));
  }

  // The first line of the message.
  std::string message(int status, const Arguments& arguments) {
    const Output output = sitelist(arguments);
    EXPECT_EQ(output.status, status) << testing::PrintToString(arguments) << output.err;
    EXPECT_EQ(output.out, "");
    return output.err.substr(0, output.err.find('\n'));
  }

  std::string m_path;
};

TEST_F(CliSuggestion, ProposesCommandsAndOptions) {
  EXPECT_EQ(message(2, {"shwo"}), "sitelist: unknown command \"shwo\"; did you mean show?");
  EXPECT_EQ(message(2, {"edit", "dsable", "Depot"}),
            "sitelist: unknown command \"edit dsable\"; did you mean disable?");
  EXPECT_EQ(message(2, {"show", "--colums", "name"}),
            "sitelist: unknown option \"--colums\"; did you mean --columns?");
  EXPECT_EQ(message(2, {"edit", "set", "--forse", "x"}),
            "sitelist: unknown option \"--forse\"; did you mean --force?")
      << "an option of the command above";
  EXPECT_EQ(message(2, {"show", "--format=jsn"}),
            "sitelist: --format: \"jsn\" is not one of table, json, jsonl, csv, xml; did you mean "
            "json?");
  EXPECT_EQ(message(2, {"bogus"}), "sitelist: unknown command \"bogus\"");
}

TEST_F(CliSuggestion, ProposesColumnsFieldsAndFilterKeys) {
  EXPECT_EQ(message(2, {"show", m_path, "--columns", "name,adress"}),
            "sitelist: unknown column \"adress\"; did you mean address?");
  EXPECT_EQ(message(2, {"show", m_path, "--sort", "ordre"}),
            "sitelist: unknown column \"ordre\"; did you mean order?");
  EXPECT_EQ(message(2, {"show", m_path, "--filter", "nmae=a"}),
            "sitelist: unknown filter key \"nmae\"; did you mean name?");
  EXPECT_EQ(message(2, {"show", m_path, "--filter", "zone=a"}),
            "sitelist: unknown filter key \"zone\"");
  EXPECT_EQ(message(2, {"get", "globalversion", m_path}),
            "sitelist: unknown field \"globalversion\"; did you mean globalVersion?");
  EXPECT_EQ(message(2, {"get", "usrName", m_path, "--site", "Offices"}),
            "sitelist: unknown field \"usrName\"; did you mean userName?");
  EXPECT_EQ(message(2, {"edit", "--file", m_path, "set", "Offices", "serverport=1"}),
            "sitelist: unknown field \"serverport\"; did you mean serverPort?");
}

TEST_F(CliSuggestion, ProposesSitesAndSettings) {
  EXPECT_EQ(message(7, {"get", "server", m_path, "--site", "Depot Nort"}),
            "sitelist: " + m_path + ": there is no site \"Depot Nort\"; did you mean Depot North?");
  EXPECT_EQ(message(7, {"edit", "--file", m_path, "remove", "Ofices"}),
            "sitelist: " + m_path + ": there is no site \"Ofices\"; did you mean Offices?");
  EXPECT_EQ(message(7, {"edit", "--file", m_path, "remove", "Offices", "--kind", "ftp"}),
            "sitelist: " + m_path + ": there is no site \"Offices\" of kind ftp");
  EXPECT_EQ(
      message(7, {"edit", "--file", m_path, "remove", "abcdefgh"}),
      "sitelist: " + m_path + ": there is no site \"abcdefgh\"; did you mean a\\u009Bbcdefgh?");
  EXPECT_EQ(
      message(7, {"get", "policy.timeout", m_path}),
      "sitelist: " + m_path + ": there is no policy setting \"timeout\"; did you mean Timeout?");
}

}  // namespace
}  // namespace test
