#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <fstream>

#include "tests/host_fs/file_fixture.h"
#include "tests/support/faulty_file_system.h"

namespace {

constexpr std::size_t c_limit = 1000;

class ReadRegularFile : public test::FileTest {
 protected:
  std::string bytes = "untouched";
  int read(const std::string& name, std::size_t limit = c_limit) {
    return host::readRegularFile(path(name), limit, bytes);
  }
};

TEST_F(ReadRegularFile, GivesEveryByte) {
  const std::string content("a\0b\r\n\xFF\xFE", 7);
  test::writeFile(path("f"), content);
  EXPECT_EQ(read("f"), 0);
  EXPECT_EQ(bytes, content);
}

TEST_F(ReadRegularFile, GivesNothingForAnEmptyFile) {
  test::writeFile(path("f"), "");
  EXPECT_EQ(read("f"), 0);
  EXPECT_EQ(bytes, "");
}

TEST_F(ReadRegularFile, ReadsThroughALink) {
  test::writeFile(path("f"), "content");
  std::filesystem::create_symlink("f", path("link"));
  EXPECT_EQ(read("link"), 0);
  EXPECT_EQ(bytes, "content");
}

TEST_F(ReadRegularFile, TakesAFileAtTheLimitAndRefusesOneJustOverIt) {
  test::writeFile(path("at"), std::string(c_limit, 'x'));
  test::writeFile(path("over"), std::string(c_limit + 1, 'x'));
  EXPECT_EQ(read("over"), EFBIG);
  EXPECT_EQ(bytes, "untouched");
  EXPECT_EQ(read("at"), 0);
  EXPECT_EQ(bytes.size(), c_limit);
}

TEST_F(ReadRegularFile, RefusesWhatIsNoRegularFileWithoutWaiting) {
  ASSERT_EQ(::mkfifo(path("pipe").c_str(), 0600), 0);
  std::filesystem::create_directory(path("directory"));
  EXPECT_EQ(read("pipe"), EINVAL);
  EXPECT_EQ(read("directory"), EISDIR);
  EXPECT_EQ(host::readRegularFile("/dev/null", c_limit, bytes), EINVAL);
  EXPECT_EQ(bytes, "untouched");
}

TEST_F(ReadRegularFile, RefusesASocket) {
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  ASSERT_LT(path("socket").size(), sizeof address.sun_path);
  std::strcpy(address.sun_path, path("socket").c_str());
  const int fd = ::socket(AF_UNIX, SOCK_STREAM, 0);
  ASSERT_EQ(::bind(fd, reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
  EXPECT_EQ(read("socket"), EINVAL);
  ::close(fd);
}

TEST_F(ReadRegularFile, TellsWhyAFileCannotBeOpened) {
  test::writeFile(path("f"), "x");
  std::filesystem::create_symlink("loop", path("loop"));
  EXPECT_EQ(read("missing"), ENOENT);
  EXPECT_EQ(read("f/below"), ENOTDIR);
  EXPECT_EQ(read("loop"), ELOOP);
  EXPECT_EQ(host::readRegularFile("", c_limit, bytes), ENOENT);
  EXPECT_EQ(host::readRegularFile(path("f") + std::string(1, '\0'), c_limit, bytes), EINVAL);
  EXPECT_EQ(bytes, "untouched");
}

TEST_F(ReadRegularFile, PutsShortReadsTogether) {
  const std::string content = "one two three four five";
  test::writeFile(path("f"), content);
  test::FaultyFileSystem files;
  files.limitTransfers(3);
  EXPECT_EQ(read("f"), 0);
  EXPECT_EQ(bytes, content);
}

TEST_F(ReadRegularFile, GivesAllOfAFileThatGrowsMeanwhile) {
  test::writeFile(path("f"), "begin,");
  test::FaultyFileSystem files;
  bool grown = false;
  files.beforeEach([&](test::FileCall call) {
    if (call != test::FileCall::Read || grown) return;
    grown = true;
    std::ofstream(path("f"), std::ios::app) << std::string(300, 'y');
  });
  EXPECT_EQ(read("f"), 0);
  EXPECT_TRUE(grown);
  EXPECT_EQ(bytes, "begin," + std::string(300, 'y'));
}

TEST_F(ReadRegularFile, RefusesAFileThatGrowsOverTheLimitMeanwhile) {
  test::writeFile(path("f"), "begin,");
  test::FaultyFileSystem files;
  files.beforeEach([&](test::FileCall call) {
    if (call == test::FileCall::Read) {
      std::ofstream(path("f"), std::ios::app) << std::string(c_limit, 'y');
    }
  });
  EXPECT_EQ(read("f"), EFBIG);
  EXPECT_EQ(bytes, "untouched");
}

TEST_F(ReadRegularFile, ReportsEachFailureAndLeavesNothingOpen) {
  test::writeFile(path("f"), "content");
  const auto descriptors = openDescriptors();
  test::FaultyFileSystem files;
  ASSERT_EQ(read("f"), 0);
  const std::vector<test::FileCall> calls = files.calls();
  for (std::size_t n = 0; n < calls.size(); ++n) {
    bytes = "untouched";
    files.failCall(files.calls().size() + n, EIO);
    const bool isLast = calls[n] == test::FileCall::Close;  // the bytes are there by then
    EXPECT_EQ(read("f"), isLast ? 0 : EIO) << calls[n];
    EXPECT_EQ(bytes, isLast ? "content" : "untouched") << calls[n];
  }
  EXPECT_EQ(files.failed(), calls);
  EXPECT_EQ(openDescriptors(), descriptors);
}

}  // namespace
