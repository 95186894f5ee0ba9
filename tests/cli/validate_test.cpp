#include "tests/cli/cli_fixture.h"
#include "tests/cli/documents.h"

namespace test {
namespace {

using testing::HasSubstr;

class CliValidate : public CliTest {
 protected:
  // The output for a list with this server site, without the file name in front of each line.
  std::string faultsOf(const std::string& sites, int status = 1,
                       const std::vector<std::string>& options = {}) {
    const std::string path = write("lists/list.xml", document(sites));
    std::vector<std::string> command = {"validate", path};
    command.insert(command.end(), options.begin(), options.end());
    const Output output = sitelist(command);
    EXPECT_EQ(output.status, status) << output.err;
    EXPECT_EQ(output.err, "");
    std::string faults = output.out;
    for (std::size_t at; (at = faults.find(path + ": ")) != std::string::npos;) {
      faults.erase(at, path.size() + 2);
    }
    return faults;
  }
};

TEST_F(CliValidate, PassesACompleteList) { EXPECT_EQ(faultsOf(serverSite(), 0), "valid\n"); }

TEST_F(CliValidate, NamesEachRuleOfTheServer) {
  EXPECT_EQ(faultsOf(serverSite({{"Local", "1"}})), "server-not-local: must not be local\n");
  EXPECT_EQ(faultsOf(serverSite({{"Type", "mirror"}})),
            "server-type-master: site type must be master not mirror\n");
  EXPECT_EQ(faultsOf(serverSite({{"Name", ""}})), "server-name: name cannot be empty\n");
  EXPECT_EQ(faultsOf(serverSite({{"Server", ""}})),
            "server-address: server name cannot be empty\n");
  EXPECT_EQ(faultsOf(serverSite({{"ServerIP", ""}})),
            "server-ip-address: VESTA IP address cannot be empty\n");
  EXPECT_EQ(faultsOf(serverSite({{"ServerName", ""}})),
            "server-computer-name: computer name cannot be empty\n");
  EXPECT_EQ(faultsOf(serverSite({{"RelativePath", ""}})), "server-path: path cannot be empty\n");
}

TEST_F(CliValidate, NamesEveryFaultOfOneList) {
  EXPECT_EQ(faultsOf(serverSite({{"Local", "1"}, {"Type", "repository"}, {"ServerIP", ""}})),
            "server-not-local: must not be local\n"
            "server-type-master: site type must be master not repository\n"
            "server-ip-address: VESTA IP address cannot be empty\n");
}

TEST_F(CliValidate, AsksForTheKeyFilesBesideTheList) {
  const std::string site = serverSite({{"Version", "5.9"}});
  const std::string directory = file("lists");
  EXPECT_EQ(faultsOf(site), "server-request-key: " + directory + "/reqseckey.bin or " + directory +
                                "/req2048seckey.bin is invalid\n"
                                "server-public-key: " +
                                directory + "/srpubkey.bin or " + directory +
                                "/sr2048pubkey.bin is invalid\n");
  write("lists/req2048seckey.bin", "key");
  EXPECT_EQ(faultsOf(site), "server-public-key: " + directory + "/srpubkey.bin or " + directory +
                                "/sr2048pubkey.bin is invalid\n");
  write("lists/srpubkey.bin", "key");
  EXPECT_EQ(faultsOf(site, 0), "valid\n");
}

TEST_F(CliValidate, AsksForSitesAndForAServer) {
  EXPECT_EQ(faultsOf(""),
            "no-sites: no sites in site list\n"
            "no-server: Failed to get VESTA site hr=-2\n");
  EXPECT_EQ(faultsOf(httpSite("depot")), "no-server: Failed to get VESTA site hr=-8\n");
  EXPECT_EQ(faultsOf(httpSite("depot"), 1, {"--managed"}),
            "no-server: Failed to get VESTA site hr=-8\n");
}

TEST_F(CliValidate, LeavesTheServerOutForAnUnmanagedAgent) {
  EXPECT_EQ(faultsOf(httpSite("depot"), 0, {"--unmanaged"}), "valid\n");
  EXPECT_EQ(faultsOf("", 1, {"--unmanaged"}), "no-sites: no sites in site list\n");
}

TEST_F(CliValidate, IsNotFooledByATextThatEndsLikeAnotherRule) {
  EXPECT_EQ(faultsOf(serverSite({{"Type", "req2048seckey.bin is invalid"}})),
            "server-type-master: site type must be master not req2048seckey.bin is invalid\n");
}

TEST_F(CliValidate, TellsWhereADocumentIsNotWellFormed) {
  const std::string path = write("list.xml", "<list>\n  <a></b>\n</list>");
  const Output output = sitelist({"validate", path});
  EXPECT_EQ(output.status, 3);
  EXPECT_THAT(output.out, testing::StartsWith(path + ": not-well-formed: 2:"));
  EXPECT_THAT(output.out, HasSubstr("mismatched tag"));
}

TEST_F(CliValidate, NamesTheOtherFaultsOfADocument) {
  const std::string text = write("text.xml", "no markup");
  EXPECT_EQ(sitelist({"validate", text}).out,
            text + ": not-well-formed: 1:1: there is no markup in the file\n");
  const std::string bytes = write("bytes.xml", "<a>\xC3\x28</a>");
  const Output invalid = sitelist({"validate", bytes});
  EXPECT_EQ(invalid.status, 3);
  EXPECT_THAT(invalid.out, testing::StartsWith(bytes + ": invalid-encoding: "));
  const std::string deep = write("deep.xml", [] {
    std::string nested;
    for (int i = 0; i < 100000; ++i) nested += "<a>";
    for (int i = 0; i < 100000; ++i) nested += "</a>";
    return nested;
  }());
  const Output limit = sitelist({"validate", deep});
  EXPECT_EQ(limit.status, 3);
  EXPECT_THAT(limit.out, testing::StartsWith(deep + ": over-limit: "));
  const std::string unknown = write("unknown.xml", document("<OtherSite/>"));
  EXPECT_EQ(sitelist({"validate", unknown}).out,
            unknown + ": unknown-site: the last site of the list is of no known kind\n");
  const Output directory = sitelist({"validate", file("tmp")});
  EXPECT_EQ(directory.status, 4);
  EXPECT_THAT(directory.out, testing::StartsWith(file("tmp") + ": unreadable-file: "));
  const Output missing = sitelist({"validate", file("none.xml")});
  EXPECT_EQ(missing.status, 4);
  EXPECT_EQ(missing.out, file("none.xml") + ": missing-file: the file does not exist\n");
}

TEST_F(CliValidate, ChecksSeveralListsAndKeepsTheHighestStatus) {
  const std::string good = write("good.xml", document(serverSite()));
  const std::string incomplete = write("incomplete.xml", document(serverSite({{"Name", ""}})));
  const std::string broken = write("broken.xml", "<a>");
  const Output output = sitelist({"validate", broken, incomplete, good});
  EXPECT_EQ(output.status, 3);
  EXPECT_THAT(output.out, HasSubstr(good + ": valid\n"));
  EXPECT_THAT(output.out, HasSubstr(incomplete + ": server-name: "));
  EXPECT_EQ(sitelist({"validate", incomplete, good}).status, 1);
}

TEST_F(CliValidate, TouchesNoAgent) {
  const std::string path = write("list.xml", document(serverSite()));
  EXPECT_EQ(sitelist({"validate", path}).status, 0);
  EXPECT_FALSE(exists(file("agent")));
  write("agent/agent.toml", "not a settings file");
  const auto before = agentFiles();
  EXPECT_EQ(sitelist({"validate", path}).status, 0);
  EXPECT_EQ(agentFiles(), before);
}

}  // namespace
}  // namespace test
