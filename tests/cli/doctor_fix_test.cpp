#include <fcntl.h>
#include <signal.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>

#include "host/fs/files.h"
#include "tests/cli/doctor_fixture.h"
#include "tests/support/child_process.h"
#include "tests/support/faulty_file_system.h"
#include "tests/support/locker.h"

// What `doctor --fix` mends, and that a second run changes nothing.
namespace test {
namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

// Replaces a file and is killed before the new file gets its name.
CHILD_PROCESS(doctorsPatient) {
  FaultyFileSystem files;
  files.beforeEach([](FileCall call) {
    if (call == FileCall::Rename) ::raise(SIGKILL);
  });
  return host::replaceFile(args[0], "new", 3, 0600);
}

class CliDoctorFix : public CliDoctor {
 protected:
  std::vector<std::string> namesIn(const std::string& directory) const {
    std::vector<std::string> names;
    for (const auto& entry : fs::directory_iterator(file(directory))) {
      names.push_back(entry.path().filename());
    }
    return names;
  }
};

TEST_F(CliDoctorFix, ChangesNothingInAHealthyAgent) {
  const auto before = states();
  const JsonReport report = doctor(0, {"--fix"});
  EXPECT_EQ(report.facts.at("changed"), "false");
  EXPECT_EQ(states(), before);
}

TEST_F(CliDoctorFix, WritesTheMeshCopyAndRunsTheLoadCommand) {
  setBytes(file("agent/agent.toml"),
           "managed = true\nmesh.load_command = [\"/bin/sh\", \"-c\", \"echo x >> '" +
               file("loads") + "'\"]\n");
  setBytes(meshCopy(), "stale");
  ASSERT_EQ(::chmod(meshCopy().c_str(), 0640), 0);
  expectMended("mesh-copy", "wrote the mesh copy");
  EXPECT_EQ(readFile(meshCopy()), readFile(ownList()));
  EXPECT_EQ(readFile(file("loads")), "x\n");
  EXPECT_FALSE(exists(file("agent/etc/history"))) << "the list is not changed";
}

TEST_F(CliDoctorFix, MakesTheDirectoryOfTheMeshCopy) {
  fs::remove_all(file("agent/mesh"));
  expectMended("mesh-copy", "wrote the mesh copy");
  EXPECT_EQ(modeOf(file("agent/mesh")), 0755U);
}

TEST_F(CliDoctorFix, DoesNotCopyAListThatCannotBeRead) {
  setBytes(ownList(), "<broken");
  const auto before = states();
  doctor(1, {"--fix"});
  EXPECT_EQ(states(), before);
}

TEST_F(CliDoctorFix, RemovesTheFileOfAKilledProcess) {
  ChildProcess child("doctorsPatient", {ownList()});
  ASSERT_EQ(child.wait(), 128 + SIGKILL);
  std::string left;
  for (const std::string& name : namesIn("agent/etc")) {
    if (name != "SiteList.xml") left = name;
  }
  ASSERT_THAT(left, HasSubstr(".sitehlp-"));
  expectOnly("left-overs", "warning", "etc/" + left + ": its process has ended",
             "run `sitelist doctor --fix`");
  expectMended("left-overs", "removed etc/" + left);
  EXPECT_THAT(namesIn("agent/etc"), SizeIs(1));
}

TEST_F(CliDoctorFix, RemovesLeftOversInEveryDirectoryAndKeepsThoseOfLivingProcesses) {
  const std::string name = "/.sitehlp-0123456789abcdef.tmp";
  std::size_t count = 0;
  for (const char* directory :
       {"agent", "agent/etc", "agent/mesh", "agent/locks", "agent/keystore"}) {
    write(directory + name, "left");
    ++count;
  }
  write("agent/etc/.sitelist-0123456789abcdef/SiteList.xml", "draft");
  write("agent/etc/.sitelist-fedcba9876543210/SiteList.xml", "draft");
  write("agent/etc/.sitelist-notours/SiteList.xml", "not ours");
  const int living = ::open(file("agent/etc/.sitelist-fedcba9876543210").c_str(),
                            O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  ASSERT_EQ(::flock(living, LOCK_EX), 0);
  const JsonReport report = doctor(0, {"--fix"});
  EXPECT_EQ(report.facts.at("mendedCount"), std::to_string(count + 1));
  ::close(living);
  EXPECT_TRUE(exists(file("agent/etc/.sitelist-notours/SiteList.xml")));
  EXPECT_TRUE(exists(file("agent/etc/.sitelist-fedcba9876543210/SiteList.xml")));
  EXPECT_FALSE(exists(file("agent/etc/.sitelist-0123456789abcdef")));
}

TEST_F(CliDoctorFix, DoesNotFollowALinkWithTheNameOfALeftOver) {
  const std::string outside = write("outside/file", "mine");
  fs::create_symlink(outside, file("agent/etc/.sitehlp-0123456789abcdef.tmp"));
  fs::create_directory_symlink(file("outside"), file("agent/etc/.sitelist-0123456789abcdef"));
  doctor(0, {"--fix"});
  EXPECT_EQ(readFile(outside), "mine");
}

TEST_F(CliDoctorFix, TakesTheLockOfTheList) {
  setBytes(meshCopy(), "stale");
  Locker other(file("agent"));
  ASSERT_TRUE(other.lock(Locker::Mode::Read));
  const auto before = states();
  const Output output = sitelist({"doctor", "--fix", "--wait", "0", "--format", "json"});
  EXPECT_EQ(output.status, 4);
  EXPECT_THAT(output.err, HasSubstr("the list is locked by another process"));
  EXPECT_FALSE(resultsOf(readReport(output.out), "mesh-copy").empty()) << "the faults are printed";
  EXPECT_EQ(states(), before);
}

TEST_F(CliDoctorFix, MendsNothingWithoutSettings) {
  setBytes(meshCopy(), "stale");
  setBytes(file("agent/agent.toml"), "managed = maybe\n");
  const auto before = states();
  const Output output = sitelist({"doctor", "--fix"});
  EXPECT_EQ(output.status, 1);
  EXPECT_THAT(output.err, HasSubstr("nothing was mended, because the settings cannot be used"));
  EXPECT_EQ(states(), before);
}

TEST_F(CliDoctorFix, SaysWhatItCannotMend) {
  ASSERT_EQ(::chmod(ownList().c_str(), 0666), 0);
  fs::remove(meshCopy());
  fs::create_directory(meshCopy());
  const Output output = sitelist({"doctor", "--fix"});
  EXPECT_EQ(output.status, 1);
  EXPECT_THAT(output.err, HasSubstr("the mesh copy could not be written"));
  EXPECT_THAT(output.out, HasSubstr("mended: the mode of etc/SiteList.xml was 0666"));
  EXPECT_THAT(output.out, HasSubstr("failure  mesh-copy     the mesh copy cannot be read"));
}

}  // namespace
}  // namespace test
