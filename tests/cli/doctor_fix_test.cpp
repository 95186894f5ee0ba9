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
  expectOnly("left-overs", "warning",
             "etc/" + left + " is a temporary file of a process that has ended",
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
  EXPECT_THAT(output.err,
              HasSubstr("nothing was mended, because the settings cannot be used\n"
                        "  next: correct agent.toml, then run `sitelist doctor --fix` again\n"));
  EXPECT_EQ(states(), before);
}

#ifdef __linux__
// A child of the load command holds the lock for a while.
TEST_F(CliDoctorFix, WaitsForALockAfterItHasMended) {
  const std::string fifo = file("fifo");
  ASSERT_EQ(::mkfifo(fifo.c_str(), 0600), 0);
  setBytes(file("agent/agent.toml"),
           "managed = true\nmesh.load_command = [\"/bin/sh\", \"-c\", \"exec 9<'" +
               file("agent/locks/SiteListLock.lock") + "'; flock 9; (read x <'" + fifo +
               "') >/dev/null 2>&1 &\"]\n");
  setBytes(meshCopy(), "stale");
  const Output output = withTerminalForMessages(
      {"doctor", "--fix"}, "sitelist: waiting at most 60 s for the lock SiteListLock, held by",
      [&] { writeFile(fifo, "x\n", 0600); });
  EXPECT_EQ(output.status, 0) << output.out;
  EXPECT_THAT(output.out, HasSubstr("mended: wrote the mesh copy"));
}
#endif

TEST_F(CliDoctorFix, SaysWhatItCannotMend) {
  ASSERT_EQ(::chmod(ownList().c_str(), 0666), 0);
  fs::remove(meshCopy());
  fs::create_directory(meshCopy());
  const Output output = sitelist({"doctor", "--fix"});
  EXPECT_EQ(output.status, 1);
  EXPECT_THAT(output.err, HasSubstr("the mesh copy could not be written"));
  EXPECT_THAT(output.out, HasSubstr("mended: the mode of etc/SiteList.xml was 0666"));
  EXPECT_THAT(output.out,
              HasSubstr("failure  mesh-copy     the mesh copy mesh/SiteList.xml cannot be read: "
                        "it is a directory"));
}

}  // namespace
}  // namespace test
