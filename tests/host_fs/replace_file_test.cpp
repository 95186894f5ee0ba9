#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <thread>

#include "tests/host_fs/file_fixture.h"
#include "tests/support/faulty_file_system.h"
#include "tests/support/forwarding_file_system.h"

namespace {

using testing::ElementsAre;

class ReplaceFile : public test::FileTest {};

TEST_F(ReplaceFile, CreatesAFileWithTheGivenMode) {
  EXPECT_EQ(replace(path("f"), "content", 0640), 0);
  EXPECT_EQ(test::readFile(path("f")), "content");
  EXPECT_EQ(modeOf(path("f")), 0640U);
  EXPECT_THAT(names(), ElementsAre("f"));
}

TEST_F(ReplaceFile, GivesTheModeWhateverTheProcessMaskIs) {
  const mode_t mask = ::umask(077);
  EXPECT_EQ(replace(path("f"), "content", 0644), 0);
  ::umask(mask);
  EXPECT_EQ(modeOf(path("f")), 0644U);
}

TEST_F(ReplaceFile, KeepsTheModeOfTheOldFile) {
  for (const mode_t mode : {0444U, 0644U, 0600U, 0755U, 0200U}) {
    test::writeFile(path("f"), "a longer old content", 0644);
    ::chmod(path("f").c_str(), mode);
    EXPECT_EQ(replace(path("f"), "new"), 0);
    EXPECT_EQ(modeOf(path("f")), mode);
    ::chmod(path("f").c_str(), 0644);
    EXPECT_EQ(test::readFile(path("f")), "new");
  }
}

TEST_F(ReplaceFile, WritesAnyBytesAndNone) {
  const std::string content("\0\xFF\r\n", 4);
  EXPECT_EQ(replace(path("f"), content), 0);
  EXPECT_EQ(test::readFile(path("f")), content);
  EXPECT_EQ(host::replaceFile(path("f"), nullptr, 0, 0600), 0);
  EXPECT_EQ(test::readFile(path("f")), "");
}

TEST_F(ReplaceFile, PutsShortWritesTogether) {
  std::string content;
  for (int i = 0; i < 500; ++i) content += std::to_string(i);
  test::FaultyFileSystem files;
  files.limitTransfers(7);
  EXPECT_EQ(replace(path("f"), content), 0);
  EXPECT_EQ(test::readFile(path("f")), content);
}

TEST_F(ReplaceFile, FindsAFileInTheCurrentDirectory) {
  const std::string before = std::filesystem::current_path();
  std::filesystem::current_path(dir.path());
  EXPECT_EQ(replace("f", "content"), 0);
  EXPECT_EQ(replace("./g", "content"), 0);
  std::filesystem::current_path(before);
  EXPECT_THAT(names(), ElementsAre("f", "g"));
}

TEST_F(ReplaceFile, WritesToWhatALinkPointsTo) {
  test::writeFile(path("real/f"), "old", 0640);
  std::filesystem::create_symlink("real/f", path("relative"));
  std::filesystem::create_symlink(path("relative"), path("absolute"));
  EXPECT_EQ(replace(path("absolute"), "new"), 0);
  EXPECT_TRUE(std::filesystem::is_symlink(path("absolute")));
  EXPECT_TRUE(std::filesystem::is_symlink(path("relative")));
  EXPECT_EQ(test::readFile(path("real/f")), "new");
  EXPECT_EQ(modeOf(path("real/f")), 0640U);
  EXPECT_THAT(namesIn(path("real")), ElementsAre("f"));
}

TEST_F(ReplaceFile, FindsALinkTargetRelativeToTheLink) {
  std::filesystem::create_directories(path("a/b"));
  test::writeFile(path("a/f"), "old");
  std::filesystem::create_symlink("../f", path("a/b/link"));
  EXPECT_EQ(replace(path("a/b/link"), "new"), 0);
  EXPECT_EQ(test::readFile(path("a/f")), "new");
}

TEST_F(ReplaceFile, CreatesTheTargetOfADanglingLink) {
  std::filesystem::create_symlink("f", path("link"));
  EXPECT_EQ(replace(path("link"), "new"), 0);
  EXPECT_TRUE(std::filesystem::is_symlink(path("link")));
  EXPECT_EQ(test::readFile(path("f")), "new");
}

TEST_F(ReplaceFile, GivesUpOnLinksThatLeadNowhere) {
  std::filesystem::create_symlink("loop", path("loop"));
  std::filesystem::create_symlink("missing/f", path("link"));
  EXPECT_EQ(replace(path("loop"), "new"), ELOOP);
  EXPECT_EQ(replace(path("link"), "new"), ENOENT);
  EXPECT_THAT(names(), ElementsAre("link", "loop"));
}

TEST_F(ReplaceFile, RefusesWhatIsNoRegularFile) {
  std::filesystem::create_directory(path("directory"));
  ASSERT_EQ(::mkfifo(path("pipe").c_str(), 0600), 0);
  EXPECT_EQ(replace(path("directory"), "new"), EISDIR);
  EXPECT_EQ(replace(path("directory/"), "new"), EISDIR);
  EXPECT_EQ(replace(path("directory/.."), "new"), EISDIR);
  EXPECT_EQ(replace(path("pipe"), "new"), EINVAL);
  EXPECT_THAT(names(), ElementsAre("directory", "pipe"));
}

TEST_F(ReplaceFile, RefusesPathsThatLeadNowhere) {
  test::writeFile(path("f"), "old");
  EXPECT_EQ(replace("", "new"), ENOENT);
  EXPECT_EQ(replace(path("missing/f"), "new"), ENOENT);
  EXPECT_EQ(replace(path("f/g"), "new"), ENOTDIR);
  EXPECT_EQ(replace(path("f") + std::string("\0g", 2), "new"), EINVAL);
  EXPECT_EQ(replace(path(std::string(300, 'n')), "new"), ENAMETOOLONG);
  EXPECT_THAT(names(), ElementsAre("f"));
}

TEST_F(ReplaceFile, TakesTheLongestFileName) {
  const std::string name(255, 'n');
  EXPECT_EQ(replace(path(name), "old"), 0);
  EXPECT_EQ(replace(path(name), "new"), 0);
  EXPECT_EQ(test::readFile(path(name)), "new");
}

TEST_F(ReplaceFile, LeavesOtherNamesOfTheOldFileAlone) {
  test::writeFile(path("f"), "old");
  std::filesystem::create_hard_link(path("f"), path("other"));
  EXPECT_EQ(replace(path("f"), "new"), 0);
  EXPECT_EQ(test::readFile(path("other")), "old");
}

TEST_F(ReplaceFile, StaysInTheDirectoryThatItOpenedWhenThatIsExchanged) {
  test::writeFile(path("d/f"), "old");
  test::writeFile(path("elsewhere/f"), "another's");
  test::FaultyFileSystem files;
  bool exchanged = false;
  files.beforeEach([&](test::FileCall call) {
    if (call != test::FileCall::Write || exchanged) return;
    exchanged = true;
    std::filesystem::rename(path("d"), path("moved"));
    std::filesystem::create_symlink("elsewhere", path("d"));
  });
  EXPECT_EQ(replace(path("d/f"), "new"), 0);
  EXPECT_TRUE(exchanged);
  EXPECT_EQ(test::readFile(path("moved/f")), "new");
  EXPECT_EQ(test::readFile(path("elsewhere/f")), "another's");
  EXPECT_THAT(namesIn(path("elsewhere")), ElementsAre("f"));
}

// Reports another owner for a file that is found by name, and stores the arguments of chown.
class OtherOwner : public test::ForwardingFileSystem {
 public:
  int stat(int directory, const std::string& name, bool follow, struct stat& out) override {
    const int result = ForwardingFileSystem::stat(directory, name, follow, out);
    if (result == 0) out.st_uid += 7;
    return result;
  }
  int chown(int fd, uid_t owner, gid_t) override {
    asked = owner;
    modeWhenAsked = modeNow(fd);
    return refusal;
  }
  int chmod(int fd, mode_t mode) override {
    EXPECT_NE(asked, uid_t{0}) << "the owner comes first: changing it takes mode bits away";
    return ForwardingFileSystem::chmod(fd, mode);
  }
  static mode_t modeNow(int fd) {
    struct stat info {};
    return ::fstat(fd, &info) == 0 ? info.st_mode & 07777 : 0;
  }

  uid_t asked = 0;
  mode_t modeWhenAsked = 0;
  int refusal = 0;
};

TEST_F(ReplaceFile, GivesTheNewFileTheOwnerOfTheOldOne) {
  test::writeFile(path("f"), "old", 0644);
  OtherOwner files;
  EXPECT_EQ(replace(path("f"), "new"), 0);
  EXPECT_EQ(files.asked, ::geteuid() + 7);
  EXPECT_EQ(files.modeWhenAsked, 0600U);
  EXPECT_EQ(test::readFile(path("f")), "new");
}

TEST_F(ReplaceFile, LeavesAFileWhoseOwnerItCannotKeep) {
  test::writeFile(path("f"), "old", 0644);
  OtherOwner files;
  files.refusal = -EPERM;
  EXPECT_EQ(replace(path("f"), "new"), EPERM);
  EXPECT_EQ(test::readFile(path("f")), "old");
  EXPECT_THAT(names(), ElementsAre("f"));
}

TEST_F(ReplaceFile, ShowsReadersTheWholeOldOrTheWholeNewFile) {
  constexpr int c_writers = 3;
  constexpr int c_rounds = 60;
  constexpr std::size_t c_size = 40000;
  ASSERT_EQ(replace(path("f"), std::string(c_size, 'a')), 0);
  std::atomic<int> writing{c_writers};
  std::vector<std::thread> writers;
  for (int w = 0; w < c_writers; ++w) {
    writers.emplace_back([&, w] {
      const std::string content(c_size, static_cast<char>('b' + w));
      for (int i = 0; i < c_rounds; ++i) EXPECT_EQ(replace(path("f"), content), 0);
      --writing;
    });
  }
  do {
    std::string seen;
    EXPECT_EQ(host::readRegularFile(path("f"), c_size, seen), 0);
    EXPECT_EQ(seen.size(), c_size);
    EXPECT_EQ(seen.find_first_not_of(seen.front()), std::string::npos);
  } while (writing > 0);
  for (std::thread& writer : writers) writer.join();
  EXPECT_THAT(names(), ElementsAre("f"));
}

}  // namespace
