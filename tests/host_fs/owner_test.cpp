#include "host/fs/owner.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <iostream>

#include "tests/host_fs/file_fixture.h"
#include "tests/support/faulty_file_system.h"

namespace {

using test::FileCall;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr uid_t c_other = 65534;
constexpr gid_t c_otherGroup = 65533;

// A directory of another user. Root creates files in it. A user other than root works in their
// own directory.
class Owner : public test::FileTest {
 protected:
  Owner() {
    std::filesystem::create_directory(path("d"));
    if (m_isRoot) {
      give("d");
    } else {
      std::cout << "Not run as root: the directory belongs to the user who runs the test, not to "
                   "another user\n";
    }
  }

  void give(const std::string& name) const {
    ASSERT_EQ(::chown(path(name).c_str(), c_other, c_otherGroup), 0);
  }

  uid_t expectedOwner() const { return m_isRoot ? c_other : ::geteuid(); }

  void expectOwned(const std::string& name) const {
    struct stat info {};
    ASSERT_EQ(::lstat(path(name).c_str(), &info), 0) << name;
    EXPECT_EQ(info.st_uid, expectedOwner()) << name;
    if (m_isRoot) {
      EXPECT_EQ(info.st_gid, c_otherGroup) << name;
    }
  }

  const bool m_isRoot = ::geteuid() == 0;
};

TEST_F(Owner, OfADirectoryOwnsWhatRootMakesInIt) {
  EXPECT_EQ(replace(path("d/f"), "new", 0640), 0);
  EXPECT_EQ(host::replaceSecretFile(path("d/secret"), "s", 1), 0);
  EXPECT_EQ(host::makeDirectories(path("d/e/e"), 0700), 0);
  EXPECT_EQ(replace(path("d/e/e/f"), "new"), 0);
  for (const char* name : {"d/f", "d/secret", "d/e", "d/e/e", "d/e/e/f"}) expectOwned(name);
  EXPECT_EQ(modeOf(path("d/f")), 0640U);
  EXPECT_EQ(modeOf(path("d/secret")), 0600U);
  EXPECT_EQ(modeOf(path("d/e/e")), 0700U);
}

TEST_F(Owner, OfAnExistingFileStays) {
  test::writeFile(path("d/roots"), "old", 0640);
  test::writeFile(path("theirs"), "old", 0604);
  if (m_isRoot) give("theirs");
  EXPECT_EQ(replace(path("d/roots"), "new"), 0);
  EXPECT_EQ(host::replaceSecretFile(path("theirs"), "new", 3), 0);
  struct stat info {};
  ASSERT_EQ(::stat(path("d/roots").c_str(), &info), 0);
  EXPECT_EQ(info.st_uid, ::geteuid());
  EXPECT_EQ(info.st_mode & 07777, 0640U);
  expectOwned("theirs");
  EXPECT_EQ(modeOf(path("theirs")), 0600U);
}

TEST_F(Owner, IsNeverMissingWhenAFileIsThere) {
  std::size_t failures = 0;
  for (std::size_t n = 0;; ++n) {
    test::FaultyFileSystem files;
    files.failCall(n, EIO);
    const int error = replace(path("d/f"), "new");
    if (files.failed().empty()) break;
    failures += error != 0;
    if (test::exists(path("d/f"))) {
      expectOwned("d/f");
      std::filesystem::remove(path("d/f"));
    } else {
      EXPECT_EQ(error, EIO) << files.failed()[0];
    }
    EXPECT_THAT(namesIn(path("d")), IsEmpty());
  }
  EXPECT_GT(failures, 10U);
}

TEST_F(Owner, ThatCannotBeGivenIsReported) {
  std::size_t failures = 0;
  for (std::size_t n = 0;; ++n) {
    test::FaultyFileSystem files;
    files.failCall(n, EIO);
    const std::string name = "d/" + std::to_string(n);
    const int error = host::makeDirectories(path(name), 0700);
    if (files.failed().empty()) break;
    EXPECT_EQ(error, files.failed()[0] == FileCall::Close ? 0 : EIO) << files.failed()[0];
    failures += error != 0;
    if (error == 0) expectOwned(name);
  }
  EXPECT_GT(failures, 5U);
}

TEST_F(Owner, IsNotGivenToADirectoryThatCameInBetween) {
  struct Case {
    uid_t owner;
    mode_t mode;
  };
  std::vector<Case> cases = {{::geteuid(), 0770}, {::geteuid(), 0702}};
  if (m_isRoot) cases.push_back({c_other + 1, 0700});
  for (const Case& each : cases) {
    std::filesystem::create_directory(path("victim"));
    ASSERT_EQ(::chmod(path("victim").c_str(), each.mode), 0);
    ASSERT_EQ(::chown(path("victim").c_str(), each.owner, ::getegid()), 0);
    test::FaultyFileSystem files;
    bool made = false;
    files.beforeEach([&](FileCall call) {
      if (made && call == FileCall::Open && test::exists(path("victim"))) {
        std::filesystem::remove(path("d/e"));
        std::filesystem::rename(path("victim"), path("d/e"));
      }
      made = made || call == FileCall::MakeDirectory;
    });
    EXPECT_EQ(host::makeDirectory(path("d/e"), 0700), m_isRoot ? EPERM : 0);
    if (!m_isRoot) std::filesystem::remove(path("victim"));  // the status was not requested again
    struct stat info {};
    ASSERT_EQ(::stat(path("d/e").c_str(), &info), 0);
    EXPECT_EQ(info.st_uid, each.owner);
    EXPECT_EQ(info.st_mode & 07777, m_isRoot ? each.mode : 0700);
    std::filesystem::remove(path("d/e"));
  }
}

TEST_F(Owner, IsNotGivenToWhatALinkInBetweenLeadsTo) {
  std::filesystem::create_directory(path("victim"));
  test::FaultyFileSystem files;
  bool made = false;
  bool exchanged = false;
  files.beforeEach([&](FileCall call) {
    if (made && !exchanged) {
      exchanged = true;
      std::filesystem::remove(path("d/e"));
      std::filesystem::create_symlink("../victim", path("d/e"));
    }
    made = made || call == FileCall::MakeDirectory;
  });
  EXPECT_EQ(host::makeDirectory(path("d/e"), 0700) != 0, m_isRoot);
  EXPECT_TRUE(exchanged);
  struct stat info {};
  ASSERT_EQ(::stat(path("victim").c_str(), &info), 0);
  EXPECT_EQ(info.st_uid, ::geteuid());
}

TEST_F(Owner, OfADirectoryGivesItsGroupWhereOnlyThatIsAnother) {
  std::filesystem::create_directory(path("g"));
  if (m_isRoot) {
    ASSERT_EQ(::chown(path("g").c_str(), ::geteuid(), c_otherGroup), 0);
  }
  EXPECT_EQ(replace(path("g/f"), "new"), 0);
  struct stat directory {};
  struct stat file {};
  ASSERT_EQ(::stat(path("g").c_str(), &directory), 0);
  ASSERT_EQ(::stat(path("g/f").c_str(), &file), 0);
  EXPECT_EQ(file.st_uid, ::geteuid());
  EXPECT_EQ(file.st_gid, directory.st_gid);
}

TEST_F(Owner, GetsAnEmptyDirectory) {
  std::filesystem::create_directory(path("e"));
  EXPECT_EQ(host::giveEmptyDirectory(path("e"), ::geteuid(), c_otherGroup), 0)
      << "the directory already has this owner";
  if (!m_isRoot) return;
  EXPECT_EQ(host::giveEmptyDirectory(path("e"), c_other, c_otherGroup), 0);
  expectOwned("e");
  std::filesystem::create_directory(path("full"));
  EXPECT_EQ(replace(path("full/f"), "new"), 0);
  EXPECT_EQ(host::giveEmptyDirectory(path("full"), c_other, c_otherGroup), ENOTEMPTY);
  give("full");
  EXPECT_EQ(host::giveEmptyDirectory(path("full"), c_other, c_otherGroup), 0);
  std::filesystem::create_directory_symlink(path("target"), path("link"));
  std::filesystem::create_directory(path("target"));
  ASSERT_EQ(::lchown(path("link").c_str(), c_other, c_otherGroup), 0);
  EXPECT_EQ(host::giveEmptyDirectory(path("link"), c_other, c_otherGroup), EPERM);
  EXPECT_EQ(host::giveEmptyDirectory(path("none"), c_other, c_otherGroup), ENOENT);
}

TEST_F(Owner, ThatCannotBeChangedIsTold) {
  std::filesystem::create_directory(path("e"));
  test::FaultyFileSystem faulty;
  for (const FileCall call :
       {FileCall::Open, FileCall::StatOpen, FileCall::List, FileCall::Chown}) {
    faulty.failEvery(call, EIO);
    EXPECT_EQ(host::giveEmptyDirectory(path("e"), ::geteuid() + 1, c_otherGroup), EIO);
  }
}

}  // namespace
