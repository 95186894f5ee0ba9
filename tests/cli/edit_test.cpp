#include <sstream>

#include "tests/cli/edit_fixture.h"

namespace test {
namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::Not;

std::string replaced(std::string text, const std::string& from, const std::string& to) {
  const std::size_t at = text.find(from);
  EXPECT_NE(at, std::string::npos) << from;
  if (at != std::string::npos) text.replace(at, from.size(), to);
  return text;
}

// All kinds of document content that an edit must not change.
const std::string c_surroundings =
    "<!-- a comment --><?target data?>"
    "<HttpSite Name=\"Other\" Order=\"2\" Unknown=\"a &amp; b\" Enabled=\"1\">\n  "
    "<RelativePath><![CDATA[x < y]]></RelativePath><Strange deep=\"1\"><Inner/>text</Strange>"
    "<Password Encrypted=\"1\">of another agent</Password></HttpSite>"
    "<NoSuchSite Name=\"Unknown\"/>";

class CliEditSite : public CliEdit {
 protected:
  // Returns a list with the site "Depot" between content that must not change.
  std::string text() const {
    return document(c_surroundings +
                        siteElement("HttpSite", "Depot", "1",
                                    "Type=\"repository\" Extra=\"kept\" Enabled=\"5\"",
                                    "<!-- inside --><Tag/>") +
                        siteElement("FTPSite", "End", "3"),
                    "<Policies><Setting name=\"a\">b</Setting></Policies><Unknown/>",
                    "GlobalVersion=\"1\" LocalVersion=\"2\" Own=\"x\"");
  }
};

TEST_F(CliEditSite, EnablesAndDisables) {
  setOwnList(text());
  changeNothing({"enable", "Depot"});
  EXPECT_EQ(change({"disable", "Depot"}), "sitelist: " + ownList() + ": disabled http \"Depot\"\n");
  EXPECT_EQ(readFile(ownList()), replaced(text(), "Enabled=\"5\"", "Enabled=\"0\""))
      << "every other byte is as it was";
  changeNothing({"disable", "Depot"});
  EXPECT_EQ(change({"enable", "Depot"}), "sitelist: " + ownList() + ": enabled http \"Depot\"\n");
  EXPECT_EQ(site("Depot")["enabled"], "true");
}

TEST_F(CliEditSite, KeepsWhatItDoesNotTouch) {
  setOwnList(text());
  change({"set", "Depot", "userName=reader", "relativePath=pub"});
  change({"rename", "Depot", "Depot 2"});
  change({"move", "Depot 2", "last"});
  change({"add", "unc", "Share", "server=FILES01"});
  change({"remove", "End"});
  const std::string list = readFile(ownList());
  EXPECT_THAT(list, HasSubstr(replaced(c_surroundings, "Order=\"2\"", "Order=\"1\"")));
  EXPECT_THAT(list,
              AllOf(HasSubstr("<Policies><Setting name=\"a\">b</Setting></Policies><Unknown/>"),
                    HasSubstr("GlobalVersion=\"1\" LocalVersion=\"2\" Own=\"x\""),
                    HasSubstr("Extra=\"kept\""), HasSubstr("<!-- inside --><Tag/>")));
}

TEST_F(CliEditSite, Removes) {
  setOwnList(text());
  EXPECT_EQ(change({"remove", "Depot"}), "sitelist: " + ownList() + ": removed http \"Depot\"\n");
  EXPECT_THAT(readFile(ownList()), Not(HasSubstr("Depot")));
  EXPECT_EQ(sites().size(), 3U);
  EXPECT_THAT(fail(7, {"remove", "Depot"}), HasSubstr("there is no site \"Depot\"\n"));
}

TEST_F(CliEditSite, Renames) {
  setOwnList(text());
  change({"rename", "Depot", "東京 & <Depot>"});
  EXPECT_EQ(site("東京 & <Depot>")["order"], "1");
  changeNothing({"rename", "Depot", "東京 & <Depot>"});
  changeNothing({"rename", "End", "End"});
  EXPECT_THAT(fail(6, {"rename", "End", "Other"}),
              HasSubstr("the name \"Other\" is already used by http \"Other\""));
  fail(7, {"rename", "Depot", "None"});
  fail(2, {"rename", "End", ""});
  change({"rename", "End", "Other", "--kind", "ftp"});
}

TEST_F(CliEditSite, NamesOfCommandsAreNamesToo) {
  setOwnList(document(sitesWithOrders({"1", "2"}) + siteElement("HttpSite", "show", "3") +
                      siteElement("HttpSite", "set", "4")));
  change({"enable", "a"});
  change({"move", "show", "before", "b"});
  change({"remove", "set"});
  change({"rename", "show", "edit"});
  EXPECT_EQ(orders(), "a=1 edit=2 b=3");
}

TEST_F(CliEditSite, FailsForASiteThatIsNotThere) {
  setOwnList(text());
  const std::string expected = "sitelist: " + ownList() + ": there is no ";
  for (const Arguments& arguments : {Arguments{"enable", "None"},
                                     {"disable", "None"},
                                     {"set", "None", "userName=x"},
                                     {"remove", "None"},
                                     {"rename", "None", "New"},
                                     {"move", "None", "first"},
                                     {"move", "Depot", "before", "None"}}) {
    EXPECT_THAT(fail(7, arguments), HasSubstr(expected + "site \"None\"\n"));
  }
  EXPECT_THAT(fail(7, {"enable", "Depot", "--kind", "ftp"}),
              HasSubstr(expected + "site \"Depot\" of kind ftp\n"));
  fail(7, {"enable", "depot"});
}

TEST_F(CliEditSite, AsksForTheKindOfANameThatSeveralShare) {
  setOwnList(document(siteElement("HttpSite", "Depot", "1") + siteElement("FTPSite", "Depot", "2") +
                      siteElement("UNCSite", "Twin", "3") + siteElement("UNCSite", "Twin", "4")));
  for (const Arguments& arguments : {Arguments{"enable", "Depot"},
                                     {"set", "Depot", "userName=x"},
                                     {"remove", "Depot"},
                                     {"rename", "Depot", "New"},
                                     {"move", "Depot", "last"}}) {
    EXPECT_THAT(fail(6, arguments),
                AllOf(HasSubstr("http \"Depot\", order 1"), HasSubstr("ftp \"Depot\", order 2"),
                      HasSubstr("--kind")));
  }
  change({"enable", "Depot", "--kind", "ftp"});
  EXPECT_EQ(sites()[0]["enabled"] + sites()[1]["enabled"], "falsetrue");
  EXPECT_THAT(fail(6, {"enable", "Twin", "--kind", "unc"}), Not(HasSubstr("--kind")));
  change({"rename", "Depot", "Twin", "--kind", "http"});
}

TEST_F(CliEditSite, Moves) {
  setOwnList(document(sitesWithOrders({"10", "20", "30", "40"})));
  EXPECT_EQ(change({"move", "d", "first"}),
            "sitelist: " + ownList() + ": moved http \"d\" to place 1 of 4\n");
  EXPECT_EQ(orders(), "d=10 a=20 b=30 c=40");
  changeNothing({"move", "d", "first"});
  changeNothing({"move", "d", "1"});
  change({"move", "d", "last"});
  EXPECT_EQ(orders(), "a=10 b=20 c=30 d=40");
  change({"move", "a", "3"});
  EXPECT_EQ(orders(), "b=10 c=20 a=30 d=40") << "d keeps its order";
  change({"move", "d", "before", "c"});
  EXPECT_EQ(orders(), "b=10 d=20 c=30 a=40") << "b keeps its order";
  changeNothing({"move", "d", "before", "c"});
  change({"move", "b", "after", "d"});
  EXPECT_EQ(orders(), "d=10 b=20 c=30 a=40");
  changeNothing({"move", "b", "after", "d"});
}

TEST_F(CliEditSite, MovesSitesThatShareAnOrderOrHaveNone) {
  setOwnList(document(sitesWithOrders({"5", "5", "5"})));
  change({"move", "c", "first"});
  EXPECT_EQ(orders(), "c=5 a=6 b=6")
      << "sites that the document has in this order may share an order";
  setOwnList(document(sitesWithOrders({"", "", "7"})));
  change({"move", "a", "after", "b"});
  EXPECT_EQ(orders(), "b=0 a=1 c=7");
  setOwnList(document(sitesWithOrders({"1", "1", "2"})));
  change({"move", "c", "2"});
  EXPECT_EQ(orders(), "a=1 c=1 b=2");
  setOwnList(document(sitesWithOrders({"2147483647", "2147483647"})));
  fail(2, {"move", "b", "first"});
}

TEST_F(CliEditSite, DoesNotMoveWhatHasNoPlace) {
  setOwnList(document(sitesWithOrders({"1", "2"}) +
                      siteElement("HttpSite", "Mirror", "3", "Type=\"Mirror\"") +
                      siteElement("HttpSite", "Last", "", "Type=\"Fallback\"") +
                      siteElement("HttpSite", "Early", "3", "Type=\"fallback\"") +
                      "<ProxyConfigList><ProxyConfig Name=\"Proxy\"/></ProxyConfigList>"));
  EXPECT_THAT(
      fail(2, {"move", "Mirror", "first"}),
      HasSubstr("a mirror has no place in the search order\n"
                "  next: set another type with `sitelist edit set`, or name another site\n"));
  EXPECT_THAT(fail(2, {"move", "Last", "first"}),
              HasSubstr("a fallback without an order has no place in the search order\n"
                        "  next: set an order with `sitelist edit set`, or name another site\n"));
  EXPECT_THAT(fail(2, {"move", "Proxy", "first"}),
              HasSubstr("a proxy has no place in the search order\n"
                        "  next: name a site that is not a proxy\n"));
  EXPECT_THAT(fail(2, {"move", "a", "after", "Last"}), HasSubstr("\"Last\""));
  EXPECT_THAT(fail(2, {"move", "a", "before", "a"}), HasSubstr("itself"));
  change({"move", "Early", "first"});
  EXPECT_EQ(orders(), "Early=1 a=2 b=3");
  change({"move", "a", "last"});
  EXPECT_EQ(orders(), "Early=1 b=2 a=3");
}

TEST_F(CliEditSite, ProxiesAreNotSwitchedOff) {
  setOwnList(document("<ProxyConfigList><ProxyConfig Name=\"Proxy\"/></ProxyConfigList>"));
  EXPECT_THAT(fail(2, {"disable", "Proxy"}), HasSubstr("sitelist edit remove"));
  change({"rename", "Proxy", "Way out"});
  change({"remove", "Way out", "--force"});
  EXPECT_TRUE(sites().empty());
}

TEST_F(CliEditSite, EveryEditHasHelpWithAnExampleThatFitsATerminal) {
  for (const std::string command :
       {"enable", "disable", "set", "add", "remove", "rename", "move"}) {
    EXPECT_THAT(bare({"edit", "--help"}).out, HasSubstr("\n  " + command + " "));
    const Output output = bare({"edit", command, "--help"});
    EXPECT_EQ(output.status, 0) << command;
    EXPECT_THAT(output.out, HasSubstr("\n  sitelist edit " + command + " "));
    std::istringstream lines(output.out);
    for (std::string line; std::getline(lines, line);) EXPECT_LE(line.size(), 80U) << line;
  }
}

TEST_F(CliEditSite, RefusesWrongUsage) {
  setOwnList(document(sitesWithOrders({"1", "2"})));
  for (const Arguments& arguments : std::vector<Arguments>{
           {},
           {"bogus"},
           {"enable"},
           {"enable", "a", "b"},
           {"enable", "a", "--kind", "bogus"},
           {"enable", "a", "--wait", "soon"},
           {"enable", "a", "--wait", "-1"},
           {"enable", "a", "--wait", "86401"},
           {"enable", "a", "--file", ""},
           {"remove"},
           {"rename", "a"},
           {"set", "a"},
           {"set", "a", "userName"},
           {"set", "a", "=x"},
           {"set", "a", "userName=x", "userName=y"},
           {"set", "a", "name=b"},
           {"add", "http"},
           {"add", "bogus", "c"},
           {"add", "http", ""},
           {"move", "a"},
           {"move", "a", "0"},
           {"move", "a", "3"},
           {"move", "a", "before"},
           {"move", "a", "first", "b"},
           {"restore"},
           {"enable", "a", "--backup"},
       }) {
    fail(2, arguments);
  }
}

TEST_F(CliEditSite, TellsWhatIsWrongWithAListThatCannotBeEdited) {
  EXPECT_THAT(fail(4, {"enable", "a"}), HasSubstr("the file does not exist"));
  setOwnList("<ns:SiteLists>\n</a>");
  EXPECT_THAT(fail(3, {"enable", "a"}), HasSubstr("line 2, column 3"));
  setOwnList("<other/>");
  EXPECT_THAT(fail(3, {"enable", "a"}), HasSubstr("the document is not a site list"));
  setOwnList("<ns:SiteLists xmlns:ns=\"wxSiteList\"/>");
  EXPECT_THAT(fail(3, {"add", "http", "a"}), HasSubstr("the document has no \"SiteList\""));
  setOwnList(document(sitesWithOrders({"1"}) + "<Unknown/>"));
  EXPECT_THAT(fail(3, {"disable", "a"}), HasSubstr("unknown kind"));
}

TEST_F(CliEditSite, SaysHowAPlaceIsGiven) {
  EXPECT_THAT(fail(2, {"move", "a", "before"}),
              HasSubstr("the site to move before is missing\n  next: add its name, as in `sitelist "
                        "edit move Depot before Offices`\n"));
  EXPECT_THAT(
      fail(2, {"move", "a", "behind", "b"}),
      HasSubstr("PLACE \"behind\" does not take OTHER\n  next: use before or after with \"b\", or "
                "omit it\n"));
}

// The library reads another element of this list than the one that an edit would change.
TEST_F(CliEditSite, RefusesAChangeThatTheAgentWouldNotSee) {
  setOwnList(
      document("<ProxyConfigList><ProxyConfig Name=\"Proxy\"/><HttpSite Name=\"Proxy\"/>"
               "</ProxyConfigList>"));
  EXPECT_THAT(fail(3, {"set", "Proxy", "httpProxyServer=x"}),
              HasSubstr("would not read the changed document as intended"));
}

}  // namespace
}  // namespace test
