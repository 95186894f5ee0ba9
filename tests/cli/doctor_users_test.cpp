#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <iostream>

#include "tests/cli/doctor_fixture.h"
#include "tests/links/two_users.h"

// The agent of another user, whom root helps.
namespace test {
namespace {

namespace fs = std::filesystem;
using testing::Contains;
using testing::HasSubstr;
using testing::SizeIs;

class CliDoctorUsers : public CliDoctor {
 protected:
  CliDoctorUsers() {
    giveToAgent(file("agent"));
    EXPECT_EQ(::chmod(file("").c_str(), 0755), 0);  // both users reach the agent
  }

  static std::string user() {
    const passwd* const found = ::getpwuid(agentUser());
    return found ? found->pw_name : "user " + std::to_string(agentUser());
  }

  void giveToRoot(const std::string& name) const {
    ASSERT_EQ(::chown(file("agent/" + name).c_str(), 0, 0), 0);
  }

  uid_t ownerOf(const std::string& name) const {
    struct stat info {};
    EXPECT_EQ(::lstat(file("agent/" + name).c_str(), &info), 0);
    return info.st_uid;
  }

  // Expects that root may not give this file away, and that --fix leaves it to root.
  Output expectKeptFromUser(const std::string& name) {
    SCOPED_TRACE(name);
    const Output output = sitelist({"doctor", "--fix"});
    EXPECT_EQ(ownerOf(name), 0U);
    return output;
  }
};

TEST_F(CliDoctorUsers, OwnEveryFile) {
  if (!haveTwoUsers()) return;
  expectHealthy();
  for (const char* name : {"etc/SiteList.xml", "mesh/SiteList.xml", "keystore/password.key",
                           "locks/SiteListLock.lock", "locks/SmartSiteListLock.gate"}) {
    SCOPED_TRACE(name);
    giveToRoot(name);
    const auto rows = resultsOf(doctor(1), "files");
    ASSERT_THAT(rows, SizeIs(1));
    EXPECT_EQ(rows[0].at("text"), std::string(name) + " belongs to root instead of " + user());
    EXPECT_EQ(rows[0].at("next"), "run `sitelist doctor --fix`");
    expectMended("files",
                 std::string(name) + " belonged to root and belongs to " + user() + " now");
    EXPECT_EQ(ownerOf(name), agentUser());
  }
}

TEST_F(CliDoctorUsers, OwnEveryDirectory) {
  if (!haveTwoUsers()) return;
  for (const char* name : {"etc", "mesh", "locks", "keystore"}) {
    SCOPED_TRACE(name);
    giveToRoot(name);
    expectMended("files",
                 std::string(name) + " belonged to root and belongs to " + user() + " now");
  }
  giveToRoot("etc");
  write("agent/etc/private", "of root");
  EXPECT_THAT(expectKeptFromUser("etc").err,
              HasSubstr("not mended: etc belongs to root instead of " + user() +
                        ": its content is not the expected one\n"
                        "  next: check the owner, mode and content of "));
}

TEST_F(CliDoctorUsers, MayHaveSettingsOfRootThatTheyCanRead) {
  if (!haveTwoUsers()) return;
  const passwd* const known = ::getpwuid(agentUser());
  const gid_t group = known ? known->pw_gid : agentGroup();
  ASSERT_EQ(::chown(file("agent/agent.toml").c_str(), 0, group), 0);
  expectHealthy();
  giveToRoot("agent.toml");
  expectOnly("settings", "failure", "the agent's user cannot read agent.toml: Permission denied",
             "give " + user() + " permission");
  expectKeptFromUser("agent.toml");
}

TEST_F(CliDoctorUsers, MustBeAbleToCreateLockFiles) {
  if (!haveTwoUsers()) return;
  fs::remove(file("agent/locks/SiteListLock.gate"));
  expectHealthy();
  fs::remove_all(file("agent/locks"));
  expectHealthy();
  ASSERT_EQ(::chmod(file("agent").c_str(), 0555), 0);
  const auto rows = resultsOf(doctor(1), "locks");
  ASSERT_THAT(rows, SizeIs(1));
  EXPECT_EQ(rows[0].at("text"), "the agent's user cannot create the lock files: Permission denied");
  EXPECT_FALSE(exists(file("agent/locks")));
}

// The agent's user may have moved a file of root to such a name.
TEST_F(CliDoctorUsers, DoNotGetOtherFilesOfRoot) {
  if (!haveTwoUsers()) return;
  for (const char* name :
       {"etc/SiteList.xml", "ServerSiteList.xml", "etc/srpubkey.bin", "etc/reqseckey.bin",
        "etc\\agentfipsmode", "keystore/password.key", "keystore/server.key",
        "locks/SiteListLock.lock", "locks/Another.lock"}) {
    const std::string path = file("agent/" + std::string(name));
    const bool wasThere = exists(path);
    if (wasThere) fs::rename(path, file("aside"));
    writeFile(path, "a secret of root", 0600);
    expectKeptFromUser(name);
    fs::remove(path);
    if (wasThere) fs::rename(file("aside"), path);
  }
  expectHealthy();
}

TEST_F(CliDoctorUsers, DoNotGetAFileOfRootThroughAHardLink) {
  if (!haveTwoUsers()) return;
  fs::remove(ownList());
  writeFile(file("of root"), readFile(meshCopy()), 0600);
  ASSERT_EQ(::link(file("of root").c_str(), ownList().c_str()), 0);
  expectKeptFromUser("etc/SiteList.xml");
}

TEST_F(CliDoctorUsers, DoNotGetAFileOfRootThroughALinkToItsDirectory) {
  if (!haveTwoUsers()) return;
  fs::rename(file("agent/etc"), file("agent/old"));
  fs::create_directory(file("outside"));
  fs::copy_file(file("agent/old/SiteList.xml"), file("outside/SiteList.xml"));
  ASSERT_EQ(::chmod(file("outside/SiteList.xml").c_str(), 0666), 0);
  fs::create_directory_symlink(file("outside"), file("agent/etc"));
  ASSERT_EQ(::lchown(file("agent/etc").c_str(), agentUser(), agentGroup()), 0);
  sitelist({"doctor", "--fix"});
  EXPECT_EQ(modeOf(file("outside/SiteList.xml")), 0666U);
  struct stat info {};
  ASSERT_EQ(::stat(file("outside/SiteList.xml").c_str(), &info), 0);
  EXPECT_EQ(info.st_uid, 0U);
}

// Replaces each file and directory in turn with a link of the agent's user. The target belongs to
// root and has every kind of fault.
TEST_F(CliDoctorUsers, MisleadRootWithNoLink) {
  if (!haveTwoUsers()) return;
  write("agent/etc/history/1-20260101T000000Z-import.xml", readFile(ownList()));
  write("agent/etc/srpubkey.bin", "key");
  write("agent/ServerSiteList.xml", readFile(ownList()));
  giveToAgent(file("agent"));
  std::vector<std::string> names;
  for (const auto& entry : fs::recursive_directory_iterator(file("agent"))) {
    names.push_back(fs::relative(entry.path(), file("agent")));
  }
  ASSERT_GT(names.size(), 12U);
  for (const std::string& name : names) {
    SCOPED_TRACE(name);
    const std::string path = file("agent/" + name);
    const std::string outside = file("outside");
    fs::rename(path, file("aside"));
    fs::copy(file("aside"), outside, fs::copy_options::recursive);
    ASSERT_EQ(shell("chmod -R a+rwx outside").status, 0);
    if (fs::is_directory(outside)) {
      write("outside/.sitehlp-0123456789abcdef.tmp", "left");
      fs::create_directory(outside + "/.sitelist-0123456789abcdef");
    }
    fs::create_symlink(outside, path);
    ASSERT_EQ(::lchown(path.c_str(), agentUser(), agentGroup()), 0);
    const std::string before = shell("ls -laRn outside; cat outside").out;
    sitelist({"doctor"});
    sitelist({"doctor", "--fix"});
    EXPECT_EQ(shell("ls -laRn outside; cat outside").out, before);
    fs::remove(path);
    fs::remove_all(outside);
    fs::rename(file("aside"), path);
  }
}

TEST_F(CliDoctorUsers, AreNotTheOwnersOfALinkThatIsFollowed) {
  if (!haveTwoUsers()) return;
  const uid_t stranger = agentUser() - 1;
  fs::rename(meshCopy(), file("aside"));
  fs::create_symlink(file("aside"), meshCopy());
  ASSERT_EQ(::lchown(meshCopy().c_str(), stranger, agentGroup()), 0);
  const auto rows = resultsOf(doctor(1), "files");
  ASSERT_THAT(rows, SizeIs(1));
  EXPECT_THAT(rows[0].at("text"), HasSubstr("mesh/SiteList.xml is a symbolic link of "));
}

TEST_F(CliDoctorUsers, HaveTheGroupOfTheDataDirectory) {
  if (!haveTwoUsers()) return;
  ASSERT_EQ(::chown(ownList().c_str(), agentUser(), 0), 0);
  expectOnly("files", "warning", "etc/SiteList.xml belongs to the group root instead of ",
             "run `sitelist doctor --fix`");
  doctor(0, {"--fix"});
  expectHealthy();
}

class CliDoctorAsUser : public CliDoctorUsers {
 protected:
  // Runs the command as the agent's user. Returns its status and its output.
  std::vector<std::string> doctorAsUser(const Arguments& arguments) {
    for (const char* name : {"stdin", "stdout", "stderr"}) ::unlink(file(name).c_str());
    giveToAgent(file("tmp"));
    EXPECT_EQ(::chown(file("").c_str(), agentUser(), agentGroup()), 0);
    return asAgentUser([this, arguments] {
      const Output output = sitelist(Arguments{"doctor"} + arguments);
      return std::vector<std::string>{"status " + std::to_string(output.status), output.out,
                                      output.err};
    });
  }

  bool isPossible() {
    if (!haveTwoUsers()) return false;
    const bool canStart = asAgentUser([] {
                            return std::vector<std::string>(::access(SITELIST_TOOL, X_OK) == 0, "");
                          }).size() == 1;
    if (!canStart) std::cout << "Not tried: the agent's user cannot start the tool.\n";
    return canStart;
  }
};

TEST_F(CliDoctorAsUser, ChecksItsOwnAgent) {
  if (!isPossible()) return;
  EXPECT_THAT(doctorAsUser({}), Contains("0 failures, 0 warnings"));
  giveToRoot("keystore/password.key");
  const auto lines = doctorAsUser({});
  EXPECT_THAT(lines, Contains("status 1"));
  EXPECT_THAT(lines, Contains(HasSubstr("run `sitelist doctor --fix` as root")));
  EXPECT_THAT(doctorAsUser({"--fix"}), Contains("status 1"));
  EXPECT_EQ(ownerOf("keystore/password.key"), 0U);
}

TEST_F(CliDoctorAsUser, ReportsWhatItCannotReadOfAnotherAgent) {
  if (!isPossible()) return;
  for (const auto& entry : fs::recursive_directory_iterator(file("agent"))) {
    ASSERT_EQ(::lchown(entry.path().c_str(), 0, 0), 0);
  }
  ASSERT_EQ(::chown(file("agent").c_str(), 0, 0), 0);
  const auto before = states();
  const auto lines = doctorAsUser({"--fix"});
  EXPECT_THAT(lines, Contains(HasSubstr(
                         "warning  list          etc/SiteList.xml cannot be checked: Permission "
                         "denied")));
  EXPECT_THAT(lines, Contains(HasSubstr("warning  password-key  keystore/password.key cannot be "
                                        "checked: Permission denied")));
  EXPECT_THAT(lines, Contains(HasSubstr("next: run the command as root")));
  EXPECT_EQ(states(), before);
}

}  // namespace
}  // namespace test
