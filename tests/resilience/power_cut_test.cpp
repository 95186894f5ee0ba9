#include "tests/resilience/power_cut.h"

#include <fcntl.h>
#include <gmock/gmock.h>

#include "tests/resilience/disk_model.h"
#include "tests/resilience/workshop.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;

TEST(APowerCut, LeavesEachFileWhollyOldOrWhollyNewAndWhatWasDoneStays) {
  const test::PowerCutFigures figures = test::cutPower({1000, 16, 50});
  EXPECT_THAT(figures.faults.lines(), IsEmpty());
  EXPECT_GT(figures.states, 500u);
  EXPECT_GT(figures.distinct, 200u);
  EXPECT_GT(figures.between, 100u);
}

// The model must find the faults of a writer that does not sync.
class TheModelOfTheDisk : public testing::Test {
 protected:
  TheModelOfTheDisk() { test::writeFile(dir.file("f"), "old"); }

  test::DiskModel::Files cut(test::RecordingFileSystem& files, bool spared) {
    for (const test::RecordedCall& call : files.calls()) model().apply(call);
    files.forget();
    return model().afterPowerCut([&](std::size_t) { return spared; });
  }
  test::DiskModel& model() {
    if (!m_model) m_model = std::make_unique<test::DiskModel>(std::vector<std::string>{dir.path()});
    return *m_model;
  }

  test::TempDir dir;

 private:
  std::unique_ptr<test::DiskModel> m_model;
};

TEST_F(TheModelOfTheDisk, LosesTheBytesOfAFileThatIsRenamedUnsynced) {
  model();
  test::RecordingFileSystem files;
  const int directory = files.open(AT_FDCWD, dir.path(), O_RDONLY | O_DIRECTORY, 0);
  const int fd = files.open(directory, "t", O_WRONLY | O_CREAT | O_EXCL, 0600);
  files.write(fd, "new", 3);
  files.rename(directory, "t", "f");
  files.sync(directory);
  EXPECT_THAT(cut(files, false), ElementsAre(Pair(dir.file("f"), "")));
  EXPECT_THAT(cut(files, true), ElementsAre(Pair(dir.file("f"), "new")));
  files.close(fd);
  files.close(directory);
}

TEST_F(TheModelOfTheDisk, LosesTheNameOfAFileWhoseDirectoryIsNotSynced) {
  model();
  test::RecordingFileSystem files;
  const int directory = files.open(AT_FDCWD, dir.path(), O_RDONLY | O_DIRECTORY, 0);
  const int fd = files.open(directory, "t", O_WRONLY | O_CREAT | O_EXCL, 0600);
  files.write(fd, "new", 3);
  files.sync(fd);
  files.rename(directory, "t", "f");
  EXPECT_THAT(cut(files, false), ElementsAre(Pair(dir.file("f"), "old")));
  files.sync(directory);
  EXPECT_THAT(cut(files, false), ElementsAre(Pair(dir.file("f"), "new")));
  files.close(fd);
  files.close(directory);
}

TEST_F(TheModelOfTheDisk, KeepsTheBytesOfAFileThatIsSyncedThroughAnotherDescriptor) {
  model();
  test::RecordingFileSystem files;
  const int directory = files.open(AT_FDCWD, dir.path(), O_RDONLY | O_DIRECTORY, 0);
  const int writer = files.open(directory, "g", O_WRONLY | O_CREAT | O_EXCL, 0600);
  files.write(writer, "new", 3);
  files.close(writer);
  files.sync(directory);
  EXPECT_THAT(cut(files, false), ElementsAre(Pair(dir.file("f"), "old"), Pair(dir.file("g"), "")));
  const int reader = files.open(directory, "g", O_RDONLY, 0);
  files.sync(reader);
  EXPECT_THAT(cut(files, false),
              ElementsAre(Pair(dir.file("f"), "old"), Pair(dir.file("g"), "new")));
  files.close(reader);
  files.close(directory);
}

TEST_F(TheModelOfTheDisk, LosesWhatLiesInANewDirectoryThatItsParentDoesNotKeep) {
  model();
  test::RecordingFileSystem files;
  files.makeDirectory(AT_FDCWD, dir.file("d"), 0700);
  const int directory = files.open(AT_FDCWD, dir.file("d"), O_RDONLY | O_DIRECTORY, 0);
  const int fd = files.open(directory, "g", O_WRONLY | O_CREAT | O_EXCL, 0600);
  files.sync(fd);
  files.sync(directory);
  EXPECT_THAT(cut(files, false), ElementsAre(Pair(dir.file("f"), "old")));
  files.close(fd);
  files.close(directory);
}

}  // namespace
