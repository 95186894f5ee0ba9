#include <sys/stat.h>
#include <unistd.h>

#include <iostream>

#include "tests/host_lock/lock_fixture.h"
#include "tests/support/faulty_file_system.h"
#include "tests/support/file_times.h"
#include "tests/support/foreign_links.h"
#include "tests/support/forwarding_file_system.h"

namespace {

using test::c_forEver;
using test::c_lockName;
using test::FileCall;
using test::InterProcessReadLock;
using test::InterProcessWriteLock;
using testing::AllOf;
using testing::HasSubstr;
using testing::IsEmpty;

constexpr uid_t c_other = 65534;
constexpr gid_t c_otherGroup = 65533;
constexpr const char* c_tempName = "/.sitehlp-0123456789abcdef.tmp";

class LockLinks : public test::LockTest {
 protected:
  LockLinks() { std::filesystem::create_directory(locks()); }

  // Returns the only error since the last call.
  std::string error() {
    const auto texts = agent.texts(LogLevel::Error);
    EXPECT_EQ(texts.size(), 1U);
    agent.clearLog();
    return texts.empty() ? "" : test::narrow(texts[0]);
  }

  test::TempDir elsewhere;
};

TEST_F(LockLinks, AreNeverLockFilesEvenTheCallersOwn) {
  test::writeFile(elsewhere.file("there"), "victim's", 0644);
  for (const std::string& file : {mainFile(), gateFile()}) {
    for (const char* target : {"there", "new", "."}) {
      std::filesystem::create_symlink(elsewhere.file(target), file);
      EXPECT_FALSE(InterProcessReadLock(c_lockName).lock(c_forEver));
      EXPECT_THAT(error(), AllOf(HasSubstr("Cannot lock " + file + ": it is a symbolic link"),
                                 HasSubstr(". An operation that continues is not protected from "
                                           "other processes; next: remove the link")));
      EXPECT_FALSE(InterProcessWriteLock(c_lockName).lock(0));
      agent.clearLog();
      std::filesystem::remove(file);
    }
  }
  EXPECT_EQ(test::snapshot(elsewhere.path()).size(), 1U);
  EXPECT_EQ(test::readFile(elsewhere.file("there")), "victim's");
  EXPECT_TRUE(canWrite());
}

TEST_F(LockLinks, ThatReplaceALockFileInUseAreNotFollowed) {
  ASSERT_TRUE(canWrite());
  std::filesystem::rename(mainFile(), elsewhere.file("moved"));
  std::filesystem::create_symlink(elsewhere.file("moved"), mainFile());
  EXPECT_FALSE(InterProcessWriteLock(c_lockName).lock(c_forEver)) << "it leads to the same file";
  EXPECT_THAT(error(), HasSubstr("it is a symbolic link"));
}

TEST_F(LockLinks, OfAnotherUserLeadToNoLockDirectory) {
  std::filesystem::remove(locks());
  std::filesystem::create_symlink(elsewhere.path(), agent.dataDirectory() + "/foreign");
  agent.settings.dataDirectory = agent.dataDirectory() + "/foreign";
  agent.apply();
  const test::ForeignLinks files;
  EXPECT_FALSE(InterProcessWriteLock(c_lockName).lock(c_forEver));
  EXPECT_THAT(error(), AllOf(HasSubstr("the symbolic link " + agent.dataDirectory() +
                                       "/foreign belongs to user"),
                             HasSubstr(" and is not followed. An operation that continues is not "
                                       "protected from other processes; next: remove the link, or "
                                       "make root its owner")));
  EXPECT_TRUE(std::filesystem::is_empty(elsewhere.path()));
}

TEST_F(LockLinks, OfTheCallerLeadToTheLockDirectory) {
  std::filesystem::remove(locks());
  std::filesystem::create_symlink(elsewhere.path(), locks());
  EXPECT_TRUE(canWrite());
  EXPECT_TRUE(test::exists(elsewhere.file("SiteListLock.gate")));
}

TEST_F(LockLinks, OfNamesToOneFileLeaveTheOtherNameAsItWas) {
  test::writeFile(elsewhere.file("f"), "victim's", 0644);
  struct stat before {};
  std::filesystem::create_hard_link(elsewhere.file("f"), mainFile());
  ASSERT_EQ(::stat(elsewhere.file("f").c_str(), &before), 0);
  EXPECT_TRUE(canWrite());
  EXPECT_TRUE(canRead());
  struct stat after {};
  ASSERT_EQ(::stat(elsewhere.file("f").c_str(), &after), 0);
  EXPECT_EQ(test::readFile(elsewhere.file("f")), "victim's");
  EXPECT_EQ(after.st_mode, before.st_mode);
  EXPECT_EQ(after.st_uid, before.st_uid);
  EXPECT_EQ(test::timeText(test::writtenAt(after)), test::timeText(test::writtenAt(before)));
  EXPECT_EQ(test::timeText(test::changedAt(after)), test::timeText(test::changedAt(before)));
}

TEST_F(LockLinks, MakersThatDiedLeaveNothingBehind) {
  test::writeFile(locks() + c_tempName, "");
  std::filesystem::create_symlink(elsewhere.path(), locks() + "/.sitehlp-00000000000000aa.tmp");
  EXPECT_TRUE(canWrite());
  EXPECT_FALSE(test::exists(locks() + c_tempName));
  EXPECT_TRUE(std::filesystem::is_empty(elsewhere.path()));
}

TEST_F(LockLinks, OtherProcessesMayBeFasterWithTheFile) {
  test::FaultyFileSystem files;
  files.beforeEach([&](FileCall call) {
    if (call == FileCall::Link && !test::exists(gateFile())) {
      test::writeFile(test::exists(mainFile()) ? gateFile() : mainFile(), "", 0600);
    }
  });
  EXPECT_TRUE(canWrite());
  EXPECT_EQ(std::distance(std::filesystem::directory_iterator(locks()), {}), 2);
}

TEST_F(LockLinks, TheirDirectoryMayBeRemovedWhileItIsMade) {
  std::filesystem::remove(locks());
  test::FaultyFileSystem files;
  int removals = 0;
  files.beforeEach([&](FileCall call) {
    if (call != FileCall::Sync || removals == 3) return;
    ++removals;
    std::filesystem::remove(locks());
  });
  EXPECT_TRUE(canWrite());
  EXPECT_EQ(removals, 3);
  EXPECT_THAT(agent.texts(LogLevel::Error), IsEmpty());
}

// Root locks in the directory of another user. A user other than root works in their own
// directory.
TEST_F(LockLinks, AreNotNeededByTheUserOfTheDirectoryAfterRoot) {
  uid_t owner = ::geteuid();
  if (owner == 0) {
    owner = c_other;
    ASSERT_EQ(::chown(agent.dataDirectory().c_str(), c_other, c_otherGroup), 0);
  } else {
    std::cout << "Not run as root: the directory belongs to the user who runs the test, not to "
                 "another user\n";
  }
  std::filesystem::remove(locks());
  EXPECT_TRUE(canWrite());
  for (const std::string& file : {locks(), mainFile(), gateFile()}) {
    struct stat info {};
    ASSERT_EQ(::stat(file.c_str(), &info), 0) << file;
    EXPECT_EQ(info.st_uid, owner) << file;
  }
}

TEST_F(LockLinks, AreOpenedByNobodyElseAndThatIsSaidOnce) {
  class Closed : public test::ForwardingFileSystem {
   public:
    int open(int directory, const std::string& path, int flags, mode_t mode) override {
      if (path == "SiteListLock.lock") return -EACCES;
      return ForwardingFileSystem::open(directory, path, flags, mode);
    }
  };
  const Closed files;
  EXPECT_FALSE(InterProcessWriteLock(c_lockName).lock(c_forEver));
  EXPECT_EQ(error(), "Cannot lock " + mainFile() +
                         ": Permission denied. An operation that continues is not protected from "
                         "other processes");
}

}  // namespace
