#include <sys/wait.h>
#include <unistd.h>

#include "tests/cli/pseudo_terminal.h"
#include "tests/probe/probe_fixture.h"

// The command on a terminal.
namespace test {
namespace {

using testing::HasSubstr;
using testing::Not;

class ProbeTerminal : public ProbeTest {
 protected:
  std::string hanging(const Peer& peer) {
    Entry made;
    made.server = local(peer.port());
    Entry other = made;
    other.order = "2";
    return list(text(made) + text(other));
  }
};

TEST_F(ProbeTerminal, ProgressIsPrintedAndRemoved) {
  const Peer peer([](Connection& connection) { connection.request(); });
  const Output said = withTerminalForMessages({"probe", "--file", hanging(peer)}, "", [] {});
  EXPECT_THAT(said.err, HasSubstr("\r\033[K0 of 2 sites"));
  EXPECT_THAT(said.err, HasSubstr("\r\033[K2 of 2 sites"));
  EXPECT_THAT(said.err, testing::EndsWith("\r\033[K"));
}

TEST_F(ProbeTerminal, QuietPrintsNoProgress) {
  const Peer peer([](Connection& connection) { connection.request(); });
  const Output said =
      withTerminalForMessages({"probe", "--quiet", "--file", hanging(peer)}, "", [] {});
  EXPECT_EQ(said.err, "");
}

TEST_F(ProbeTerminal, ProgressIsNotPrintedIntoAFile) {
  const Peer peer([](Connection& connection) { connection.request(); });
  EXPECT_EQ(sitelist({"probe", "--file", hanging(peer)}).err, "");
}

// The peer never answers, so only the signal can end the tool before its time is over.
TEST_F(ProbeTerminal, AnInterruptEndsAtOnceAndCleansTheLine) {
  const std::string pidFile = file("pid");
  const Peer peer([&](Connection& connection) {
    connection.request();
    ::kill(std::stoi(readFile(pidFile)), SIGINT);
    connection.awaitClose();
  });
  const std::string path = hanging(peer);
  PseudoTerminal terminal(80);
  const pid_t pid = ::fork();
  ASSERT_GE(pid, 0);
  if (pid == 0) {
    ::dup2(terminal.programEnd(), STDERR_FILENO);
    ::execl("/bin/sh", "sh", "-c",
            "echo $$ > \"$0\"; exec \"$1\" --agent-dir \"$2\" probe --timeout 60 --file \"$3\"",
            pidFile.c_str(), SITELIST_TOOL, file("agent").c_str(), path.c_str(), nullptr);
    ::_exit(127);
  }
  const std::string said = terminal.readAll();
  int status = 0;
  ::waitpid(pid, &status, 0);
  EXPECT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == SIGINT) << status;
  EXPECT_THAT(said, testing::EndsWith("\r\033[K"));
}

TEST_F(ProbeTerminal, EveryLineFitsTheTerminal) {
  const WebServer web(file(""));
  Entry made;
  made.element = "VestaSite";
  made.name = "Main server of the northern branch with a long name";
  made.server = local(web.port());
  made.securePort = std::to_string(web.wrongNamePort());
  const std::string path = list(text(made), web.authority());
  for (const int columns : {80, 160}) {
    const std::string table = onTerminal(columns, {"probe", "--file", path}, {"TERM=dumb"}).out;
    std::size_t start = 0;
    for (std::size_t end = table.find('\n'); end != std::string::npos;
         start = end + 1, end = table.find('\n', start)) {
      EXPECT_LE(end - start, static_cast<std::size_t>(columns)) << table.substr(start, end - start);
    }
    EXPECT_THAT(table, HasSubstr("not for the address"));
    EXPECT_THAT(table, Not(HasSubstr("\033")));
  }
}

}  // namespace
}  // namespace test
