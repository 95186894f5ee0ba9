#include <fcntl.h>
#include <signal.h>
#include <sys/file.h>
#include <unistd.h>

#include <cerrno>

#include "host/fs/temp_file.h"
#include "tests/host_fs/file_fixture.h"
#include "tests/support/child_process.h"
#include "tests/support/faulty_file_system.h"

namespace {

using test::FileCall;
using testing::ElementsAre;
using testing::SizeIs;

const char* const c_tempName = ".sitehlp-0123456789abcdef.tmp";

class LeftOver : public test::FileTest {};

// Replaces a file and is killed just before the n-th call.
CHILD_PROCESS(replaceAndDie) {
  test::FaultyFileSystem files;
  int left = std::stoi(args[1]);
  files.beforeEach([&](FileCall) {
    if (left-- == 0) ::raise(SIGKILL);
  });
  const std::string content = "new";
  return host::replaceFile(args[0], content.data(), content.size(), 0600);
}

TEST_F(LeftOver, AKillAtAnyMomentLeavesAWholeFileAndTheNextWriterCleansUp) {
  int killed = 0;
  int leftOvers = 0;
  for (int status = -1; status != 0; ++killed) {
    ASSERT_EQ(replace(path("f"), "old"), 0);
    test::ChildProcess child("replaceAndDie", {path("f"), std::to_string(killed)});
    status = child.wait();
    ASSERT_TRUE(status == 0 || status == 128 + SIGKILL) << status;
    const std::string now = test::readFile(path("f"));
    EXPECT_TRUE(now == "old" || now == "new") << now;
    leftOvers += names().size() > 1;
    EXPECT_EQ(replace(path("f"), "next"), 0);
    EXPECT_THAT(names(), ElementsAre("f"));
  }
  EXPECT_GT(killed, 10);
  EXPECT_GT(leftOvers, 3);
}

TEST_F(LeftOver, TheFileOfALivingWriterStays) {
  const host::Descriptor directory(::open(dir.path().c_str(), O_RDONLY | O_DIRECTORY));
  host::TempFile living(directory.get());
  ASSERT_EQ(living.create(), 0);
  ASSERT_EQ(replace(path("f"), "new"), 0);
  EXPECT_THAT(names(), SizeIs(2));
  EXPECT_EQ(living.writeAll("mine", 4), 0);
  EXPECT_EQ(living.renameTo("g"), 0);
  EXPECT_THAT(names(), ElementsAre("f", "g"));
  EXPECT_EQ(test::readFile(path("g")), "mine");
}

TEST_F(LeftOver, OnlyFilesOfThatNameAndKindAreRemoved) {
  test::writeFile(path(c_tempName), "left over");
  test::writeFile(path("sitehlp-0123456789abcdef.tmp"), "x");
  test::writeFile(path(".sitehlp-0123456789abcdeg.tmp"), "x");
  test::writeFile(path(".sitehlp-0123456789abcde.tmp"), "x");
  test::writeFile(path(".sitehlp-0123456789abcdef.tmp.bak"), "x");
  test::writeFile(path(".sitehlp-0123456789abcdef.txt"), "x");
  test::writeFile(path("target"), "x");
  std::filesystem::create_symlink("target", path(".sitehlp-00000000000000aa.tmp"));
  std::filesystem::create_directory(path(".sitehlp-00000000000000bb.tmp"));
  const std::set<std::string> before = names();
  ASSERT_EQ(replace(path("target"), "new"), 0);
  std::set<std::string> expected = before;
  expected.erase(c_tempName);
  EXPECT_EQ(names(), expected);
}

TEST_F(LeftOver, AFailedWriteRemovesNothingOfOthers) {
  test::writeFile(path(c_tempName), "left over");
  test::FaultyFileSystem files;
  files.failEvery(FileCall::Rename, EIO);
  EXPECT_EQ(replace(path("f"), "new"), EIO);
  EXPECT_THAT(names(), ElementsAre(c_tempName));
}

// A temporary file looks like a left-over one between its creation and its lock. Removes left-over
// files at exactly that moment.
class EagerCleaner {
 public:
  EagerCleaner(test::FaultyFileSystem& files, const std::string& directory, bool finish)
      : m_directory(directory), m_finish(finish) {
    files.beforeEach([this](FileCall call) {
      if (call == FileCall::Lock && rounds < 3) clean();
    });
  }
  ~EagerCleaner() {
    for (const int fd : m_held) ::close(fd);
  }
  int rounds = 0;

 private:
  void clean() {
    for (const auto& entry : std::filesystem::directory_iterator(m_directory)) {
      const std::string file = entry.path().string();
      if (entry.path().extension() != ".tmp") continue;
      const int fd = ::open(file.c_str(), O_RDONLY);
      EXPECT_EQ(::flock(fd, LOCK_EX | LOCK_NB), 0);
      ++rounds;
      if (m_finish) {
        ::unlink(file.c_str());
        ::close(fd);
      } else {
        m_held.push_back(fd);
      }
    }
  }

  std::string m_directory;
  bool m_finish;
  std::vector<int> m_held;
};

TEST_F(LeftOver, AWriterStartsAgainWhenItsFileWasTakenAway) {
  test::FaultyFileSystem files;
  EagerCleaner cleaner(files, dir.path(), true);
  EXPECT_EQ(replace(path("f"), "new"), 0);
  EXPECT_EQ(cleaner.rounds, 3);
  EXPECT_EQ(test::readFile(path("f")), "new");
  EXPECT_THAT(names(), ElementsAre("f"));
}

TEST_F(LeftOver, AWriterStartsAgainWhenItsFileIsAboutToBeTakenAway) {
  test::FaultyFileSystem files;
  EagerCleaner cleaner(files, dir.path(), false);
  EXPECT_EQ(replace(path("f"), "new"), 0);
  EXPECT_EQ(cleaner.rounds, 3);
  EXPECT_EQ(test::readFile(path("f")), "new");
  EXPECT_THAT(names(), ElementsAre("f"));
}

TEST_F(LeftOver, AWriterWhoseNameIsAlwaysTakenGivesUp) {
  test::FaultyFileSystem files;
  files.failEvery(FileCall::Lock, EWOULDBLOCK);
  EXPECT_EQ(replace(path("f"), "new"), EAGAIN);
  EXPECT_THAT(names(), testing::IsEmpty());
}

}  // namespace
