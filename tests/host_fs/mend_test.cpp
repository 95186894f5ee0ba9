#include "host/fs/mend.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <cerrno>
#include <iostream>

#include "host/fs/descriptor.h"
#include "tests/host_fs/file_fixture.h"
#include "tests/support/faulty_file_system.h"

namespace {

using test::FileCall;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr uid_t c_user = 65534;
constexpr gid_t c_group = 65533;
constexpr std::size_t c_limit = 100;
const char* const c_left = ".sitehlp-0123456789abcdef.tmp";

class Mend : public test::FileTest {
 protected:
  Mend() {
    test::writeFile(path("f"), "text");
    EXPECT_EQ(::chmod(path("f").c_str(), 0666), 0);
  }

  // Returns whether a file can belong to another user here. Prints what is missing.
  static bool isRoot() {
    if (::geteuid() == 0) return true;
    std::cout << "Not run as root: no file can belong to another user.\n";
    return false;
  }

  int giveFile(const std::string& name, const std::string& expected) const {
    return host::giveFile(path(name), c_user, c_group, c_limit,
                          [&](const std::string& bytes) { return bytes == expected; });
  }

  static int failEach(const std::function<int()>& operation);

  uid_t ownerOf(const std::string& name) const {
    struct stat info {};
    EXPECT_EQ(::lstat(path(name).c_str(), &info), 0);
    return info.st_uid;
  }
};

TEST_F(Mend, RemovesOnlyTheGivenPermissions) {
  EXPECT_EQ(host::removePermissions(path("f"), 0026, ::geteuid()), 0);
  EXPECT_EQ(modeOf(path("f")), 0640U);
  ASSERT_EQ(::mkdir(path("d").c_str(), 0), 0);
  ASSERT_EQ(::chmod(path("d").c_str(), 0777), 0);
  EXPECT_EQ(host::removePermissions(path("d"), 0022, ::geteuid()), 0);
  EXPECT_EQ(modeOf(path("d")), 0755U);
}

TEST_F(Mend, ChangesNothingThatMayNotBeTheAgents) {
  ASSERT_EQ(::symlink("f", path("link").c_str()), 0);
  ASSERT_EQ(::mkfifo(path("pipe").c_str(), 0666), 0);
  EXPECT_EQ(host::removePermissions(path("link"), 0026, ::geteuid()), ELOOP);
  EXPECT_EQ(host::removePermissions(path("pipe"), 0026, ::geteuid()), EINVAL);
  EXPECT_EQ(host::removePermissions(path("none"), 0026, ::geteuid()), ENOENT);
  EXPECT_EQ(host::removePermissions(path("none/f"), 0026, ::geteuid()), ENOENT);
  ASSERT_EQ(::link(path("f").c_str(), path("second").c_str()), 0);
  EXPECT_EQ(host::removePermissions(path("f"), 0026, ::geteuid()), EMLINK);
  EXPECT_EQ(modeOf(path("f")), 0666U);
}

TEST_F(Mend, ChangesNoFileOfAThirdUser) {
  if (!isRoot()) return;
  ASSERT_EQ(::chown(path("f").c_str(), c_user, c_group), 0);
  EXPECT_EQ(host::removePermissions(path("f"), 0026, c_user - 1), EPERM);
  EXPECT_EQ(giveFile("f", "text"), 0) << "it already belongs to the user";
  EXPECT_EQ(host::giveFile(path("f"), c_user - 1, c_group, c_limit,
                           [](const std::string&) { return true; }),
            EPERM);
  EXPECT_EQ(ownerOf("f"), c_user);
}

TEST_F(Mend, GivesAFileOnlyWithTheExpectedContent) {
  if (!isRoot()) return;
  EXPECT_EQ(giveFile("f", "other"), EPERM);
  test::writeFile(path("large"), std::string(c_limit + 1, 'x'));
  EXPECT_EQ(giveFile("large", ""), EFBIG);
  ASSERT_EQ(::symlink("f", path("link").c_str()), 0);
  EXPECT_EQ(giveFile("link", "text"), ELOOP);
  ASSERT_EQ(::link(path("f").c_str(), path("second").c_str()), 0);
  EXPECT_EQ(giveFile("f", "text"), EMLINK);
  ASSERT_EQ(::unlink(path("second").c_str()), 0);
  EXPECT_EQ(ownerOf("f"), 0U);
  EXPECT_EQ(giveFile("f", "text"), 0);
  EXPECT_EQ(ownerOf("f"), c_user);
  ASSERT_EQ(::mkdir(path("d").c_str(), 0755), 0);
  EXPECT_EQ(giveFile("d", ""), EISDIR);
}

TEST_F(Mend, GivesADirectoryOnlyWithTheExpectedNames) {
  if (!isRoot()) return;
  ASSERT_EQ(::mkdir(path("d").c_str(), 0755), 0);
  test::writeFile(path("d/name"), "");
  const auto give = [this](const std::vector<std::string>& expected) {
    return host::giveDirectory(
        path("d"), c_user, c_group,
        [&](const std::vector<std::string>& names) { return names == expected; });
  };
  EXPECT_EQ(give({}), EPERM);
  ASSERT_EQ(::chmod(path("d").c_str(), 0777), 0);
  EXPECT_EQ(give({"name"}), EPERM) << "others may have put the names there";
  ASSERT_EQ(::chmod(path("d").c_str(), 0755), 0);
  EXPECT_EQ(ownerOf("d"), 0U);
  EXPECT_EQ(give({"name"}), 0);
  EXPECT_EQ(give({}), 0) << "it already belongs to the user";
  EXPECT_EQ(ownerOf("d"), c_user);
  EXPECT_EQ(ownerOf("d/name"), 0U);
}

TEST_F(Mend, FindsLeftOverFilesWithoutRemovingThem) {
  std::vector<std::string> found;
  EXPECT_EQ(host::findLeftOverTempFiles(dir.path(), found), 0);
  EXPECT_THAT(found, IsEmpty());
  test::writeFile(path(c_left), "left");
  const int living = ::open(path(c_left).c_str(), O_RDONLY | O_CLOEXEC);
  ASSERT_EQ(::flock(living, LOCK_EX), 0);
  EXPECT_EQ(host::findLeftOverTempFiles(dir.path(), found), 0);
  EXPECT_THAT(found, IsEmpty()) << "its writer lives";
  ::close(living);
  EXPECT_EQ(host::findLeftOverTempFiles(dir.path(), found), 0);
  EXPECT_THAT(found, ElementsAre(c_left));
  EXPECT_TRUE(test::exists(path(c_left)));
  EXPECT_EQ(host::removeLeftOverTempFilesIn(dir.path()), 0);
  EXPECT_FALSE(test::exists(path(c_left)));
  EXPECT_EQ(host::findLeftOverTempFiles(path("none"), found), ENOENT);
  EXPECT_EQ(host::removeLeftOverTempFilesIn(path("none")), ENOENT);
}

// Makes each call of an operation fail in turn, and returns the number of failures. The operation
// returns the errno, and no descriptor stays open.
int Mend::failEach(const std::function<int()>& operation) {
  const std::ptrdiff_t open = openDescriptors();
  for (std::size_t n = 0;; ++n) {
    test::FaultyFileSystem files;
    files.failCall(n, EIO);
    const int result = operation();
    const std::vector<FileCall> failed = files.failed();
    if (failed.empty()) return static_cast<int>(n);
    EXPECT_EQ(result, failed[0] == FileCall::Close ? 0 : EIO) << n;
    EXPECT_EQ(openDescriptors(), open);
  }
}

TEST_F(Mend, OpensADirectoryForReading) {
  test::writeFile(path("d/name"), "");
  const host::Descriptor opened(host::openDirectory(path("d")));
  ASSERT_EQ(opened.error(), 0);
  std::vector<std::string> names;
  EXPECT_EQ(host::fileSystem().list(opened.get(), names), 0);
  EXPECT_THAT(names, ElementsAre("name"));
  EXPECT_EQ(host::openDirectory(path("none")), -ENOENT);
  EXPECT_EQ(host::openDirectory(path("f")), -ENOTDIR);
}

TEST_F(Mend, ReportsEveryFailingCall) {
  EXPECT_GT(failEach([this] { return host::removePermissions(path("f"), 0, ::geteuid()); }), 3);
  if (!isRoot()) return;
  const auto give = [this] {
    EXPECT_EQ(::chown(path("f").c_str(), 0, 0), 0);
    return giveFile("f", "text");
  };
  EXPECT_GT(failEach(give), 4);
  ASSERT_EQ(::mkdir(path("d").c_str(), 0755), 0);
  const auto giveDirectory = [this] {
    EXPECT_EQ(::chown(path("d").c_str(), 0, 0), 0);
    return host::giveDirectory(path("d"), c_user, c_group,
                               [](const std::vector<std::string>&) { return true; });
  };
  EXPECT_GT(failEach(giveDirectory), 4);
}

}  // namespace
