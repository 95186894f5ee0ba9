#include <algorithm>

#include "tests/cli/edit_fixture.h"
#include "tests/cli/json_report.h"

namespace test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

class CliShowOptions : public CliTest {
 protected:
  void useSites(const std::string& sites) { m_path = write("list.xml", document(sites)); }

  Output show(const Arguments& options) { return sitelist(Arguments{"show", m_path} + options); }

  // The names of the sites shown, in the order of the list unless the options ask for another.
  std::vector<std::string> names(const Arguments& options) {
    return readReport(show(Arguments{"--json"} + options).out).column("name");
  }

  std::vector<std::string> filtered(const std::string& filter) {
    return names({"--filter", filter});
  }
  std::vector<std::string> sorted(const std::string& column) { return names({"--sort=" + column}); }

 private:
  std::string m_path;
};

const std::string c_mixed =
    siteElement("VestaSite", "Main", "1", "Type=\"master\" Server=\"pyx:80\"") +
    siteElement("HttpSite", "Alpha", "10", "Type=\"repository\" Server=\"c:8080\"") +
    siteElement("FTPSite", "http", "9", "Type=\"repository\" Server=\"b:21\"") +
    siteElement("HttpSite", "Mirror", "", "Type=\"mirror\" Server=\"a:443\"") +
    siteElement("UNCSite", "Al", "-3", "Type=\"Remediation\" Server=\"F\"");

TEST_F(CliShowOptions, FilterMatchesKindTypeOrName) {
  useSites(c_mixed);
  EXPECT_THAT(filtered("unc"), ElementsAre("Al"));
  EXPECT_THAT(filtered("master"), ElementsAre("Main"));
  EXPECT_THAT(filtered("Alpha"), ElementsAre("Alpha"));
  EXPECT_THAT(filtered("http"), ElementsAre("Alpha", "http", "Mirror")) << "a kind and a name";
}

TEST_F(CliShowOptions, FilterWithAPrefixMatchesThatAlone) {
  useSites(c_mixed);
  EXPECT_THAT(filtered("kind=http"), ElementsAre("Alpha", "Mirror"));
  EXPECT_THAT(filtered("name=http"), ElementsAre("http"));
  EXPECT_THAT(filtered("type=http"), IsEmpty());
  EXPECT_THAT(filtered("type=mirror"), ElementsAre("Mirror"));
  EXPECT_THAT(filtered("server=c"), IsEmpty())
      << "this text is not a prefix but a part of the pattern";
}

TEST_F(CliShowOptions, FilterMatchesTheWholeTextWithoutRegardToCase) {
  useSites(c_mixed);
  EXPECT_THAT(filtered("name=al"), ElementsAre("Al"));
  EXPECT_THAT(filtered("name=aL*"), ElementsAre("Alpha", "Al"));
  EXPECT_THAT(filtered("name=?l*a"), ElementsAre("Alpha"));
  EXPECT_THAT(filtered("*m*"), ElementsAre("Main", "Mirror", "Al"))
      << "the pattern also matches a type";
  EXPECT_THAT(filtered("kind=HTTP"), ElementsAre("Alpha", "Mirror"));
}

TEST_F(CliShowOptions, FilterCountsCharactersOfEveryScriptAndNothingElseIsSpecial) {
  useSites(siteElement("HttpSite", "Dépôt", "1") + siteElement("HttpSite", "ΕΦΕΔΡΙΚΌΣ", "2") +
           siteElement("HttpSite", "東京", "3") + siteElement("HttpSite", "[a]\\b", "4") +
           siteElement("HttpSite", "a", "5") + siteElement("HttpSite", "a*?", "6"));
  EXPECT_THAT(filtered("name=d?p?t"), ElementsAre("Dépôt"));
  EXPECT_THAT(filtered("name=DÉPÔT"), ElementsAre("Dépôt"));
  EXPECT_THAT(filtered("name=Εφεδρικός"), ElementsAre("ΕΦΕΔΡΙΚΌΣ"));
  EXPECT_THAT(filtered("name=??"), ElementsAre("東京"));
  EXPECT_THAT(filtered("name=[a]*"), ElementsAre("[a]\\b"));
  EXPECT_THAT(filtered("name=*\\b"), ElementsAre("[a]\\b"));
  EXPECT_THAT(filtered("name=a*\\?"), IsEmpty());
}

TEST_F(CliShowOptions, ColumnsApplyToTheFormatsForPrograms) {
  useSites(siteElement("UNCSite", "Share", "1", "Enabled=\"1\" Server=\"F\"",
                       "<ShareName>Orb$</ShareName><RelativePath>a</RelativePath>") +
           siteElement("HttpSite", "Depot", "2", "Server=\"d:81\""));
  const std::string columns = "--columns=path,shareName,order,state,name,address";
  EXPECT_EQ(show({columns, "--format", "csv"}).out,
            "path,shareName,order,state,name,address\n"
            "Orb$\\a,Orb$,1,on,Share,F\n"
            ",,2,off,Depot,d:81\n");
  EXPECT_THAT(show({columns, "--json"}).out, HasSubstr("    {\n"
                                                       "      \"path\": \"\",\n"
                                                       "      \"order\": 2,\n"
                                                       "      \"state\": \"off\",\n"
                                                       "      \"name\": \"Depot\",\n"
                                                       "      \"address\": \"d:81\"\n"
                                                       "    }"));
  const std::string sorted = show({"--columns=name", "--sort=-name", "--format", "xml"}).out;
  EXPECT_THAT(sorted, HasSubstr("    <site>\n      <name>Share</name>\n    </site>\n"
                                "    <site>\n      <name>Depot</name>\n    </site>\n"));
  EXPECT_THAT(show({"--columns=name,name,kind", "--json"}).out,
              HasSubstr("    {\n      \"name\": \"Share\",\n      \"kind\": \"unc\"\n    }"))
      << "each column appears once";
  EXPECT_THAT(show({"--json"}).out, HasSubstr("\"relativePath\": \"a\""))
      << "without --columns, every field";
}

TEST_F(CliShowOptions, SeveralFiltersMustAllMatch) {
  useSites(c_mixed);
  EXPECT_THAT(names({"--filter", "kind=http", "--filter", "name=*a*"}), ElementsAre("Alpha"));
  EXPECT_THAT(names({"--filter", "kind=http", "--filter", "kind=ftp"}), IsEmpty());
}

TEST_F(CliShowOptions, FilterThatMatchesNothingIsANegativeAnswer) {
  useSites(c_mixed);
  const Output output = show({"--filter", "nothing"});
  EXPECT_EQ(output.status, 1);
  EXPECT_EQ(output.out, "");
  EXPECT_THAT(output.err, HasSubstr("no site matches\n"));
}

TEST_F(CliShowOptions, AnUnknownFilterKeyIsWrongUsage) {
  useSites(c_mixed);
  const Output output = show({"--filter", "zone=a"});
  EXPECT_EQ(output.status, 2);
  EXPECT_EQ(output.out, "");
  EXPECT_EQ(output.err,
            "sitelist: unknown filter key \"zone\"\n"
            "  next: use one of kind, type, name; to match a name that contains \"=\", use "
            "name=PATTERN\n");
  EXPECT_EQ(show({"--filter", "name=a=b"}).status, 1);
  EXPECT_EQ(show({"--filter", "=x"}).status, 1);
}

TEST_F(CliShowOptions, AnEmptyNameOfAColumnIsWrongUsage) {
  useSites(c_mixed);
  for (const char* option : {"--columns", "--sort"}) {
    const Output output = show({option, ""});
    EXPECT_EQ(output.status, 2) << option;
    EXPECT_EQ(output.err, "sitelist: " + std::string(option) +
                              ": the value is empty\n  next: see `sitelist show --help`\n");
  }
}

TEST_F(CliShowOptions, FilterTakesTheProxyOutOfTheTable) {
  useSites(c_mixed + "<ProxyConfigList><ProxyConfig Name=\"p\"/></ProxyConfigList>");
  EXPECT_THAT(show({"--filter", "kind=ftp"}).out, testing::Not(HasSubstr("Proxy")));
  EXPECT_THAT(show({"--filter", "kind=proxy"}).out, testing::StartsWith("Proxy p\n"));
}

TEST_F(CliShowOptions, SortsNumbersByTheirValueInBothDirections) {
  useSites(c_mixed);
  EXPECT_THAT(sorted("order"), ElementsAre("Al", "Mirror", "Main", "http", "Alpha"));
  EXPECT_THAT(sorted("-order"), ElementsAre("Alpha", "http", "Main", "Mirror", "Al"));
  EXPECT_THAT(sorted("serverPort"), ElementsAre("Al", "http", "Main", "Mirror", "Alpha"))
      << "the share has no port";
}

TEST_F(CliShowOptions, SortsTextsAndKeepsEqualOnesAsTheyCame) {
  useSites(c_mixed);
  EXPECT_THAT(sorted("name"), ElementsAre("Al", "Alpha", "Main", "Mirror", "http"));
  EXPECT_THAT(sorted("kind"), ElementsAre("http", "Alpha", "Mirror", "Main", "Al"));
  EXPECT_THAT(sorted("-kind"), ElementsAre("Al", "Main", "Alpha", "Mirror", "http"));
  EXPECT_THAT(sorted("enabled"), ElementsAre("Main", "Alpha", "http", "Mirror", "Al"));
}

TEST_F(CliShowOptions, SortsByTheColumnsOfTheTableAsWell) {
  useSites(siteElement("HttpSite", "on", "1", "Server=\"b:1\" Enabled=\"1\"") +
           siteElement("HttpSite", "off", "2", "Server=\"a:1\" Enabled=\"0\""));
  EXPECT_THAT(sorted("address"), ElementsAre("off", "on"));
  EXPECT_THAT(sorted("-state"), ElementsAre("on", "off"));
}

TEST_F(CliShowOptions, TheTableFollowsTheSort) {
  useSites(c_mixed);
  EXPECT_EQ(show({"--columns", "name", "--sort", "name"}).out,
            "NAME\nAl\nAlpha\nMain\nMirror\nhttp\n");
}

TEST_F(CliShowOptions, ColumnsAreThoseAskedForInTheirOrder) {
  useSites(siteElement("HttpSite", "a", "1", "Server=\"h:81\"") +
           "<ProxyConfigList><ProxyConfig Name=\"p\" HttpProxyServer=\"x\" HttpProxyPort=\"3\"/>"
           "</ProxyConfigList>");
  EXPECT_EQ(show({"--columns", "serverPort,name,httpProxyServer,path"}).out,
            "SERVERPORT  NAME  HTTPPROXYSERVER  PATH\n"
            "81          a     -                -\n"
            "-           p     x                -\n");
}

TEST_F(CliShowOptions, EveryFieldCanBeAColumn) {
  useSites(c_mixed);
  const Output output = show({"--columns", "none"});
  EXPECT_EQ(output.status, 2);
  const std::string mark = "next: use one of ";
  std::string all = output.err.substr(output.err.find(mark) + mark.size());
  all.erase(all.find('\n'));
  all.erase(std::remove(all.begin(), all.end(), ' '), all.end());
  for (const auto& row : readReport(show({"--json"}).out).rows) {
    for (const auto& field : row) {
      EXPECT_THAT("," + all + ",", HasSubstr("," + field.first + ","));
    }
  }
  const Output table = show({"--columns", all});
  EXPECT_EQ(table.status, 0) << table.err;
  EXPECT_EQ(show({"--sort", "none"}).status, 2);
}

}  // namespace
}  // namespace test
