#include <cerrno>

#include "tests/host_fs/file_fixture.h"
#include "tests/support/faulty_file_system.h"
#include "tests/support/recording_file_system.h"

namespace {

using test::FileCall;

class MakeDirectories : public test::FileTest {
 protected:
  int make(const std::string& name) const { return host::makeDirectories(path(name), 0700); }
};

TEST_F(MakeDirectories, MakesWhatIsMissing) {
  EXPECT_EQ(make("a/b/c"), 0);
  EXPECT_TRUE(std::filesystem::is_directory(path("a/b/c")));
  EXPECT_EQ(modeOf(path("a")), 0700U);
  EXPECT_EQ(modeOf(path("a/b/c")), 0700U);
}

TEST_F(MakeDirectories, IsContentWithWhatIsThere) {
  std::filesystem::create_directory(path("real"));
  std::filesystem::create_symlink("real", path("link"));
  EXPECT_EQ(make("real"), 0);
  EXPECT_EQ(make("link"), 0);
  EXPECT_EQ(make("link/sub//deeper/"), 0);
  EXPECT_TRUE(std::filesystem::is_directory(path("real/sub/deeper")));
  EXPECT_EQ(host::makeDirectories("/", 0700), 0);
  EXPECT_EQ(host::makeDirectories(".", 0700), 0);
}

TEST_F(MakeDirectories, CountsARelativePathFromTheCurrentDirectory) {
  const std::string before = std::filesystem::current_path();
  std::filesystem::current_path(dir.path());
  EXPECT_EQ(host::makeDirectories("x/y", 0700), 0);
  std::filesystem::current_path(before);
  EXPECT_TRUE(std::filesystem::is_directory(path("x/y")));
}

TEST_F(MakeDirectories, TellsWhatIsInTheWay) {
  test::writeFile(path("f"), "x");
  std::filesystem::create_symlink("missing", path("dangling"));
  EXPECT_EQ(make("f"), ENOTDIR);
  EXPECT_EQ(make("f/below"), ENOTDIR);
  EXPECT_EQ(make("dangling"), ENOENT);
  EXPECT_EQ(host::makeDirectories("", 0700), ENOENT);
  EXPECT_EQ(make(std::string("a\0b", 3)), EINVAL);
}

TEST_F(MakeDirectories, AcceptsThatAnotherProcessIsFaster) {
  test::FaultyFileSystem files;
  files.beforeEach([&](FileCall call) {
    if (call == FileCall::MakeDirectory) std::filesystem::create_directory(path("d"));
  });
  EXPECT_EQ(make("d"), 0);
}

TEST_F(MakeDirectories, ReportsEachFailure) {
  std::size_t made = 0;
  std::size_t synced = 0;
  for (std::size_t n = 0;; ++n) {
    test::FaultyFileSystem files;
    files.failCall(n, EIO);
    const int error = make("p" + std::to_string(n) + "/q");
    if (files.failed().empty()) break;
    EXPECT_EQ(error, files.failed()[0] == FileCall::Close ? 0 : EIO) << files.failed()[0];
    made += files.failed()[0] == FileCall::MakeDirectory;
    synced += files.failed()[0] == FileCall::Sync;
  }
  EXPECT_EQ(made, 2U);
  EXPECT_EQ(synced, 2U);
}

TEST_F(MakeDirectories, MakesEachNameDurable) {
  std::vector<std::string> steps;
  test::RecordingFileSystem files;
  ASSERT_EQ(make("a/b"), 0);
  for (const test::RecordedCall& call : files.calls()) {
    if (call.call == FileCall::MakeDirectory) steps.push_back("make " + call.path);
    if (call.call == FileCall::Sync) steps.push_back("sync " + call.path);
  }
  EXPECT_THAT(steps, testing::ElementsAre("make " + path("a"), "sync " + dir.path(),
                                          "make " + path("a/b"), "sync " + path("a")));
}

TEST_F(MakeDirectories, MakesARemovalDurable) {
  test::writeFile(path("f"), "x");
  test::RecordingFileSystem files;
  EXPECT_EQ(host::removeFile(path("f")), 0);
  EXPECT_FALSE(test::exists(path("f")));
  std::vector<std::string> steps;
  for (const test::RecordedCall& call : files.calls()) {
    if (call.call == FileCall::Unlink) steps.push_back("unlink " + call.path);
    if (call.call == FileCall::Sync) steps.push_back("sync " + call.path);
  }
  EXPECT_THAT(steps, testing::ElementsAre("unlink " + path("f"), "sync " + dir.path()));
  EXPECT_EQ(host::removeFile(path("f")), 0) << "there is none";
  EXPECT_EQ(host::removeFile(path("f/below")), 0);
  EXPECT_NE(host::removeFile(dir.path()), 0);
}

}  // namespace
