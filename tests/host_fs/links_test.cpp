#include <fcntl.h>

#include <cerrno>

#include "host/fs/temp_file.h"
#include "tests/host_fs/file_fixture.h"
#include "tests/support/faulty_file_system.h"
#include "tests/support/foreign_links.h"
#include "tests/support/forwarding_file_system.h"

namespace {

using test::FileCall;
using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

class Links : public test::FileTest {
 protected:
  Links() {
    test::writeFile(path("victim/f"), "victim's");
    test::writeFile(path("own/f"), "old");
  }

  void link(const std::string& target, const std::string& name) const {
    std::filesystem::create_symlink(target, path(name));
  }

  // Returns the only error since the last call.
  std::string error() {
    const auto texts = agent.texts(LogLevel::Error);
    EXPECT_EQ(texts.size(), 1U);
    agent.clearLog();
    return texts.empty() ? "" : test::narrow(texts[0]);
  }

  void expectRefused(const std::string& name, const std::string& theLink) {
    SCOPED_TRACE(name);
    EXPECT_EQ(replace(path(name), "new"), EPERM);
    EXPECT_THAT(
        error(),
        AllOf(HasSubstr("Cannot write " + path(name) + ": the symbolic link " + path(theLink) +
                        " belongs to user " + std::to_string(test::ForeignLinks::stranger())),
              HasSubstr(" and is not followed; next: remove the link, or make root its "
                        "owner")));
    EXPECT_EQ(test::readFile(path("victim/f")), "victim's");
    EXPECT_THAT(namesIn(path("victim")), ElementsAre("f"));
  }

  test::TestAgent agent;
  test::ForeignLinks files;
};

TEST_F(Links, OfAnotherUserAreNotWrittenThrough) {
  link(path("victim/f"), "foreign-file");
  link("victim/new", "foreign-dangling");
  link("victim", "foreign-directory");
  link("foreign-loop", "foreign-loop");
  link("foreign-file", "mine");
  link("mine", "mine-too");
  for (const char* name :
       {"foreign-file", "foreign-dangling", "foreign-directory", "foreign-loop"}) {
    expectRefused(name, name);
  }
  expectRefused("mine", "foreign-file");
  expectRefused("mine-too", "foreign-file");
  EXPECT_TRUE(std::filesystem::is_symlink(path("foreign-file")));
}

TEST_F(Links, OfAnotherUserAreNotPassedThrough) {
  link("victim", "foreign");
  link("foreign", "mine");
  link("foreign/f", "mine-to-file");
  expectRefused("foreign/f", "foreign");
  expectRefused("own/../foreign/f", "own/../foreign");
  expectRefused("mine/f", "foreign");
  expectRefused("mine/new", "foreign");
  expectRefused("mine-to-file", "foreign");
}

TEST_F(Links, OfTheCallerAndOfRootAreFollowedAndStay) {
  link("own", "mine");
  link("mine/f", "root-to-file");
  link("root-to-file", "mine-to-file");
  EXPECT_EQ(replace(path("mine-to-file"), "new"), 0);
  EXPECT_EQ(test::readFile(path("own/f")), "new");
  EXPECT_EQ(replace(path("root-to-file"), "newer"), 0);
  EXPECT_EQ(replace(path("mine/g"), "another"), 0);
  EXPECT_EQ(test::readFile(path("own/f")), "newer");
  EXPECT_THAT(namesIn(path("own")), ElementsAre("f", "g"));
  for (const char* name : {"mine", "root-to-file", "mine-to-file"}) {
    EXPECT_TRUE(std::filesystem::is_symlink(path(name))) << name;
  }
  EXPECT_THAT(agent.texts(LogLevel::Error), IsEmpty());
}

TEST_F(Links, AreFollowedFortyTimesAndNoMore) {
  link("own/f", "0");
  for (int i = 1; i <= 40; ++i) link(std::to_string(i - 1), std::to_string(i));
  EXPECT_EQ(replace(path("39"), "new"), 0);
  EXPECT_EQ(test::readFile(path("own/f")), "new");
  EXPECT_EQ(replace(path("40"), "newer"), ELOOP);
  EXPECT_EQ(test::readFile(path("own/f")), "new");
}

// On some systems a link may be empty, or may disappear between two calls.
class OddLinks : public test::ForwardingFileSystem {
 public:
  int readLink(int directory, const std::string& name, std::string& target,
               struct stat& link) override {
    const int found = ForwardingFileSystem::readLink(directory, name, target, link);
    if (name == "gone") return -ENOENT;
    if (name == "a-file-by-now") return -EINVAL;
    if (name == "empty") target.clear();
    return found;
  }
};

TEST_F(Links, ThatSayNothingLeadNowhere) {
  const OddLinks odd;
  for (const char* name : {"empty", "gone", "a-file-by-now"}) link("own/f", name);
  EXPECT_EQ(replace(path("empty"), "new"), ENOENT);
  EXPECT_EQ(replace(path("empty/f"), "new"), ENOENT);
  EXPECT_EQ(replace(path("gone"), "new"), ENOENT);
  EXPECT_EQ(replace(path("gone/f"), "new"), ENOENT);
  EXPECT_EQ(replace(path("a-file-by-now"), "new"), EINVAL);
  EXPECT_EQ(replace(path("a-file-by-now/f"), "new"), ENOTDIR);
  EXPECT_EQ(test::readFile(path("own/f")), "old");
}

TEST_F(Links, LeadADirectoryNowhereElse) {
  link("victim", "foreign");
  link("victim/new", "foreign-dangling");
  for (const char* name : {"foreign", "foreign/d", "foreign/d/e", "foreign-dangling"}) {
    EXPECT_EQ(host::makeDirectories(path(name), 0700), EPERM) << name;
    EXPECT_THAT(error(), AllOf(HasSubstr("Cannot create directory"), HasSubstr("/foreign")));
    EXPECT_EQ(host::makeDirectory(path(name), 0700), EPERM) << name;
    EXPECT_THAT(error(), HasSubstr("Cannot create directory " + path(name)));
  }
  EXPECT_THAT(namesIn(path("victim")), ElementsAre("f"));
  link("own", "root");
  EXPECT_EQ(host::makeDirectories(path("root/d"), 0700), 0);
  EXPECT_THAT(namesIn(path("own")), ElementsAre("d", "f"));
}

TEST_F(Links, AreRemovedThemselvesAndNotPassedThrough) {
  link("victim/f", "foreign-file");
  link("victim", "foreign");
  EXPECT_EQ(host::removeFile(path("foreign/f")), EPERM);
  EXPECT_THAT(error(), HasSubstr("Cannot delete " + path("foreign/f") + ": the symbolic link " +
                                 path("foreign") + " belongs to user "));
  EXPECT_EQ(host::removeFile(path("foreign-file")), 0);
  EXPECT_EQ(host::removeFile(path("foreign")), 0);
  EXPECT_THAT(names(), ElementsAre("own", "victim"));
  EXPECT_THAT(namesIn(path("victim")), ElementsAre("f"));
}

TEST_F(Links, DoNotKeepAnybodyFromReading) {
  link("victim/f", "foreign-file");
  std::string bytes;
  EXPECT_EQ(host::readRegularFile(path("foreign-file"), 100, bytes), 0);
  EXPECT_EQ(bytes, "victim's");
  bool same = false;
  EXPECT_EQ(host::wouldReplace(path("victim/f"), path("foreign-file"), same), 0);
  EXPECT_TRUE(same);
}

TEST_F(Links, ThatLookLikeLeftOversAreNotFollowed) {
  link("../victim/f", "own/.sitehlp-0123456789abcdef.tmp");
  EXPECT_EQ(replace(path("own/f"), "new"), 0);
  EXPECT_EQ(test::readFile(path("victim/f")), "victim's");
  EXPECT_TRUE(std::filesystem::is_symlink(path("own/.sitehlp-0123456789abcdef.tmp")));
}

// The first directory of a path becomes a link after the walk has passed it.
TEST_F(Links, ThatReplaceADirectoryWhichIsOpenLeadNowhereElse) {
  std::filesystem::create_directories(path("a/b"));
  std::filesystem::create_directories(path("victim/b"));
  bool exchanged = false;
  files.beforeEach([&](FileCall call) {
    if (call != FileCall::Stat || exchanged) return;
    exchanged = true;
    std::filesystem::rename(path("a"), path("moved"));
    link("victim", "a");
  });
  EXPECT_EQ(replace(path("a/b/f"), "new"), 0);
  EXPECT_TRUE(exchanged);
  EXPECT_EQ(test::readFile(path("moved/b/f")), "new");
  EXPECT_THAT(namesIn(path("victim/b")), IsEmpty());
}

// A file becomes a link after it was examined.
TEST_F(Links, ThatReplaceTheOldFileAreReplacedThemselves) {
  bool exchanged = false;
  files.beforeEach([&](FileCall call) {
    if (call != FileCall::Rename || exchanged) return;
    exchanged = true;
    std::filesystem::remove(path("own/f"));
    link("../victim/f", "own/f");
  });
  EXPECT_EQ(replace(path("own/f"), "new"), 0);
  EXPECT_TRUE(exchanged);
  EXPECT_FALSE(std::filesystem::is_symlink(path("own/f")));
  EXPECT_EQ(test::readFile(path("own/f")), "new");
  EXPECT_EQ(test::readFile(path("victim/f")), "victim's");
}

TEST_F(Links, AreFollowedWholeOrNotAtAllWhateverCallFails) {
  link("own", "mine");
  link("mine/f", "to-file");
  const auto descriptors = openDescriptors();
  std::size_t failures = 0;
  for (std::size_t n = 0;; ++n) {
    test::writeFile(path("own/f"), "old");
    test::FaultyFileSystem faulty;
    faulty.failCall(n, EIO);
    const int error = replace(path("to-file"), "new");
    if (faulty.failed().empty()) break;
    failures += error != 0;
    EXPECT_TRUE(error == 0 || error == EIO) << error;
    const std::string now = test::readFile(path("own/f"));
    EXPECT_TRUE(now == "new" || (now == "old" && error == EIO)) << faulty.failed()[0];
    EXPECT_THAT(namesIn(path("own")), ElementsAre("f"));
    EXPECT_TRUE(std::filesystem::is_symlink(path("to-file")));
  }
  EXPECT_GT(failures, 12U);
  EXPECT_EQ(openDescriptors(), descriptors);
}

TEST_F(Links, OfNamesToOneFileLeaveTheOtherNameAsItWas) {
  std::filesystem::create_hard_link(path("victim/f"), path("own/hard"));
  struct stat before {};
  ASSERT_EQ(::stat(path("victim/f").c_str(), &before), 0);
  EXPECT_EQ(replace(path("own/hard"), "new"), 0);
  struct stat after {};
  ASSERT_EQ(::stat(path("victim/f").c_str(), &after), 0);
  EXPECT_EQ(test::readFile(path("victim/f")), "victim's");
  EXPECT_EQ(after.st_ino, before.st_ino);
  EXPECT_EQ(after.st_mode, before.st_mode);
  EXPECT_EQ(after.st_uid, before.st_uid);
  EXPECT_EQ(after.st_mtime, before.st_mtime);
}

TEST_F(Links, MakeNoProgramThatRunsWithAnotherUsersRights) {
  test::writeFile(path("own/f"), "old", 06755);
  ASSERT_EQ(modeOf(path("own/f")), 06755U);
  EXPECT_EQ(replace(path("own/f"), "new"), 0);
  EXPECT_EQ(modeOf(path("own/f")), 0755U);
}

// The error of some systems when a symbolic link is opened as a directory.
class LoopForLink : public test::FaultyFileSystem {
 public:
  int open(int directory, const std::string& name, int flags, mode_t mode) override {
    const int opened = FaultyFileSystem::open(directory, name, flags, mode);
    struct stat info {};
    const bool isLink = opened < 0 && FaultyFileSystem::stat(directory, name, false, info) == 0 &&
                        S_ISLNK(info.st_mode);
    return isLink ? -ELOOP : opened;
  }
};

TEST_F(Links, AreFollowedWhereTheSystemSpeaksOfALoop) {
  link("own", "mine");
  link("dangling", "dangling");
  const LoopForLink odd;
  EXPECT_EQ(replace(path("mine/f"), "new"), 0);
  EXPECT_EQ(test::readFile(path("own/f")), "new");
  EXPECT_EQ(replace(path("own/f/below"), "new"), ENOTDIR);
  EXPECT_EQ(replace(path("dangling/f"), "new"), ELOOP);
}

TEST_F(Links, AtTheBeginningOfARelativePathAreLookedAtAsAnyOther) {
  link("own", "mine");
  link("mine/f", "mine-to-file");
  link("victim", "foreign");
  const std::string before = std::filesystem::current_path();
  std::filesystem::current_path(dir.path());
  EXPECT_EQ(replace("mine/f", "new"), 0);
  EXPECT_EQ(replace("mine-to-file", "newer"), 0);
  EXPECT_EQ(host::makeDirectory("mine/d", 0700), 0);
  EXPECT_EQ(replace("foreign/f", "new"), EPERM);
  EXPECT_EQ(host::removeFile("mine-to-file"), 0);
  std::filesystem::current_path(before);
  EXPECT_EQ(test::readFile(path("own/f")), "newer");
  EXPECT_THAT(namesIn(path("own")), ElementsAre("d", "f"));
  EXPECT_THAT(error(), HasSubstr("Cannot write foreign/f: the symbolic link foreign belongs to"));
  EXPECT_EQ(test::readFile(path("victim/f")), "victim's");
  EXPECT_THAT(names(), ElementsAre("foreign", "mine", "own", "victim"));
}

}  // namespace
