#include <cerrno>

#include "tests/host_fs/file_fixture.h"
#include "tests/support/faulty_file_system.h"
#include "tests/support/recording_file_system.h"

namespace {

using test::FileCall;
using testing::ElementsAre;
using testing::IsEmpty;

class ReplaceFileFault : public test::FileTest {
 protected:
  // After the rename the file has its new bytes, whatever fails later.
  static bool isAfterRename(const std::vector<FileCall>& calls, std::size_t number) {
    for (std::size_t i = 0; i < number; ++i) {
      if (calls[i] == FileCall::Rename) return true;
    }
    return false;
  }

  // A failure to close a directory of the path loses no data.
  static bool matters(FileCall call, bool renamed) {
    return renamed ? call == FileCall::Sync : call != FileCall::Close;
  }

  // Returns the calls of one replacement of an existing file.
  std::vector<FileCall> callsOfOneReplacement() {
    test::FaultyFileSystem files;
    EXPECT_EQ(replace(path("f"), "old"), 0);
    return files.calls();
  }
};

TEST_F(ReplaceFileFault, EachCallThatFailsLeavesTheOldBytesAndIsReported) {
  test::writeFile(path("f"), "old", 0640);
  const std::vector<FileCall> calls = callsOfOneReplacement();
  const auto descriptors = openDescriptors();
  std::size_t reported = 0;
  for (std::size_t n = 0; n < calls.size(); ++n) {
    SCOPED_TRACE(testing::Message() << "call " << n << ", " << calls[n]);
    test::writeFile(path("f"), "old", 0640);
    test::FaultyFileSystem files;
    files.failCall(n, EIO);
    const int error = replace(path("f"), "new");
    ASSERT_EQ(files.failed(), std::vector<FileCall>{calls[n]});
    const bool renamed = isAfterRename(calls, n);
    const bool fails = matters(calls[n], renamed);
    reported += error != 0;
    EXPECT_EQ(error, fails ? EIO : 0);
    EXPECT_EQ(test::readFile(path("f")), renamed || !fails ? "new" : "old");
    EXPECT_EQ(modeOf(path("f")), 0640U);
    EXPECT_THAT(names(), ElementsAre("f"));
  }
  EXPECT_EQ(openDescriptors(), descriptors);
  EXPECT_GE(reported, 10U);
}

TEST_F(ReplaceFileFault, EachCallThatFailsLeavesNoNewFile) {
  std::filesystem::create_directory(path("d"));
  for (std::size_t n = 0;; ++n) {
    test::FaultyFileSystem files;
    files.failCall(n, ENOSPC);
    const int error = replace(path("d/f"), "new");
    if (files.failed().empty()) break;
    const bool renamed = isAfterRename(files.calls(), n);
    const bool fails = matters(files.failed()[0], renamed);
    EXPECT_EQ(error != 0, fails) << files.failed()[0];
    if (renamed || !fails) {
      EXPECT_THAT(namesIn(path("d")), ElementsAre("f"));
      std::filesystem::remove(path("d/f"));
    } else {
      EXPECT_THAT(namesIn(path("d")), IsEmpty()) << files.failed()[0];
    }
  }
}

TEST_F(ReplaceFileFault, ADiskThatFailsForGoodLeavesTheOldBytes) {
  test::writeFile(path("f"), "old");
  const std::vector<FileCall> calls = callsOfOneReplacement();
  for (std::size_t n = 0; n < calls.size(); ++n) {
    test::writeFile(path("f"), "old");
    const auto descriptors = openDescriptors();
    {
      test::FaultyFileSystem files;
      files.failFrom(n, EIO);
      const int error = replace(path("f"), "new");
      const bool renamed = isAfterRename(calls, n);
      EXPECT_EQ(test::readFile(path("f")), renamed ? "new" : "old") << calls[n];
      EXPECT_TRUE(renamed || error == EIO) << calls[n];
    }
    EXPECT_EQ(openDescriptors(), descriptors) << calls[n];
  }
  EXPECT_EQ(replace(path("f"), "last"), 0);
  EXPECT_THAT(names(), ElementsAre("f")) << "what could not be removed then is removed now";
}

TEST_F(ReplaceFileFault, AFullDiskInTheMiddleOfTheBytesLeavesTheOldOnes) {
  test::writeFile(path("f"), "old");
  test::FaultyFileSystem files;
  files.limitTransfers(2);
  int writes = 0;
  files.beforeEach([&](FileCall call) {
    if (call == FileCall::Write && ++writes == 2) files.failEvery(FileCall::Write, ENOSPC);
  });
  EXPECT_EQ(replace(path("f"), "a new content"), ENOSPC);
  EXPECT_EQ(writes, 2);
  EXPECT_EQ(test::readFile(path("f")), "old");
  EXPECT_THAT(names(), ElementsAre("f"));
}

TEST_F(ReplaceFileFault, AWriteThatMovesNothingIsAFailure) {
  test::FaultyFileSystem files;
  files.limitTransfers(0);
  EXPECT_EQ(replace(path("f"), "new"), EIO);
  EXPECT_THAT(names(), IsEmpty());
}

TEST_F(ReplaceFileFault, TheBytesAreOnTheDiskBeforeTheNameAndTheNameBeforeTheEnd) {
  test::writeFile(path("f"), "old");
  std::vector<test::RecordedCall> kept;
  {
    test::RecordingFileSystem files;
    ASSERT_EQ(replace(path("f"), "new"), 0);
    kept = files.calls();
  }
  std::vector<std::string> steps;
  std::string temp;
  for (const test::RecordedCall& call : kept) {
    ASSERT_GE(call.result, call.call == FileCall::ReadLink ? -EINVAL : 0) << call;
    if (call.call == FileCall::Write) {
      temp = call.path;
      steps.push_back("write " + call.data);
    } else if (call.call == FileCall::Sync) {
      steps.push_back(call.path == temp ? "sync file" : "sync " + call.path);
    } else if (call.call == FileCall::Rename) {
      steps.push_back(call.path == temp ? "rename to " + call.newPath : "rename " + call.path);
    }
  }
  EXPECT_THAT(
      steps, ElementsAre("write new", "sync file", "rename to " + path("f"), "sync " + dir.path()));
}

}  // namespace
