#include <fcntl.h>
#include <sys/stat.h>

#include <cerrno>

#include "tests/host_fs/file_fixture.h"
#include "tests/support/faulty_file_system.h"
#include "tests/support/forwarding_file_system.h"
#include "tests/support/memory_file_system.h"
#include "tests/support/recording_file_system.h"

namespace {

using test::FileCall;
using testing::ElementsAre;

class OddPlaces : public test::FileTest {};

TEST_F(OddPlaces, ASocketIsNoRegularFile) {
  test::writeFile(path("f"), "x");
  for (const int error : {ENXIO, EOPNOTSUPP}) {  // the errors of systems when a socket is opened
    test::FaultyFileSystem files;
    files.failEvery(FileCall::Open, error);
    std::string bytes = "old";
    EXPECT_EQ(host::readRegularFile(path("f"), 10, bytes), EINVAL);
    EXPECT_EQ(bytes, "old");
  }
}

TEST_F(OddPlaces, AFileOfThatLengthAndEndButAnotherBeginningIsNotTakenForALeftOver) {
  const std::string foreign = "_sitehlp-0123456789abcdef.tmp";
  const std::string own = ".sitehlp-0123456789abcdef.tmp";
  ASSERT_EQ(foreign.size(), own.size());
  test::writeFile(path(foreign), "x");
  test::writeFile(path(own), "x");
  ASSERT_EQ(replace(path("f"), "new"), 0);
  EXPECT_THAT(names(), ElementsAre(foreign, "f"));
}

// The name of the first new file already exists.
class TakenName : public test::ForwardingFileSystem {
 public:
  int open(int directory, const std::string& name, int flags, mode_t mode) override {
    if ((flags & O_EXCL) == 0) return ForwardingFileSystem::open(directory, name, flags, mode);
    names.insert(name);
    return names.size() == 1 ? -EEXIST : ForwardingFileSystem::open(directory, name, flags, mode);
  }
  std::set<std::string> names;
};

TEST_F(OddPlaces, AWriterTakesAnotherNameWhenItsFirstOneIsTaken) {
  TakenName files;
  EXPECT_EQ(replace(path("f"), "new"), 0);
  EXPECT_EQ(files.names.size(), 2U) << "both names differ";
  EXPECT_EQ(test::readFile(path("f")), "new");
  EXPECT_THAT(names(), ElementsAre("f"));
}

TEST_F(OddPlaces, ADirectoryDirectlyBelowTheRootIsMade) {
  test::MemoryFileSystem files;
  EXPECT_EQ(host::makeDirectories("/top/below", 0700), 0);
  struct stat info {};
  EXPECT_EQ(files.stat(AT_FDCWD, "/top/below", true, info), 0);
  EXPECT_TRUE(S_ISDIR(info.st_mode));
}

// A file found by name belongs to another group, and chown succeeds.
class ForeignGroup : public test::RecordingFileSystem {
 public:
  int stat(int directory, const std::string& name, bool follow, struct stat& out) override {
    const int found = RecordingFileSystem::stat(directory, name, follow, out);
    group = ++out.st_gid;
    owner = out.st_uid;
    return found;
  }
  int chown(int, uid_t newOwner, gid_t newGroup) override {
    EXPECT_EQ(newOwner, owner);
    EXPECT_EQ(newGroup, group);
    ++given;
    return result;
  }
  uid_t owner = 0;
  gid_t group = 0;
  int given = 0;
  int result = 0;
};

TEST_F(OddPlaces, TheGroupOfTheOldFileIsTakenOverWithItsOwner) {
  test::writeFile(path("f"), "old", 0640);
  ForeignGroup files;
  EXPECT_EQ(replace(path("f"), "new"), 0);
  EXPECT_EQ(files.given, 1);
  EXPECT_EQ(test::readFile(path("f")), "new");
  files.result = -EPERM;
  EXPECT_EQ(replace(path("f"), "newer"), EPERM);
  EXPECT_EQ(test::readFile(path("f")), "new");
}

}  // namespace
