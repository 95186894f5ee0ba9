// Compiles host/fs/read_link.cpp as for a system without O_PATH, such as macOS. A test may replace
// the link between two calls.
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <functional>
#include <string>

#include "tests/host_fs/file_fixture.h"

namespace {

// Called before and after each status call on the link, with 0, 1, 2 and so on.
std::function<void(int moment)> g_atMoment;
int g_moment = 0;

void passMoment() {
  const int error = errno;
  if (g_atMoment) g_atMoment(g_moment);
  ++g_moment;
  errno = error;
}

}  // namespace

static int observedFstatat(int directory, const char* path, struct stat* out, int flags) {
  passMoment();
  const int result = ::fstatat(directory, path, out, flags);
  passMoment();
  return result;
}

#undef O_PATH
#define fstatat observedFstatat
#define readOneLink readLinkWithoutDescriptor
#include "host/fs/read_link.cpp"
#undef fstatat
#undef readOneLink

namespace {

class LinkWithoutDescriptor : public test::FileTest {
 protected:
  void SetUp() override {
    g_moment = 0;
    g_atMoment = nullptr;
  }
  void TearDown() override { g_atMoment = nullptr; }

  int read(const std::string& name) {
    return host::readLinkWithoutDescriptor(AT_FDCWD, path(name).c_str(), target, link);
  }

  // Replaces the link by another one, and leaves the first one with another name, so that its inode
  // number is not used again.
  void replaceLink(const std::string& newTarget) {
    const std::string aside = path("aside" + std::to_string(++m_replaced));
    std::filesystem::rename(path("link"), aside);
    std::filesystem::create_symlink(newTarget, path("link"));
  }

  std::string target;
  struct stat link {};

 private:
  int m_replaced = 0;
};

TEST_F(LinkWithoutDescriptor, TellsTheTargetAndTheStatus) {
  for (const std::size_t length : {1U, 255U, 256U, 257U, 1000U}) {
    const std::string name = "link" + std::to_string(length);
    std::filesystem::create_symlink(std::string(length, 'x'), path(name));
    EXPECT_EQ(read(name), 0);
    EXPECT_EQ(target, std::string(length, 'x'));
    struct stat expected {};
    ASSERT_EQ(::lstat(path(name).c_str(), &expected), 0);
    EXPECT_EQ(link.st_ino, expected.st_ino);
    EXPECT_EQ(link.st_uid, ::geteuid());
  }
}

TEST_F(LinkWithoutDescriptor, RefusesWhatIsNotALink) {
  test::writeFile(path("f"), "x");
  EXPECT_EQ(read("f"), -EINVAL);
  EXPECT_EQ(read(""), -EINVAL) << "a directory";
  EXPECT_EQ(read("missing"), -ENOENT);
}

// Otherwise the owner of one link would decide whether the target of another one is followed.
TEST_F(LinkWithoutDescriptor, GivesTheStatusAndTheTargetOfTheSameLink) {
  std::filesystem::create_symlink("first", path("link"));
  g_atMoment = [this](int moment) {
    if (moment == 1) replaceLink("other");  // after the first status
    if (moment == 6) replaceLink("third");  // after the second target
  };
  EXPECT_EQ(read("link"), 0);
  EXPECT_EQ(target, "third");
  struct stat last {};
  ASSERT_EQ(::lstat(path("link").c_str(), &last), 0);
  EXPECT_EQ(link.st_ino, last.st_ino);
  EXPECT_EQ(g_moment, 2 * 6) << "two calls in each of three rounds";
}

TEST_F(LinkWithoutDescriptor, FailsWhenTheLinkDisappears) {
  for (const int when : {0, 1, 2}) {
    std::filesystem::create_symlink("first", path("link"));
    g_moment = 0;
    g_atMoment = [this, when](int moment) {
      if (moment == when) std::filesystem::remove(path("link"));
    };
    EXPECT_EQ(read("link"), -ENOENT) << when;
  }
}

TEST_F(LinkWithoutDescriptor, FailsWhenTheLinkBecomesAFile) {
  for (const int when : {0, 1, 2}) {
    std::filesystem::create_symlink("first", path("link"));
    g_moment = 0;
    g_atMoment = [this, when](int moment) {
      if (moment != when) return;
      std::filesystem::remove(path("link"));
      test::writeFile(path("link"), "x");
    };
    EXPECT_EQ(read("link"), -EINVAL) << when;
    std::filesystem::remove(path("link"));
  }
}

}  // namespace
