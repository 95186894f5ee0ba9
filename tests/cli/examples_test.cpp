#include <filesystem>
#include <nlohmann/json.hpp>
#include <set>

#include "tests/cli/cli_fixture.h"

// The demo uses the examples. These tests check the examples.
namespace test {
namespace {

using nlohmann::json;
using testing::HasSubstr;

class CliExamples : public CliTest {
 protected:
  CliExamples() {
    std::filesystem::copy(TEST_SOURCE_DIR "/examples", file("examples"),
                          std::filesystem::copy_options::recursive);
    std::filesystem::permissions(file("examples"), std::filesystem::perms::owner_all);
  }
  std::string incoming() const { return file("examples/incoming/SiteList.xml"); }
};

TEST_F(CliExamples, TheIncomingListIsCompleteAndCanBeImported) {
  initAgent({"--managed"});
  std::string text = readFile(incoming());
  for (const char* number : {"1", "2", "3", "4"}) {
    const std::string placeholder = std::string("@PASSWORD_") + number + "@";
    const std::size_t at = text.find(placeholder);
    ASSERT_NE(at, std::string::npos) << placeholder;
    text.replace(at, placeholder.size(), protectedText(std::string("clear ") + number));
  }
  write("examples/incoming/SiteList.xml", text);
  const Output output = sitelist({"import", incoming()});
  EXPECT_EQ(output.status, 0);
  EXPECT_EQ(output.err,
            "sitelist: swapped the orders of the default vendor repositories, so that the "
            "HTTP one comes first\nsitelist: " +
                ownList() + " now has 11 entries, global version 20260914083012\n");
  const json sites = json::parse(sitelist({"show", "--json", "--show-secrets"}).out)["sites"];
  std::set<std::string> kinds;
  std::set<std::string> passwords;
  for (const json& site : sites) {
    kinds.insert(site["kind"]);
    for (const char* field : {"password", "httpProxyPassword", "alternateHttpProxyPassword"}) {
      if (site.contains(field)) passwords.insert(site[field]);
    }
  }
  EXPECT_THAT(kinds,
              testing::ElementsAre("agent", "ftp", "http", "local", "proxy", "server", "unc"));
  EXPECT_THAT(passwords, testing::ElementsAre("", "clear 1", "clear 2", "clear 3", "clear 4"));
  EXPECT_THAT(sitelist({"certs"}).out, testing::AllOf(HasSubstr("Certificate 2 of 2\n  subject "),
                                                      HasSubstr("Certificate 1 of 2\n  subject ")));
}

TEST_F(CliExamples, TheTableOfTheIncomingListFitsATerminal) {
  const std::string out = sitelist({"show", incoming()}).out;
  EXPECT_LE(out.find('\n'), 80U);
}

TEST_F(CliExamples, EachBrokenListHasTheFaultOfItsName) {
  const std::map<std::string, std::string> faults = {
      {"doctype", "2:16: not-well-formed: "},
      {"not-well-formed", "5:30: not-well-formed: "},
      {"no-server", "3:3: no-server: "},
      {"no-sites", "3:3: no-sites: "},
      {"incomplete-server", "4:5: server-ip-address: "},
      {"warnings", "10:5: duplicate-order: "},
  };
  std::size_t count = 0;
  for (const auto& entry : std::filesystem::directory_iterator(file("examples/broken"))) {
    ++count;
    const auto fault = faults.find(entry.path().stem().string());
    ASSERT_NE(fault, faults.end()) << entry.path();
    EXPECT_THAT(sitelist({"validate", entry.path().string()}).out,
                HasSubstr(entry.path().string() + ":" + fault->second));
  }
  EXPECT_EQ(count, faults.size());
}

}  // namespace
}  // namespace test
