#include <unistd.h>

#include <cerrno>
#include <utility>

#include "platform/common/afile.h"
#include "tests/host_fs/file_fixture.h"
#include "tests/support/faulty_file_system.h"
#include "tests/support/forwarding_file_system.h"
#include "tests/support/recording_file_system.h"

namespace {

using test::FileCall;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::UnorderedElementsAre;

class WriteTogether : public test::FileTest {
 protected:
  using NamesAndBytes = std::vector<std::pair<std::string, std::string>>;

  bool write(const NamesAndBytes& files) {
    std::vector<ABuffer> buffers;
    for (const auto& file : files) {
      buffers.emplace_back(reinterpret_cast<const unsigned char*>(file.second.data()),
                           file.second.size());
    }
    std::vector<AFile::NewContent> contents;
    for (std::size_t i = 0; i < files.size(); ++i) {
      contents.push_back({AString(path(files[i].first).c_str()), &buffers[i]});
    }
    return AFile::writeTogether(contents);
  }
  std::string bytesOf(const std::string& name) const { return test::readFile(path(name)); }
  struct stat statusOf(const std::string& name) const {
    struct stat status {};
    EXPECT_EQ(::lstat(path(name).c_str(), &status), 0) << name;
    return status;
  }
  // Writes the bytes to the file "f". Returns whether the file was replaced.
  bool isReplaced(const std::string& bytes) {
    const ino_t before = statusOf("f").st_ino;
    EXPECT_TRUE(write({{"f", bytes}}));
    EXPECT_EQ(bytesOf("f"), bytes);
    return statusOf("f").st_ino != before;
  }
  // Returns the changes and syncs of the calls. A temporary file has the name "temp".
  std::vector<std::string> steps(const test::RecordingFileSystem& files) const {
    std::vector<std::string> found;
    for (const test::RecordedCall& call : files.calls()) {
      if (call.call == FileCall::Rename) found.push_back("rename to " + shortName(call.newPath));
      if (call.call == FileCall::Sync) found.push_back("sync " + shortName(call.path));
    }
    return found;
  }

  test::TestAgent agent;

 private:
  std::string shortName(const std::string& full) const {
    const std::string name = full == dir.path() ? "." : full.substr(dir.path().size() + 1);
    return name.find(".sitehlp-") == std::string::npos ? name : "temp";
  }
};

TEST_F(WriteTogether, SyncsTheDirectoryOnceAfterTheLastFile) {
  test::writeFile(path("b"), "old");
  const test::RecordingFileSystem files;
  EXPECT_TRUE(write({{"a", "1"}, {"b", "2"}, {"c", ""}}));
  EXPECT_THAT(steps(files), ElementsAre("sync temp", "rename to a", "sync temp", "rename to b",
                                        "sync temp", "rename to c", "sync ."));
  EXPECT_EQ(bytesOf("a") + bytesOf("b") + bytesOf("c"), "12");
  for (const char* name : {"a", "b", "c"}) EXPECT_EQ(modeOf(path(name)), 0600U);
}

TEST_F(WriteTogether, DoesNothingWithoutFiles) {
  const test::RecordingFileSystem files;
  EXPECT_TRUE(write({}));
  EXPECT_THAT(files.calls(), IsEmpty());
}

TEST_F(WriteTogether, OnlySyncsWhatIsThereAlready) {
  ASSERT_TRUE(write({{"a", "1"}, {"b", "2"}, {"empty", ""}}));
  const test::RecordingFileSystem files;
  EXPECT_TRUE(write({{"a", "1"}, {"b", "new"}, {"empty", ""}}));
  EXPECT_THAT(steps(files),
              ElementsAre("sync a", "sync temp", "rename to b", "sync empty", "sync ."));
}

TEST_F(WriteTogether, WritesAFileAgainIfItsBytesDiffer) {
  test::writeFile(path("f"), "content", 0600);
  EXPECT_FALSE(isReplaced("content"));
  for (const char* bytes : {"conTent", "conten", "content and more", ""}) {
    test::writeFile(path("f"), "content", 0600);
    EXPECT_TRUE(isReplaced(bytes)) << bytes;
  }
}

TEST_F(WriteTogether, WritesAFileAgainIfItsModeDiffers) {
  for (const mode_t mode : {0400U, 0640U, 0644U, 0700U, 04600U}) {
    test::writeFile(path("f"), "content");
    ASSERT_EQ(::chmod(path("f").c_str(), mode), 0);
    EXPECT_TRUE(isReplaced("content")) << mode;
    EXPECT_EQ(modeOf(path("f")), 0600U) << mode;
  }
}

TEST_F(WriteTogether, WritesAFileAgainIfItHasAnotherName) {
  test::writeFile(path("f"), "content", 0600);
  std::filesystem::create_hard_link(path("f"), path("other"));
  EXPECT_TRUE(isReplaced("content"));
  EXPECT_EQ(statusOf("f").st_nlink, 1U);
  EXPECT_FALSE(isReplaced("content"));
}

// The owner needs no comparison, because a write keeps it as well.
TEST_F(WriteTogether, KeepsTheOwnerOfAFileThatIsThere) {
  test::writeFile(path("f"), "content", 0600);
  if (::geteuid() != 0) {
    std::cout << "not root: the file belongs to the user of the test\n";
  } else {
    ASSERT_EQ(::chown(path("f").c_str(), 65534, 65533), 0);
  }
  const struct stat before = statusOf("f");
  EXPECT_FALSE(isReplaced("content"));
  EXPECT_TRUE(isReplaced("new"));
  EXPECT_EQ(statusOf("f").st_uid, before.st_uid);
  EXPECT_EQ(statusOf("f").st_gid, before.st_gid);
}

TEST_F(WriteTogether, FollowsALinkAndSyncsTheDirectoryOfItsTarget) {
  test::writeFile(path("far/f"), "content", 0600);
  std::filesystem::create_symlink("far/f", path("f"));
  std::filesystem::create_symlink("far/new", path("g"));
  const ino_t target = statusOf("far/f").st_ino;
  const test::RecordingFileSystem files;
  EXPECT_TRUE(write({{"a", "1"}, {"f", "content"}, {"g", "2"}}));
  EXPECT_THAT(steps(files), ElementsAre("sync temp", "rename to a", "sync far/f", "sync temp",
                                        "rename to far/new", "sync .", "sync far"));
  EXPECT_TRUE(std::filesystem::is_symlink(path("f")));
  EXPECT_EQ(statusOf("far/f").st_ino, target);
}

TEST_F(WriteTogether, FailsForWhatIsNotAFile) {
  std::filesystem::create_directory(path("f"));
  EXPECT_FALSE(write({{"f", ""}}));
  std::filesystem::remove(path("f"));
  ASSERT_EQ(::mkfifo(path("f").c_str(), 0600), 0);
  EXPECT_FALSE(write({{"f", ""}}));
  EXPECT_THAT(names(), ElementsAre("f"));
}

TEST_F(WriteTogether, EndsAtTheFirstFailureAndNamesIt) {
  std::filesystem::create_directory(path("b"));
  test::writeFile(path("c"), "old");
  agent.clearLog();
  test::RecordingFileSystem files;
  EXPECT_FALSE(write({{"a", "1"}, {"b", "2"}, {"c", "3"}}));
  EXPECT_THAT(steps(files), ElementsAre("sync temp", "rename to a", "sync ."))
      << "what was written before is on the disk";
  EXPECT_EQ(bytesOf("a") + bytesOf("c"), "1old");
  EXPECT_THAT(agent.texts(LogLevel::Info),
              ElementsAre(test::wide("Cannot write " + path("b") + ": Is a directory")));
}

// The real file system with one sync that fails.
class FailingSync : public test::ForwardingFileSystem {
 public:
  explicit FailingSync(int number) : m_left(number) {}

  int sync(int fd) override { return --m_left == 0 ? -EIO : ForwardingFileSystem::sync(fd); }

 private:
  int m_left;
};

TEST_F(WriteTogether, NamesAFileOfTheDirectoryThatCannotBeSynced) {
  std::filesystem::create_directory(path("far"));
  std::filesystem::create_symlink("far/b", path("b"));
  const FailingSync files(4);
  EXPECT_FALSE(write({{"a", "1"}, {"b", "2"}}));
  EXPECT_THAT(agent.texts(LogLevel::Info),
              ElementsAre(test::wide("Cannot write " + path("b") + ": Input/output error")));
}

// A sync fails if the bytes could not be written to the disk.
TEST_F(WriteTogether, WritesAFileAgainIfItCannotBeSynced) {
  test::writeFile(path("f"), "content", 0600);
  const ino_t before = statusOf("f").st_ino;
  const FailingSync files(1);
  EXPECT_TRUE(write({{"f", "content"}}));
  EXPECT_NE(statusOf("f").st_ino, before);
}

// "a" is there, "b" is replaced and "c" is new.
TEST_F(WriteTogether, ReportsEachCallThatFailsOrSucceedsWithoutIt) {
  std::size_t reported = 0;
  for (std::size_t n = 0;; ++n) {
    test::writeFile(path("a"), "1", 0600);
    test::writeFile(path("b"), "old", 0600);
    std::filesystem::remove(path("c"));
    const auto descriptors = openDescriptors();
    std::vector<FileCall> failed;
    bool done = false;
    {
      test::FaultyFileSystem files;
      files.failCall(n, EIO);
      done = write({{"a", "1"}, {"b", "2"}, {"c", "3"}});
      failed = files.failed();
    }
    if (failed.empty()) break;
    SCOPED_TRACE(testing::Message() << "call " << n << ", " << failed[0]);
    EXPECT_EQ(openDescriptors(), descriptors);
    EXPECT_EQ(bytesOf("a"), "1");
    EXPECT_THAT(bytesOf("b"), testing::AnyOf("old", "2"));
    EXPECT_THAT(names(), testing::AnyOf(UnorderedElementsAre("a", "b"),
                                        UnorderedElementsAre("a", "b", "c")));
    if (done) {
      EXPECT_EQ(bytesOf("b") + bytesOf("c"), "23");
    }
    reported += !done;
  }
  EXPECT_GE(reported, 20U);
}

}  // namespace
