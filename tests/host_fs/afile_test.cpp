#include "platform/common/afile.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>

#include "tests/host_fs/file_fixture.h"
#include "tests/support/faulty_file_system.h"
#include "tests/support/forwarding_file_system.h"

namespace {

using test::FileCall;
using testing::ElementsAre;
using testing::HasSubstr;

ABuffer buffer(const std::string& bytes) {
  return ABuffer(reinterpret_cast<const unsigned char*>(bytes.data()), bytes.size());
}

std::string text(const ABuffer& bytes) {
  return std::string(reinterpret_cast<const char*>(bytes.data()), bytes.size());
}

class Files : public test::FileTest {
 protected:
  test::TestAgent agent;

  AString wpath(const std::string& name) const { return AString(path(name).c_str()); }

  // Returns the only message since the last call. It must have this level.
  std::string reason(LogLevel level = LogLevel::Detail) {
    const auto texts = agent.texts(level);
    EXPECT_EQ(texts.size(), agent.log().size());
    agent.clearLog();
    return texts.size() == 1 ? test::narrow(texts[0]) : std::to_string(texts.size()) + " messages";
  }
};

TEST_F(Files, ReadsBackWhatItWrote) {
  const std::string content("k\0ey\xFF", 5);
  ASSERT_TRUE(AFile::write(wpath("f"), buffer(content)));
  EXPECT_EQ(modeOf(path("f")), 0600U);
  ABuffer read;
  EXPECT_TRUE(AFile::readExisting(wpath("f"), read));
  EXPECT_EQ(text(read), content);
  EXPECT_TRUE(agent.log().empty());
}

TEST_F(Files, WritesAnEmptyFile) {
  ASSERT_TRUE(AFile::write(wpath("f"), ABuffer()));
  ABuffer read = buffer("old");
  EXPECT_TRUE(AFile::readExisting(wpath("f"), read));
  EXPECT_TRUE(read.empty());
}

TEST_F(Files, HandNamesToTheSystemAsUtf8) {
  ASSERT_TRUE(AFile::write(AString(test::wide(path("")) + L"\u00FC\u20AC"), buffer("x")));
  EXPECT_THAT(names(), ElementsAre("\xC3\xBC\xE2\x82\xAC"));
}

TEST_F(Files, KeepTheOutputWhenAReadFails) {
  ABuffer read = buffer("old");
  EXPECT_FALSE(AFile::readExisting(wpath("missing"), read));
  EXPECT_EQ(text(read), "old");
  EXPECT_EQ(reason(), "Cannot read " + path("missing") + ": No such file or directory");
}

TEST_F(Files, RefuseToReadMoreThanOneGibibyte) {
  test::writeFile(path("f"), "");
  ASSERT_EQ(::truncate(path("f").c_str(), (off_t{1} << 30) + 1), 0);
  ABuffer read;
  EXPECT_FALSE(AFile::readExisting(wpath("f"), read));
  EXPECT_THAT(reason(), HasSubstr("too large"));
}

TEST_F(Files, KeepTheOldFileWhenAWriteFails) {
  test::writeFile(path("f"), "old");
  test::FaultyFileSystem files;
  files.failEvery(FileCall::Write, ENOSPC);
  EXPECT_FALSE(AFile::write(wpath("f"), buffer("new")));
  EXPECT_EQ(test::readFile(path("f")), "old");
  EXPECT_EQ(reason(LogLevel::Info), "Cannot write " + path("f") + ": No space left on device");
}

TEST_F(Files, NeverLogTheirContent) {
  test::FaultyFileSystem files;
  files.failEvery(FileCall::Sync, EIO);
  EXPECT_FALSE(AFile::write(wpath("f"), buffer("topsecret")));
  EXPECT_THAT(reason(LogLevel::Info), testing::Not(HasSubstr("topsecret")));
}

TEST_F(Files, AreForTheirOwnerAloneWhateverTheirModeWas) {
  for (const mode_t mode : {0644U, 0666U, 0400U, 0777U}) {
    test::writeFile(path("f"), "old", mode);
    EXPECT_TRUE(AFile::write(wpath("f"), buffer("new")));
    EXPECT_EQ(modeOf(path("f")), 0600U) << mode;
    EXPECT_EQ(test::readFile(path("f")), "new");
  }
}

TEST_F(Files, Delete) {
  test::writeFile(path("f"), "x");
  EXPECT_TRUE(AFiler::deleteFile(wpath("f")));
  EXPECT_FALSE(test::exists(path("f")));
}

TEST_F(Files, AreDeletedWhenTheyWereNotThere) {
  test::writeFile(path("f"), "x");
  EXPECT_TRUE(AFiler::deleteFile(wpath("missing")));
  EXPECT_TRUE(AFiler::deleteFile(wpath("missing/below")));
  EXPECT_TRUE(AFiler::deleteFile(wpath("f/below")));
  EXPECT_TRUE(agent.log().empty());
}

TEST_F(Files, DeleteALinkAndNotItsTarget) {
  test::writeFile(path("f"), "x");
  std::filesystem::create_symlink("f", path("link"));
  EXPECT_TRUE(AFiler::deleteFile(wpath("link")));
  EXPECT_THAT(names(), ElementsAre("f"));
}

TEST_F(Files, TellWhenTheyCannotBeDeleted) {
  std::filesystem::create_directory(path("d"));
  EXPECT_FALSE(AFiler::deleteFile(wpath("d")));
  EXPECT_THAT(reason(LogLevel::Info), HasSubstr("Cannot delete " + path("d")));
}

TEST_F(Files, Copy) {
  test::writeFile(path("from"), "content", 0644);
  test::writeFile(path("old"), "a longer old content", 0640);
  EXPECT_TRUE(AFiler::copyFile(wpath("from"), wpath("new")));
  EXPECT_TRUE(AFiler::copyFile(wpath("from"), wpath("old")));
  EXPECT_EQ(test::readFile(path("new")), "content");
  EXPECT_EQ(test::readFile(path("old")), "content");
  EXPECT_EQ(modeOf(path("new")), 0600U);
  EXPECT_EQ(modeOf(path("old")), 0640U);
}

TEST_F(Files, CopyToThemselves) {
  test::writeFile(path("f"), "content");
  EXPECT_TRUE(AFiler::copyFile(wpath("f"), wpath("f")));
  EXPECT_EQ(test::readFile(path("f")), "content");
}

TEST_F(Files, KeepTheTargetWhenACopyFails) {
  test::writeFile(path("to"), "old");
  EXPECT_FALSE(AFiler::copyFile(wpath("missing"), wpath("to")));
  EXPECT_THAT(reason(), HasSubstr("Cannot read " + path("missing")));
  EXPECT_EQ(test::readFile(path("to")), "old");
  EXPECT_FALSE(AFiler::copyFile(wpath("to"), wpath("nowhere/f")));
  EXPECT_THAT(reason(LogLevel::Info), HasSubstr("Cannot write " + path("nowhere/f")));
}

TEST_F(Files, MakeDirectories) {
  EXPECT_TRUE(AFiler::createDirectory(wpath("a/b")));
  EXPECT_TRUE(AFiler::createDirectory(wpath("a/b")));
  EXPECT_TRUE(std::filesystem::is_directory(path("a/b")));
  test::writeFile(path("f"), "x");
  EXPECT_FALSE(AFiler::createDirectory(wpath("f")));
  EXPECT_TRUE(AFiler::createDirectory(L"")) << "the current directory";
  EXPECT_EQ(reason(LogLevel::Info), "Cannot create directory " + path("f") + ": Not a directory");
}

TEST_F(Files, TellTheSizeOfRegularFilesAlone) {
  test::writeFile(path("f"), "12345");
  test::writeFile(path("empty"), "");
  std::filesystem::create_symlink("f", path("link"));
  std::filesystem::create_symlink("missing", path("dangling"));
  std::filesystem::create_directory(path("d"));
  ASSERT_EQ(::mkfifo(path("pipe").c_str(), 0600), 0);
  unsigned long long size = 99;
  EXPECT_TRUE(AFiler::getFileSize(wpath("f"), size));
  EXPECT_EQ(size, 5U);
  EXPECT_TRUE(AFiler::getFileSize(wpath("empty"), size));
  EXPECT_EQ(size, 0U);
  EXPECT_TRUE(AFiler::getFileSize(wpath("link"), size));
  EXPECT_EQ(size, 5U);
  for (const char* name : {"missing", "f/below", "dangling", "d", "pipe"}) {
    size = 99;
    EXPECT_FALSE(AFiler::getFileSize(wpath(name), size)) << name;
    EXPECT_EQ(size, 99U) << name;
  }
  EXPECT_TRUE(agent.log().empty());
  test::FaultyFileSystem files;
  files.failEvery(FileCall::Stat, EIO);
  EXPECT_FALSE(AFiler::getFileSize(wpath("f"), size));
  EXPECT_EQ(reason(), "Cannot determine the size of " + path("f") + ": Input/output error");
}

TEST_F(Files, AreTheSameWhenWritingOneReplacesTheOther) {
  test::writeFile(path("d/f"), "x");
  std::filesystem::create_symlink("d", path("e"));
  std::filesystem::create_symlink("f", path("d/link"));
  std::filesystem::create_symlink(path("d/link"), path("chain"));
  std::filesystem::create_symlink("d/new", path("dangling"));
  for (const char* name : {"d/f", "e/f", "d/link", "e/link", "chain", "d/../e/./f"}) {
    EXPECT_TRUE(AFiler::isSameFile(wpath(name), wpath("d/f"))) << name;
    EXPECT_TRUE(AFiler::isSameFile(wpath("d/f"), wpath(name))) << name;
    EXPECT_FALSE(AFiler::isSameFile(wpath(name), wpath("d/g"))) << name;
  }
  EXPECT_TRUE(AFiler::isSameFile(wpath("dangling"), wpath("e/new"))) << "neither is there";
  EXPECT_TRUE(agent.log().empty());
}

// A file system on which "F" is another way to write "f".
class IgnoringCase : public test::ForwardingFileSystem {
 public:
  int stat(int directory, const std::string& path, bool follow, struct stat& out) override {
    return ForwardingFileSystem::stat(directory, path == "F" ? "f" : path, follow, out);
  }
  int readLink(int directory, const std::string& path, std::string& target,
               struct stat& link) override {
    return ForwardingFileSystem::readLink(directory, path == "F" ? "f" : path, target, link);
  }
};

TEST_F(Files, AreTheSameWhenOneNameIsWrittenInTwoWays) {
  test::writeFile(path("d/f"), "x");
  std::filesystem::create_symlink("d/F", path("link"));
  EXPECT_FALSE(AFiler::isSameFile(wpath("link"), wpath("d/f"))) << "F is not there";
  const IgnoringCase files;
  EXPECT_TRUE(AFiler::isSameFile(wpath("d/F"), wpath("d/f")));
  EXPECT_TRUE(AFiler::isSameFile(wpath("link"), wpath("d/f")));
  EXPECT_TRUE(AFiler::isSameFile(wpath("d/f"), wpath("link")));
}

TEST_F(Files, AreNotTheSameWhenTheyOnlyShareTheirNameOrTheirBytes) {
  test::writeFile(path("d/f"), "x");
  test::writeFile(path("e/f"), "x");
  std::filesystem::create_hard_link(path("d/f"), path("d/other"));
  EXPECT_FALSE(AFiler::isSameFile(wpath("d/f"), wpath("e/f")));
  EXPECT_FALSE(AFiler::isSameFile(wpath("d/f"), wpath("d/other")));
  EXPECT_FALSE(AFiler::isSameFile(wpath("d/f"), wpath("missing/f")));
  EXPECT_FALSE(AFiler::isSameFile(wpath("d/f/below"), wpath("d/f")));
  EXPECT_TRUE(agent.log().empty());
}

// Two file systems with the same inode numbers. `elsewhere` is on the second.
class TwoFileSystems : public test::FaultyFileSystem {
 public:
  explicit TwoFileSystems(const std::string& elsewhere) {
    EXPECT_EQ(::stat(elsewhere.c_str(), &m_elsewhere), 0);
  }
  int statOpen(int fd, struct stat& out) override {
    return numbered(FaultyFileSystem::statOpen(fd, out), out);
  }
  int stat(int directory, const std::string& path, bool follow, struct stat& out) override {
    return numbered(FaultyFileSystem::stat(directory, path, follow, out), out);
  }

 private:
  int numbered(int result, struct stat& out) const {
    if (result < 0) return result;
    if (out.st_ino == m_elsewhere.st_ino) ++out.st_dev;
    out.st_ino = 1;
    return result;
  }

  struct stat m_elsewhere {};
};

TEST_F(Files, AreNotTheSameOnTwoFileSystems) {
  test::writeFile(path("d/f"), "x");
  test::writeFile(path("d/mounted"), "x");
  test::writeFile(path("e/f"), "x");
  {
    const TwoFileSystems files(path("e"));
    EXPECT_FALSE(AFiler::isSameFile(wpath("d/f"), wpath("e/f")));
    EXPECT_TRUE(AFiler::isSameFile(wpath("d/f"), wpath("d/mounted")))
        << "both files have the same inode number";
  }
  const TwoFileSystems files(path("d/mounted"));
  EXPECT_FALSE(AFiler::isSameFile(wpath("d/f"), wpath("d/mounted")));
}

TEST_F(Files, CountAsTheSameWhenThatCannotBeTold) {
  test::writeFile(path("f"), "x");
  std::filesystem::create_symlink("loop", path("loop"));
  EXPECT_TRUE(AFiler::isSameFile(wpath("loop"), wpath("f")));
  EXPECT_THAT(reason(),
              HasSubstr("Cannot determine what would be replaced by a write to " + path("loop")));
  EXPECT_TRUE(AFiler::isSameFile(wpath("f"), wpath("loop")));
  agent.clearLog();
  std::size_t unknown = 0;
  for (std::size_t n = 0;; ++n) {
    test::FaultyFileSystem files;
    files.failCall(n, EIO);
    const bool same = AFiler::isSameFile(wpath("f"), wpath("g"));
    if (files.failed().empty()) break;
    EXPECT_EQ(same, files.failed()[0] != FileCall::Close) << files.failed()[0];
    unknown += same;
  }
  EXPECT_GT(unknown, 4U);
}

struct Answer {
  bool answered;
  bool exists;
  bool accessible;
  bool operator==(const Answer& other) const {
    return answered == other.answered && exists == other.exists && accessible == other.accessible;
  }
};

std::ostream& operator<<(std::ostream& out, const Answer& answer) {
  return out << answer.answered << answer.exists << answer.accessible;
}

constexpr Answer c_granted{true, true, true};
constexpr Answer c_denied{true, true, false};
constexpr Answer c_missing{true, false, false};
constexpr Answer c_unknown{false, false, false};

Answer ask(const AString& file, AFiler::AFileAccess access) {
  Answer answer{false, true, true};
  answer.answered = AFiler::getFileAccessibility(file, access, answer.exists, answer.accessible);
  return answer;
}

TEST_F(Files, GrantAccess) {
  test::writeFile(path("f"), "x");
  EXPECT_EQ(ask(wpath("f"), AFiler::accessExist), c_granted);
  EXPECT_EQ(ask(wpath("f"), AFiler::accessRead), c_granted);
  EXPECT_EQ(ask(wpath("f"), AFiler::accessWrite), c_granted);
}

TEST_F(Files, GrantNoAccessToWhatIsNotThere) {
  test::writeFile(path("f"), "x");
  std::filesystem::create_symlink("missing", path("dangling"));
  for (const char* name : {"missing", "missing/below", "f/below", "dangling"}) {
    EXPECT_EQ(ask(wpath(name), AFiler::accessExist), c_missing) << name;
    EXPECT_EQ(ask(wpath(name), AFiler::accessRead), c_missing) << name;
    EXPECT_EQ(ask(wpath(name), AFiler::accessWrite), c_missing) << name;
  }
  EXPECT_TRUE(agent.log().empty());
}

TEST_F(Files, DenyAccess) {
  test::writeFile(path("f"), "x");
  test::FaultyFileSystem files;
  for (const int error : {EACCES, EPERM, EROFS}) {
    files.failEvery(FileCall::Access, error);
    EXPECT_EQ(ask(wpath("f"), AFiler::accessExist), c_granted);
    EXPECT_EQ(ask(wpath("f"), AFiler::accessRead), c_denied);
    EXPECT_EQ(ask(wpath("f"), AFiler::accessWrite), c_denied);
  }
  EXPECT_TRUE(agent.log().empty());
}

// Some systems keep a process from opening a directory with the error that a refused link gives.
TEST_F(Files, AreNotThereOnlyBecauseTheirDirectoryCannotBeOpened) {
  test::writeFile(path("f"), "x");
  test::FaultyFileSystem files;
  files.failEvery(FileCall::Open, EPERM);
  EXPECT_EQ(ask(wpath("f"), AFiler::accessWrite), c_granted);
  EXPECT_EQ(ask(wpath("missing"), AFiler::accessWrite), c_missing);
}

TEST_F(Files, AskForTheKindOfAccessThatIsMeant) {
  test::writeFile(path("f"), "x", 0444);
  const bool mayWrite = ::faccessat(AT_FDCWD, path("f").c_str(), W_OK, AT_EACCESS) == 0;
  EXPECT_EQ(ask(wpath("f"), AFiler::accessRead), c_granted);
  EXPECT_EQ(ask(wpath("f"), AFiler::accessWrite), mayWrite ? c_granted : c_denied);
}

TEST_F(Files, TellWhenAccessCannotBeTold) {
  test::writeFile(path("f"), "x");
  std::filesystem::create_symlink("loop", path("loop"));
  EXPECT_EQ(ask(wpath("loop"), AFiler::accessExist), c_unknown);
  EXPECT_THAT(reason(), HasSubstr("Cannot determine the access to " + path("loop")));
  test::FaultyFileSystem files;
  files.failEvery(FileCall::Access, EIO);
  EXPECT_EQ(ask(wpath("f"), AFiler::accessRead), c_unknown);
  EXPECT_THAT(reason(), HasSubstr(path("f")));
  files.failEvery(FileCall::Stat, EACCES);
  EXPECT_EQ(ask(wpath("f"), AFiler::accessRead), c_unknown);
}

}  // namespace
