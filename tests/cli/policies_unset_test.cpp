#include "tests/cli/edit_fixture.h"
#include "tests/cli/json_report.h"
#include "tests/support/locker.h"

// The removal of policy settings, and the dry runs of changes to them.
namespace test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

std::string setting(const std::string& name, const std::string& value) {
  return "<Setting name=\"" + name + "\">" + value + "</Setting>";
}

class CliPoliciesUnset : public CliTest {
 protected:
  CliPoliciesUnset() {
    initAgent();
    setOwnList(list(httpSite("depot")));
  }

  static std::string list(const std::string& sites) {
    return document(sites, "<Policies>" + setting("Alpha", "1") + setting("Beta", "2") +
                               setting("Gamma", "3") + "</Policies>");
  }
  std::string settings() { return sitelist({"policies"}).out; }

  // Runs a change that must fail with this status and change nothing.
  std::string fail(int status, const Arguments& arguments) {
    const auto before = agentFiles();
    const Output output = sitelist(Arguments{"policies"} + arguments);
    EXPECT_EQ(output.status, status) << output.err;
    EXPECT_EQ(output.out, "");
    EXPECT_EQ(agentFiles(), before);
    return output.err;
  }
};

TEST_F(CliPoliciesUnset, RemovesTheNamedSettingsAndNothingElse) {
  const std::string sites = sitelist({"show", "--json"}).out;
  const std::string versions = sitelist({"versions"}).out;
  const Output one = sitelist({"policies", "unset", "Beta"});
  EXPECT_EQ(one.status, 0) << one.err;
  EXPECT_EQ(one.err, "sitelist: " + ownList() + ": removed policy setting \"Beta\"\n");
  EXPECT_EQ(settings(), "Alpha = 1\nGamma = 3\n");
  const Output rest = sitelist({"policies", "unset", "Gamma", "Alpha", "Gamma"});
  EXPECT_EQ(rest.status, 0) << rest.err;
  EXPECT_EQ(rest.err,
            "sitelist: " + ownList() + ": removed policy settings \"Alpha\", \"Gamma\"\n");
  EXPECT_EQ(settings(), "");
  EXPECT_EQ(sitelist({"show", "--json"}).out, sites);
  EXPECT_EQ(sitelist({"versions"}).out, versions);
}

TEST_F(CliPoliciesUnset, RemovesNothingIfOneIsMissing) {
  EXPECT_EQ(fail(7, {"unset", "Alpha", "gamma"}),
            "sitelist: " + ownList() +
                ": there is no policy setting \"gamma\"; did you mean Gamma?\n"
                "  next: list all settings with `sitelist policies`\n");
}

TEST_F(CliPoliciesUnset, NeedsANameAndAList) {
  EXPECT_EQ(fail(2, {"unset"}),
            "sitelist: NAME is required\n  next: see `sitelist policies unset --help`\n");
  EXPECT_EQ(fail(2, {"unset", "Alpha", ""}),
            "sitelist: NAME: the value is empty\n  next: see `sitelist policies unset --help`\n");
  ASSERT_EQ(shell("rm agent/etc/SiteList.xml").status, 0);
  EXPECT_THAT(fail(4, {"unset", "Alpha"}), HasSubstr("the file does not exist"));
}

TEST_F(CliPoliciesUnset, RefusesToLosePasswords) {
  setOwnList(list(httpSite("depot", "1", "elsewhere")));
  EXPECT_THAT(fail(5, {"unset", "Alpha"}), HasSubstr("site \"depot\""));
  EXPECT_THAT(fail(5, {"unset", "--dry-run", "Alpha"}), HasSubstr("site \"depot\""));
  const Output output = sitelist({"policies", "unset", "--allow-lost-passwords", "Alpha"});
  EXPECT_EQ(output.status, 0);
  EXPECT_THAT(output.err, HasSubstr("a password of site \"depot\" cannot be decrypted"));
}

TEST_F(CliPoliciesUnset, KeepsTheOldListAndUpdatesTheMeshCopy) {
  const std::string before = readFile(ownList());
  write("agent/mesh/SiteList.xml", "stale");
  ASSERT_EQ(sitelist({"policies", "unset", "Alpha"}).status, 0);
  EXPECT_EQ(readFile(file("agent/mesh/SiteList.xml")), readFile(ownList()));
  EXPECT_THAT(sitelist({"history"}).out, HasSubstr("policies unset"));
  ASSERT_EQ(sitelist({"undo"}).status, 0);
  EXPECT_EQ(readFile(ownList()), before);
}

TEST_F(CliPoliciesUnset, WaitsForTheLockOfTheList) {
  Locker other(file("agent"));
  ASSERT_TRUE(other.lock(Locker::Mode::Read));
  EXPECT_THAT(fail(4, {"unset", "--wait", "0", "Alpha"}), HasSubstr("locked by another process"));
  other.unlock(Locker::Mode::Read);
  EXPECT_EQ(sitelist({"policies", "unset", "--wait", "0", "Alpha"}).status, 0);
}

TEST_F(CliPoliciesUnset, ADryRunShowsTheChangesAndWritesNothing) {
  const auto before = agentFiles();
  const auto rowsOf = [&](const Arguments& arguments) {
    const Output output = sitelist(Arguments{"--json", "policies"} + arguments);
    EXPECT_EQ(output.status, 0) << output.err;
    std::vector<std::string> rows;
    for (const auto& row : readReport(output.out).rows) {
      rows.push_back(row.at("section") + " " + row.at("change") + " " + row.at("name"));
    }
    return rows;
  };
  EXPECT_THAT(rowsOf({"unset", "--dry-run", "Gamma", "Alpha"}),
              ElementsAre("policy removed Alpha", "policy removed Gamma"));
  EXPECT_THAT(rowsOf({"set", "--dry-run", "Beta", "5"}), ElementsAre("policy changed Beta"));
  EXPECT_THAT(rowsOf({"set", "--dry-run", "New", "5"}), ElementsAre("policy added New"));
  EXPECT_EQ(sitelist({"policies", "unset", "--dry-run", "None"}).status, 7);
  EXPECT_EQ(agentFiles(), before);
}

// The command changes only the agent's own list, so it must refuse the name of another file.
TEST_F(CliPoliciesUnset, AFileOrASurplusArgumentIsWrongUsage) {
  const std::string other = write("other.xml", list(""));
  const std::string error = "sitelist: unexpected argument \"" + other + "\"\n  next: omit it; ";
  EXPECT_EQ(fail(2, {other, "unset", "Alpha"}),
            error + "`sitelist policies unset` changes the agent's own list\n");
  EXPECT_EQ(fail(2, {other, "set", "Alpha", "2"}),
            error + "`sitelist policies set` changes the agent's own list\n");
  EXPECT_THAT(fail(2, {"set", "Alpha", "2", "3"}), HasSubstr("unexpected argument \"3\""));
  EXPECT_EQ(readFile(other), list(""));
}

TEST_F(CliPoliciesUnset, SetNeedsANameAndAValue) {
  EXPECT_THAT(fail(2, {"set", ""}), HasSubstr("NAME: the value is empty"));
  EXPECT_THAT(fail(2, {"set", "=x"}), HasSubstr("VALUE is required"));
  EXPECT_THAT(fail(2, {"set", "Alpha=x"}), HasSubstr("VALUE is required"));
}

}  // namespace
}  // namespace test
