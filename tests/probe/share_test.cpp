#include <sys/wait.h>
#include <unistd.h>

#include "tests/probe/loopback.h"
#include "tests/probe/probe_fixture.h"

#ifdef __linux__
#include <net/if.h>
#include <sched.h>
#include <sys/ioctl.h>
#endif

// A file share. Its port is fixed, so the test needs a network of its own. Names need one as well,
// because the answer of a name server would depend on the machine.
namespace test {
namespace {

using testing::HasSubstr;

class ProbeShare : public ProbeTest {
 protected:
  Entry share() {
    Entry made;
    made.element = "UNCSite";
    made.server = "127.0.0.1";
    return made;
  }
};

// Calls the function in a process whose network has only a loopback address. Returns its exit
// status, or -1 if this user cannot have such a network.
int inOwnNetwork([[maybe_unused]] const std::function<int()>& body) {
#ifdef __linux__
  constexpr int c_noNetwork = 99;
  const pid_t pid = ::fork();
  if (pid == 0) {
    const bool hasNetwork =
        ::unshare(CLONE_NEWNET) == 0 || ::unshare(CLONE_NEWUSER | CLONE_NEWNET) == 0;
    const int socket = ::socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    ifreq loopbackDevice = {};
    loopbackDevice.ifr_name[0] = 'l';
    loopbackDevice.ifr_name[1] = 'o';
    loopbackDevice.ifr_flags = IFF_UP | IFF_RUNNING;
    if (!hasNetwork || ::ioctl(socket, SIOCSIFFLAGS, &loopbackDevice) != 0) ::_exit(c_noNetwork);
    ::_exit(body());
  }
  int status = 0;
  ::waitpid(pid, &status, 0);
  return WEXITSTATUS(status) == c_noNetwork ? -1 : WEXITSTATUS(status);
#else
  return -1;
#endif
}

TEST_F(ProbeShare, AnOpenPortIsOkAndAClosedOneFails) {
  const std::string path = list(text(share()));
  const auto run = [&] { return sitelist({"probe", "--json", "--file", path}).status; };
  if (inOwnNetwork([] { return 0; }) != 0) {
    std::cout << "Not tried: this user cannot have a network of its own.\n";
    return;
  }
  EXPECT_EQ(inOwnNetwork(run), 1);
  JsonReport report = readReport(readFile(file("stdout")));
  ASSERT_EQ(report.rows.size(), 1U);
  EXPECT_THAT(report.rows[0]["error"],
              HasSubstr("cannot connect to the server 127.0.0.1:445: Connection refused"));
  EXPECT_EQ(
      inOwnNetwork([&] {
        const int listener = ::socket(AF_INET, SOCK_STREAM, 0);
        const sockaddr_in address = loopback(445);
        if (::bind(listener, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0 ||
            ::listen(listener, 4) != 0) {
          return 98;
        }
        return run();
      }),
      0);
  report = readReport(readFile(file("stdout")));
  ASSERT_EQ(report.rows.size(), 1U);
  EXPECT_EQ(report.rows[0]["state"], "ok");
  EXPECT_EQ(report.rows[0]["answer"], "port 445 is open");
  EXPECT_THAT(report.rows[0]["note"], HasSubstr("the share was not opened"));
}

TEST_F(ProbeShare, ANameThatCannotBeResolvedFails) {
  Entry made = share();
  made.server = "nowhere.invalid";
  const std::string path = list(text(made));
  const int status = inOwnNetwork([&] {
    return sitelist({"probe", "--json", "--file", path}).status;
  });
  if (status == -1) {
    std::cout << "Not tried: this user cannot have a network of its own.\n";
    return;
  }
  EXPECT_EQ(status, 1);
  JsonReport report = readReport(readFile(file("stdout")));
  ASSERT_EQ(report.rows.size(), 1U);
  EXPECT_EQ(report.rows[0]["state"], "failed");
  EXPECT_THAT(report.rows[0]["error"], HasSubstr("the name of the server cannot be resolved: "));
}

// The list has a proxy, but a file share is not reached through it.
TEST_F(ProbeShare, AProxyIsNotUsed) {
  const Peer trap([](Connection& connection) { connection.request(); });
  JsonReport::Record site = probeSite(share(), "", httpProxy(trap.port()));
  EXPECT_EQ(site.count("proxy"), 0U);
  EXPECT_EQ(trap.connections(), 0);
}

}  // namespace
}  // namespace test
