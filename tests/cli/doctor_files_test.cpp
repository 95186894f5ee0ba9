#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <regex>
#include <set>

#include "tests/cli/doctor_fixture.h"

// The owner and mode of each file and directory, as SECURITY.md states them.
namespace test {
namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;
using testing::SizeIs;

const char* const c_adviceToFix = "run `sitelist doctor --fix`";

// Returns the modes of SECURITY.md by path. A path that is in two rows has its greatest mode.
std::map<std::string, mode_t> modesOfDocument() {
  const std::string text = readFile(std::string(TEST_SOURCE_DIR) + "/SECURITY.md");
  std::map<std::string, mode_t> modes;
  static const std::regex row(R"(\n\| (`[^|]*) \| ([^|]*) \| ([^|]*) \|)");
  static const std::regex path("`([^`]*)`");
  static const std::regex mode("0[0-7]{3}");
  for (std::sregex_iterator i(text.begin(), text.end(), row), end; i != end; ++i) {
    const std::string names = (*i)[1];
    const std::string column = (*i)[3];
    std::smatch found;
    if (!std::regex_search(column, found, mode)) continue;
    const auto value = static_cast<mode_t>(std::stoul(found[0], nullptr, 8));
    for (std::sregex_iterator name(names.begin(), names.end(), path); name != end; ++name) {
      mode_t& most = modes[(*name)[1]];
      most = std::max(most, value);
    }
  }
  return modes;
}

// Returns the modes of directories, whose default has an empty name.
std::map<std::string, mode_t> modesOfDirectories() {
  const std::string text = readFile(std::string(TEST_SOURCE_DIR) + "/SECURITY.md");
  std::map<std::string, mode_t> modes;
  std::smatch found;
  const auto octal = [](const std::string& digits) {
    return static_cast<mode_t>(std::stoul(digits, nullptr, 8));
  };
  static const std::regex usual("the library or the tool creates has mode (0[0-7]{3})");
  if (std::regex_search(text, found, usual)) modes[""] = octal(found[1]);
  static const std::regex history("`etc/history/` has (0[0-7]{3})");
  if (std::regex_search(text, found, history)) modes["etc/history"] = octal(found[1]);
  static const std::regex keys("`keystore/`\\s+and the temporary directories have (0[0-7]{3})");
  if (std::regex_search(text, found, keys)) modes["keystore"] = octal(found[1]);
  return modes;
}

class CliDoctorFiles : public CliDoctor {
 protected:
  CliDoctorFiles() {
    for (const char* name :
         {"srpubkey.bin", "reqseckey.bin", "sr2048pubkey.bin", "req2048seckey.bin"}) {
      put("etc/" + std::string(name), "key", 0600);
    }
    setBothLists(document(serverSite({{"Version", "5"}}) + httpSite("Depot", "2")));
    put("etc\\agentfipsmode", "marker", 0600);
    put("ServerSiteList.xml", list(), 0640);
    put("keystore/server.key", std::string(32, 'k'), 0600);
    fs::create_directory(file("agent/etc/history"));
    EXPECT_EQ(::chmod(file("agent/etc/history").c_str(), 0750), 0);
    put("etc/history/1-20260101T000000Z-import.xml", list(), 0640);
  }

  void put(const std::string& name, const std::string& bytes, mode_t mode) {
    EXPECT_EQ(::chmod(write("agent/" + name, bytes).c_str(), mode), 0);
  }

  // Returns the files of the agent that a path in the document means.
  std::vector<std::string> filesFor(const std::string& name) const {
    const std::size_t star = name.find('*');
    if (star == std::string::npos) return {name};
    const std::string directory = name.substr(0, name.rfind('/'));
    const std::string end = name.substr(star + 1);
    std::vector<std::string> found;
    for (const auto& entry : fs::directory_iterator(file("agent/" + directory))) {
      const std::string each = entry.path().filename();
      if (entry.is_regular_file() && each.size() >= end.size() &&
          each.compare(each.size() - end.size(), end.size(), end) == 0) {
        found.push_back(directory + "/" + each);
      }
    }
    return found;
  }

  static bool isSecret(const std::string& name) {
    return name.find(".bin") != std::string::npos || name.rfind("keystore", 0) == 0 ||
           name.rfind("locks/", 0) == 0;
  }

  // Expects that this mode is accepted, and that --fix removes each further permission.
  void expectMost(const std::string& name, mode_t most) {
    const std::string path = name.empty() ? file("agent") : file("agent/" + name);
    SCOPED_TRACE(path);
    ASSERT_EQ(::chmod(path.c_str(), most), 0);
    expectHealthy();
    for (const mode_t more : {0020U, 0002U, 0010U, 0001U, 0004U}) {
      if ((most & more) != 0) continue;
      ASSERT_EQ(::chmod(path.c_str(), most | more), 0);
      const bool isGrave = (more & 0022U) != 0 || isSecret(name);
      const auto rows = resultsOf(doctor(isGrave ? 1 : 0), "files");
      ASSERT_THAT(rows, SizeIs(1)) << more;
      EXPECT_EQ(rows[0].at("next"), c_adviceToFix);
      const auto mended = resultsOf(doctor(0, {"--fix"}), "files");
      ASSERT_THAT(mended, SizeIs(2)) << more;
      EXPECT_EQ(mended[0].at("mended"), "true");
      EXPECT_EQ(modeOf(path) & 0777U, most);
    }
  }
};

TEST_F(CliDoctorFiles, HaveAtMostTheModesOfTheSecurityDocument) {
  const std::map<std::string, mode_t> modes = modesOfDocument();
  ASSERT_THAT(modes, SizeIs(11));
  for (const auto& [name, most] : modes) {
    if (name == ".sitelist-*") continue;  // the check of left-over files
    const std::vector<std::string> files = filesFor(name);
    EXPECT_FALSE(files.empty()) << name;
    for (const std::string& each : files) expectMost(each, most);
  }
}

TEST_F(CliDoctorFiles, DirectoriesHaveAtMostTheModesOfTheSecurityDocument) {
  std::map<std::string, mode_t> modes = modesOfDirectories();
  ASSERT_THAT(modes, SizeIs(3));
  const mode_t usual = modes.at("");
  for (const char* name : {"etc", "mesh", "locks"}) modes[name] = usual;
  for (const auto& [name, most] : modes) expectMost(name, most);
}

TEST_F(CliDoctorFiles, MayHaveFewerPermissionsButNotTooFew) {
  for (const char* name : {"etc/SiteList.xml", "mesh/SiteList.xml", "agent.toml",
                           "etc/history/1-20260101T000000Z-import.xml"}) {
    ASSERT_EQ(::chmod(file("agent/" + std::string(name)).c_str(), 0600), 0);
  }
  ASSERT_EQ(::chmod(file("agent").c_str(), 0700), 0);
  expectHealthy();
  ASSERT_EQ(::chmod(file("agent/etc/srpubkey.bin").c_str(), 0400), 0);
  const auto rows = resultsOf(doctor(1), "files");
  ASSERT_THAT(rows, SizeIs(1));
  EXPECT_EQ(rows[0].at("text"), "etc/srpubkey.bin has mode 0400; its owner needs 0600");
  EXPECT_EQ(rows[0].at("next"), "run: chmod u+w " + file("agent/etc/srpubkey.bin"));
  doctor(1, {"--fix"});
  EXPECT_EQ(modeOf(file("agent/etc/srpubkey.bin")), 0400U) << "no permission is added";
}

TEST_F(CliDoctorFiles, LoseSpecialModeBits) {
  ASSERT_EQ(::chmod(ownList().c_str(), 04640), 0);
  expectOnly("files", "warning", "etc/SiteList.xml has mode 4640; it may have at most 0640",
             c_adviceToFix);
  expectMended("files", "the mode of etc/SiteList.xml was 4640 and is 0640 now");
}

TEST_F(CliDoctorFiles, ThatAreNotTheAgentsAreIgnored) {
  put("notes.txt", "mine", 0666);
  put("etc/notes.xml", "mine", 0666);
  const auto before = states();
  expectHealthy();
  doctor(0, {"--fix"});
  EXPECT_EQ(states(), before);
}

TEST_F(CliDoctorFiles, MustBeRegularFiles) {
  ASSERT_EQ(shell("rm agent/keystore/server.key && mkfifo agent/keystore/server.key").status, 0);
  expectOnly("files", "failure", "keystore/server.key is not a regular file", "remove it");
}

TEST_F(CliDoctorFiles, WithTwoHardLinksAreNotMended) {
  ASSERT_EQ(::link(ownList().c_str(), file("second").c_str()), 0);
  ASSERT_EQ(::chmod(ownList().c_str(), 0666), 0);
  const auto rows = resultsOf(doctor(1, {"--fix"}), "files");
  ASSERT_THAT(rows, SizeIs(1));
  EXPECT_EQ(rows[0].at("next"), "check where it comes from, then run: chmod 0640 " + ownList());
  EXPECT_EQ(modeOf(file("second")), 0666U);
}

TEST_F(CliDoctorFiles, AreOnlyReadWithoutFix) {
  ASSERT_EQ(::chmod(file("agent/keystore/password.key").c_str(), 0644), 0);
  ASSERT_EQ(::chmod(ownList().c_str(), 0666), 0);
  setBothLists(list());
  setBytes(meshCopy(), "stale");
  put("locks/.sitehlp-0123456789abcdef.tmp", "left", 0600);
  fs::create_directory(file("agent/etc/.sitelist-0123456789abcdef"));
  const auto before = states();
  doctor(1);
  EXPECT_EQ(states(), before);
}

// A link in the place of each file, to a file outside of the agent.
TEST_F(CliDoctorFiles, LinksLeadFixNowhere) {
  for (const auto& [name, most] : modesOfDocument()) {
    for (const std::string& each : name[0] == '.' ? std::vector<std::string>() : filesFor(name)) {
      SCOPED_TRACE(each);
      const std::string path = file("agent/" + each);
      const std::string outside = write("outside", readFile(path));
      ASSERT_EQ(::chmod(outside.c_str(), 0666), 0);
      fs::rename(path, file("aside"));
      fs::create_symlink(outside, path);
      sitelist({"doctor", "--fix", "--wait", "0"});
      EXPECT_EQ(modeOf(outside), 0666U);
      EXPECT_TRUE(fs::is_symlink(path));
      fs::remove(path);
      fs::rename(file("aside"), path);
    }
  }
}

TEST_F(CliDoctorFiles, LocksAndKeysMustNotBeLinks) {
  for (const char* name : {"locks/SiteListLock.lock", "keystore/password.key"}) {
    SCOPED_TRACE(name);
    const std::string path = file("agent/" + std::string(name));
    fs::rename(path, file("aside"));
    fs::create_symlink(file("aside"), path);
    const auto rows = resultsOf(doctor(1), "files");
    ASSERT_THAT(rows, SizeIs(1));
    EXPECT_THAT(rows[0].at("text"), HasSubstr("is a symbolic link, so the agent does not use it"));
    EXPECT_EQ(rows[0].at("next"), "remove the link");
    fs::remove(path);
    fs::rename(file("aside"), path);
  }
}

TEST_F(CliDoctorFiles, OneCheckReportsAtMostTwentyFaults) {
  for (int i = 2; i < 40; ++i) {
    put("etc/history/" + std::to_string(i) + "-20260101T000000Z-import.xml", list(), 0644);
  }
  const auto rows = resultsOf(doctor(0), "files");
  ASSERT_THAT(rows, SizeIs(21));
  EXPECT_EQ(rows.back().at("text"), "18 more results of this check");
  EXPECT_EQ(rows.back().at("state"), "warning");
  EXPECT_EQ(doctor(0, {"--fix"}).facts.at("mendedCount"), "38");
  expectHealthy();
}

}  // namespace
}  // namespace test
