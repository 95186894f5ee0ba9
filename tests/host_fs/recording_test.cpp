#include <fcntl.h>

#include <cerrno>

#include "tests/host_fs/file_fixture.h"
#include "tests/support/faulty_file_system.h"
#include "tests/support/recording_file_system.h"

namespace {

using test::FileCall;
using test::RecordedCall;

class Recording : public test::FileTest {};

TEST_F(Recording, KeepsEveryCallInOrderWithItsPathAndBytes) {
  test::RecordingFileSystem files;
  std::string read;
  const int directory = files.open(AT_FDCWD, dir.path(), O_RDONLY | O_DIRECTORY, 0);
  const int file = files.open(directory, "a", O_RDWR | O_CREAT, 0640);
  files.write(file, "text", 4);
  files.rename(directory, "a", "b");
  files.sync(file);
  files.close(file);
  files.unlink(directory, "missing");
  const std::vector<RecordedCall> calls = files.calls();
  files.close(directory);

  ASSERT_EQ(calls.size(), 7U);
  EXPECT_EQ(calls[0].call, FileCall::Open);
  EXPECT_EQ(calls[0].path, dir.path());
  EXPECT_EQ(calls[1].path, path("a"));
  EXPECT_EQ(calls[1].flags, O_RDWR | O_CREAT);
  EXPECT_EQ(calls[1].mode, 0640U);
  EXPECT_EQ(calls[2].call, FileCall::Write);
  EXPECT_EQ(calls[2].data, "text");
  EXPECT_EQ(calls[2].path, path("a"));
  EXPECT_EQ(calls[3].call, FileCall::Rename);
  EXPECT_EQ(calls[3].path, path("a"));
  EXPECT_EQ(calls[3].newPath, path("b"));
  EXPECT_EQ(calls[4].call, FileCall::Sync);
  EXPECT_EQ(calls[4].path, path("b"));
  EXPECT_EQ(calls[5].call, FileCall::Close);
  EXPECT_EQ(calls[6].result, -ENOENT);
  for (const int i : {1, 2, 4, 5}) EXPECT_EQ(calls[i].file, 2) << i;
}

TEST_F(Recording, TellsApartFilesThatGotTheSameDescriptor) {
  test::RecordingFileSystem files;
  const int first = files.open(AT_FDCWD, path("a"), O_WRONLY | O_CREAT, 0600);
  files.close(first);
  const int second = files.open(AT_FDCWD, path("b"), O_WRONLY | O_CREAT, 0600);
  files.close(second);
  ASSERT_EQ(first, second);
  EXPECT_EQ(files.calls()[1].file, 1);
  EXPECT_EQ(files.calls()[3].file, 2);
  EXPECT_EQ(files.calls()[3].path, path("b"));
}

TEST_F(Recording, KeepsWhatWasReallyWrittenBehindIt) {
  test::FaultyFileSystem faulty;
  faulty.limitTransfers(3);
  test::RecordingFileSystem files(faulty);
  ASSERT_EQ(replace(path("f"), "12345"), 0);
  std::vector<std::string> written;
  for (const RecordedCall& call : files.calls()) {
    if (call.call == FileCall::Write) written.push_back(call.data);
  }
  EXPECT_THAT(written, testing::ElementsAre("123", "45"));
}

}  // namespace
