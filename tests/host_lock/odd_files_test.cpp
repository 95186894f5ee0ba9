#include "tests/host_lock/lock_fixture.h"
#include "tests/support/faulty_file_system.h"

namespace {

using test::FileCall;

class OddLockFiles : public test::LockTest {};

TEST_F(OddLockFiles, WhoseDirectoryBecameAFileCannotBeHad) {
  ASSERT_TRUE(canWrite());
  std::filesystem::remove_all(locks());
  test::writeFile(locks(), "a file in place of the directory");
  EXPECT_FALSE(canWrite());
  const std::vector<std::wstring> errors = agent.texts(LogLevel::Error);
  ASSERT_EQ(errors.size(), 1U);
  EXPECT_NE(errors[0].find(test::wide(locks())), std::wstring::npos);
  std::filesystem::remove(locks());
  EXPECT_TRUE(canWrite());
}

// At the first call, reports that the lock file is on another device than the open file.
class OtherDevice : public test::FaultyFileSystem {
 public:
  int stat(int directory, const std::string& path, bool follow, struct stat& out) override {
    const int result = FaultyFileSystem::stat(directory, path, follow, out);
    if (asked++ == 0) ++out.st_dev;
    return result;
  }
  int asked = 0;
};

TEST_F(OddLockFiles, OfTheSameNumberOnAnotherDeviceAreOtherFiles) {
  ASSERT_TRUE(canWrite());
  OtherDevice files;
  EXPECT_TRUE(canWrite());
  EXPECT_GT(files.asked, 1);
  EXPECT_THAT(files.calls(), testing::Contains(FileCall::Open)) << "they were opened anew";
}

}  // namespace
