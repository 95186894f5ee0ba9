#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <future>
#include <string>
#include <thread>

#include "sitehlp/common/process_state.h"
#include "tests/support/test_agent.h"

namespace {

bool tellTime() {
  std::tm local = {};
  return sitehlp::toLocalTime(0, local);
}

// Sets the time zone of this process for the life of the object.
class TimeZone {
 public:
  explicit TimeZone(const std::string& value) {
    if (const char* const old = std::getenv("TZ")) m_old = old;
    ::setenv("TZ", value.c_str(), 1);
  }
  TimeZone(const TimeZone&) = delete;
  TimeZone& operator=(const TimeZone&) = delete;
  ~TimeZone() {
    if (m_old.empty()) {
      ::unsetenv("TZ");
    } else {
      ::setenv("TZ", m_old.c_str(), 1);
    }
    tellTime();
  }

 private:
  std::string m_old;
};

// The time zone file is a pipe. The C library reads it under its own lock until the writer closes
// the pipe.
TEST(LocalTime, IsToldInTheChildOfAForkBesideAThreadThatReadsTheTimeZone) {
  const test::TempDir directory;
  const std::string pipe = directory.file("zone");
  ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
  const TimeZone zone(":" + pipe);
  std::atomic<bool> isTold{false};
  std::thread reader([&] {
    tellTime();
    isTold = true;
  });
  int writer = -1;
  while (writer < 0 && !isTold) {
    writer = ::open(pipe.c_str(), O_WRONLY | O_NONBLOCK | O_CLOEXEC);
    if (writer < 0) std::this_thread::yield();
  }
  if (writer < 0) {
    reader.join();
#ifdef __GLIBC__
    FAIL() << "the C library does not read the time zone";
#else
    std::printf("Not tried: this C library does not read a time zone from a pipe\n");
    return;
#endif
  }
  std::promise<pid_t> forked;
  std::future<pid_t> child = forked.get_future();
  std::thread forker([&] {
    const pid_t pid = ::fork();
    if (pid == 0) {
      ::alarm(60);
      ::_exit(tellTime() ? 0 : 1);
    }
    forked.set_value(pid);
  });
  // A fork that does not wait for the reader would return within this time.
  EXPECT_EQ(child.wait_for(std::chrono::milliseconds(100)), std::future_status::timeout)
      << "the fork did not wait for the thread that reads the time zone";
  ::close(writer);
  reader.join();
  forker.join();
  int status = -1;
  ASSERT_GT(::waitpid(child.get(), &status, 0), 0);
  EXPECT_EQ(status, 0);
}

}  // namespace
