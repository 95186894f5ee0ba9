#include <filesystem>

#include "tests/cli/edit_fixture.h"
#include "tests/cli/json_report.h"

// A dry run prints the changes that the command then makes. They are those that `diff` finds
// between the old and the new list.
namespace test {
namespace {

using testing::ElementsAreArray;
using testing::IsEmpty;
using testing::Not;
using testing::UnorderedElementsAreArray;

using Rows = std::vector<JsonReport::Record>;

constexpr const char* c_keyFiles[] = {"srpubkey.bin", "reqseckey.bin", "sr2048pubkey.bin",
                                      "req2048seckey.bin"};

std::string proxy(const std::string& attributes, const std::string& children) {
  return "<ProxyConfigList><ProxyConfig Name=\"p\" " + attributes + ">" + children +
         "</ProxyConfig></ProxyConfigList>";
}

class CliPrediction : public CliTest {
 protected:
  void SetUp() override {
    initAgent();
    setOwnList(own());
    for (const char* name : c_keyFiles) write(std::string("in/") + name, name);
    write("agent/etc/srpubkey.bin", "srpubkey.bin");
    write("agent/etc/reqseckey.bin", "another");
  }

  std::string own() {
    return document(
        serverSite({{"Version", "5.9"}}) + httpSite("changed", "2", protectedText("before")) +
            httpSite("moved", "3") + httpSite("gone", "4") + httpSite("same", "5") +
            proxy("HttpProxyServer=\"one\" HttpProxyPort=\"1\"",
                  "<HttpProxyPassword>" + protectedText("proxy") + "</HttpProxyPassword>"),
        "<CaBundle><CaCertificate>text</CaCertificate></CaBundle>"
        "<Policies><Setting name=\"a\">1</Setting><Setting name=\"b\">2</Setting></Policies>");
  }

  // Returns a list that differs from the agent's list in every possible way.
  std::string incoming() {
    const std::string pem = c_certificatePem;
    return document(
        httpSite("moved", "9") + serverSite({{"Version", "6.0"}, {"SecurePort", "443"}}) +
            serverSite({{"Name", "Second"}, {"Order", "2"}, {"Version", "6.0"}}) +
            httpSite("same", "5") + httpSite("changed", "2", protectedText("after")) +
            siteElement("FTPSite", "new", "7", "Server=\"n.example:21\" Enabled=\"1\"") +
            proxy("HttpProxyServer=\"two\" HttpProxyPort=\"2\"",
                  "<ExclusionList><ExclusionHost>x</ExclusionHost></ExclusionList>"),
        "<CaBundle><CaCertificate>" + pem +
            "</CaCertificate></CaBundle><Policies><Setting name=\"b\">3</Setting><Setting "
            "name=\"c\"></Setting></Policies>",
        "GlobalVersion=\"20270101000000\" LocalVersion=\"20270102000000\" Type=\"Server\" "
        "FipsMode=\"1\"");
  }

  // Returns a list with fields that the writer omits or changes.
  static std::string peculiar() {
    const std::string http = " ServerIP=\"192.0.2.7:81\" ServerName=\"N.x:82\" Version=\"7\"";
    return document(
        siteElement("HttpSite", "mirror", "5", "Type=\"mirror\" Server=\"h\"" + http) +
        siteElement("HttpSite", "typeless", "6", "Server=\"h:x\"" + http) +
        siteElement("KeystoneSite", "agent", "7", "ServerDNS=\"d:83\" Server=\"s:84\"" + http) +
        siteElement("WhatSite", "what", "8", "Enabled=\"1\"") +
        siteElement("UNCSite", "share", "9", "Server=\"%%lt%%COMPUTER%%gt%%\"",
                    "<RelativePath>&lt;DATA&gt;/%%lt%%X%%gt%%</RelativePath>") +
        siteElement("FTPSite", std::string(300, 'x'), "10", "Server=\"[::1]:21\" Local=\"3\"") +
        siteElement("LocalSite", "a&#9;b&#10;&#x9B;&lt;", "-1", "Type=\"\" Enabled=\"7\"") +
        siteElement("HttpSite", "fallback", "", "Type=\"Fallback\" Server=\"h\"") +
        "<ProxyConfigList UseIEConfig=\"1\"/>");
  }

  Rows rowsOf(const Output& output) {
    EXPECT_EQ(output.status, 0) << output.err;
    return readReport(output.out).rows;
  }

  Rows diff(const std::string& before, const std::string& after) {
    return rowsOf(sitelist({"diff", "--json", "--show-secrets", before, after}));
  }

  // Returns the changes that a dry run prints for the list, or for the files next to it.
  static Rows listRows(const Rows& all) { return withoutFile(all, false); }
  static Rows fileRows(const Rows& all) { return withoutFile(all, true); }

  // Runs the command as a dry run, then without --dry-run.
  void expectPrediction(const Arguments& command) {
    const auto before = agentFiles();
    write("before.xml", readFile(ownList()));
    const Rows told = rowsOf(sitelist(Arguments{"--json"} + command + Arguments{"--dry-run"}));
    ASSERT_EQ(agentFiles(), before) << "a dry run";
    const Output done = sitelist(command);
    ASSERT_EQ(done.status, 0) << done.err;
    EXPECT_THAT(listRows(told), ElementsAreArray(masked(diff(file("before.xml"), ownList()))));
    EXPECT_THAT(fileRows(told), UnorderedElementsAreArray(fileChanges(before, agentFiles())));
  }

  // Returns the rows as an import prints them. For a password they show only whether it is
  // empty.
  static Rows masked(Rows rows) {
    for (JsonReport::Record& row : rows) {
      if (row["field"].find("assword") == std::string::npos) continue;
      for (const char* side : {"before", "after"}) {
        if (!row[side].empty()) row[side] = "********";
      }
    }
    for (JsonReport::Record& row : rows) {
      for (auto field = row.begin(); field != row.end();) {
        const bool isAdded = field->second.empty() && field->first == "field";
        field = isAdded ? row.erase(field) : std::next(field);
      }
    }
    return rows;
  }

 private:
  using Files = std::map<std::string, std::string>;

  static Rows withoutFile(const Rows& all, bool isFile) {
    Rows rows;
    for (const JsonReport::Record& row : all) {
      if ((row.at("section") == "file") == isFile) rows.push_back(row);
    }
    return rows;
  }

  static Rows fileChanges(const Files& before, const Files& after) {
    Rows rows;
    for (const char* name : c_keyFiles) {
      const auto old = before.find(std::string("etc/") + name);
      const auto fresh = after.find(std::string("etc/") + name);
      const bool wasThere = old != before.end();
      const bool isThere = fresh != after.end();
      if (wasThere == isThere && (!isThere || old->second == fresh->second)) continue;
      rows.push_back({{"section", "file"},
                      {"change", !wasThere ? "added"
                                 : isThere ? "changed"
                                           : "removed"},
                      {"name", name}});
    }
    return rows;
  }
};

TEST_F(CliPrediction, ImportOfAListThatDiffersInEverything) {
  expectPrediction({"import", write("in/list.xml", incoming())});
}

TEST_F(CliPrediction, ImportOfAListWhoseRecordsAreWrittenInAnotherWay) {
  expectPrediction({"install", write("list.xml", peculiar())});
}

TEST_F(CliPrediction, ImportOfTheListThatIsThere) {
  const std::string path = write("in/list.xml", own());
  ASSERT_EQ(sitelist({"import", path}).status, 0);
  expectPrediction({"import", path});
  EXPECT_THAT(diff(path, ownList()), IsEmpty());
}

TEST_F(CliPrediction, ImportThatExchangesTheDefaultRepositories) {
  expectPrediction(
      {"import", write("list.xml", document(siteElement("FTPSite", "f", "1",
                                                        "Server=\"ftp.wex.example:21\" "
                                                        "Enabled=\"1\" Type=\"repository\"") +
                                            siteElement("HttpSite", "h", "2",
                                                        "Server=\"update.wex.example:80\" "
                                                        "Enabled=\"1\" Type=\"repository\"")))});
}

TEST_F(CliPrediction, ImportOfAnothersPasswords) {
  expectPrediction({"import", "--allow-lost-passwords",
                    write("list.xml", document(httpSite("changed", "2", "QUJD")))});
}

TEST_F(CliPrediction, ModifyWithEveryChoice) {
  const std::string path = write("in/list.xml", incoming());
  expectPrediction({"modify", path});
  expectPrediction({"modify", "--repositories", path});
  expectPrediction({"modify", "--servers", path});
  expectPrediction({"modify", "--servers", "--repositories", write("in/list.xml", own())});
}

// A merge makes a new list. Its dry run compares the new list with the list that receives the
// sites.
class CliMergePrediction : public CliPrediction {
 protected:
  void expectMerge(const Arguments& lists, const std::string& base) {
    const Rows told = rowsOf(sitelist(Arguments{"merge", "--json", "--dry-run"} + lists));
    const std::string target = file("merged.xml");
    const Output done = sitelist(Arguments{"merge", "--output", target} + lists);
    ASSERT_EQ(done.status, 0) << done.err;
    Rows found;
    for (const JsonReport::Record& row : masked(diff(base, target))) {
      if (row.at("name") != "localVersion") found.push_back(row);  // the time of writing
    }
    EXPECT_THAT(found, Not(IsEmpty()));
    EXPECT_THAT(told, ElementsAreArray(found));
  }
};

TEST_F(CliMergePrediction, OfTheFirstListIntoTheOwnOne) {
  expectMerge({"--first", write("first.xml", incoming())}, ownList());
}

TEST_F(CliMergePrediction, OfTwoLists) {
  const std::string second = write("second.xml", incoming());
  expectMerge({"--first", write("first.xml", peculiar()), "--second", second}, second);
}

TEST_F(CliMergePrediction, OfTheOwnServersIntoTheSecondList) {
  const std::string second = write("second.xml", peculiar());
  expectMerge({"--second", second}, second);
}

}  // namespace
}  // namespace test
