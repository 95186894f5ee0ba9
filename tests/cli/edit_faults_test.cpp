#ifdef __linux__
#include <linux/filter.h>
#include <linux/seccomp.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#endif

#include <cerrno>
#include <cstddef>
#include <iterator>
#include <stdexcept>
#include <thread>

#include "tests/cli/edit_fixture.h"

// An edit adds no fault to a list, by the rules of `sitelist validate`.
namespace test {
namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::Not;

class CliEditFaults : public CliEdit {
 protected:
  // The fault of a refused edit, without the place in front of it.
  std::string faultOf(const Arguments& arguments) {
    const std::string message = fail(1, arguments);
    const std::string start = "\n  " + ownList() + ":";
    const std::size_t at = message.find(start);
    EXPECT_NE(at, std::string::npos) << message;
    if (at == std::string::npos) return message;
    const std::size_t begin = message.find(": ", at + start.size()) + 2;
    return message.substr(begin, message.find('\n', begin) - begin);
  }
};

TEST_F(CliEditFaults, AreRefusedAsValidateNamesThem) {
  setOwnList(document(serverSite() + httpSite("Depot", "2")));
  const std::vector<std::pair<Arguments, std::string>> changes = {
      {{"set", "Depot", "server=x:99"},
       "ambiguous-address: \"Server\" is \"x:99:8080\", which is read as the host \"x:99\"; write "
       "[ADDRESS]:PORT (site \"Depot\") [warning]"},
      {{"set", "Depot", "server=http://x/"},
       "ambiguous-address: \"Server\" is \"http://x/:8080\", which is read as the host "
       "\"http://x/\"; write [ADDRESS]:PORT (site \"Depot\") [warning]"},
      {{"set", "Depot", "server="},
       "site-without-address: the site has no \"Server\" (site \"Depot\") [warning]"},
      {{"set", "Depot", "useAuth=5"},
       "flag-value: \"UseAuth\" is \"5\", which is read as 1 (site \"Depot\") [warning]"},
      {{"set", "Depot", "order=1"},
       "duplicate-order: the order 1 is also that of the site \"Main\" in line 2 (site \"Depot\") "
       "[warning]"},
      {{"add", "http", "New"},
       "site-without-address: the site has no \"Server\" (site \"New\") [warning]"},
  };
  for (const auto& [arguments, fault] : changes) EXPECT_EQ(faultOf(arguments), fault);
  EXPECT_THAT(
      fail(1, {"add", "http", "New"}),
      AllOf(HasSubstr(ownList() +
                      ": the change would add a fault to the list, so nothing "
                      "was written\n  " +
                      ownList() + ":2:"),
            HasSubstr("\n  next: correct it (`sitelist explain-rule RULE` says how), or use "
                      "--force\n")));
}

TEST_F(CliEditFaults, AreWrittenByForceWithAWarning) {
  setOwnList(document(serverSite() + httpSite("Depot", "2")));
  EXPECT_THAT(
      change({"set", "Depot", "server=", "--force"}),
      AllOf(HasSubstr("sitelist: warning: the change adds a fault: " + ownList() + ":2:"),
            HasSubstr(": site-without-address: the site has no \"Server\" (site \"Depot\")"),
            HasSubstr(": set server of http \"Depot\"\n")));
  EXPECT_EQ(site("Depot")["server"], "");
}

TEST_F(CliEditFaults, OfTheListItselfHinderNoEdit) {
  setOwnList(document(serverSite() + siteElement("HttpSite", "Depot", "1", "Enabled=\"1\"") +
                      siteElement("FTPSite", "Files", "9", "Server=\"[fe80::1]\"")));
  change({"rename", "Depot", "Depot 2"});
  change({"set", "Depot 2", "userName=reader"});
  change({"set", "Files", "relativePath=pub"});
  change({"move", "Depot 2", "first"});
  change({"remove", "Depot 2"});
  EXPECT_THAT(faultOf({"set", "Main", "serverIP=fe80::1"}), HasSubstr("ambiguous-address"));
}

TEST_F(CliEditFaults, OfADryRunAreToldWithTheChange) {
  setOwnList(document(httpSite("Depot")));
  const Output output = edit({"--dry-run", "set", "Depot", "server="});
  EXPECT_EQ(output.status, 1);
  EXPECT_THAT(output.out, HasSubstr("depot.example -> (none)"));
  EXPECT_THAT(output.err, HasSubstr("site-without-address"));
  EXPECT_EQ(edit({"--dry-run", "--force", "set", "Depot", "server="}).status, 0);
}

TEST_F(CliEditFaults, OfTheManagementServerCountForAManagedAgentOnly) {
  const std::string list = document(
      serverSite() + serverSite({{"Name", "Second"}, {"Order", "2"}}) + httpSite("Depot", "3"));
  setOwnList(list);
  change({"set", "Main", "type=repository"});
  change({"remove", "Main"});
  change({"remove", "Second"});
  write("agent/agent.toml", "managed = true\n");
  setOwnList(list);
  EXPECT_EQ(faultOf({"set", "Main", "type=repository"}),
            "server-type-master: the type of the management server must be \"master\", not "
            "\"repository\" (site \"Main\")");
  EXPECT_EQ(faultOf({"set", "Main", "relativePath="}),
            "server-path: the management server has no \"RelativePath\" (site \"Main\")");
  change({"remove", "Main"});
  EXPECT_EQ(faultOf({"remove", "Second"}), "no-server: the list has no management server");
  change({"remove", "Second", "--force"});
}

// The draft of a change is in another directory than the list.
TEST_F(CliEditFaults, OfAServersKeyFilesAreThoseBesideTheList) {
  write("agent/agent.toml", "managed = true\n");
  setOwnList(document(serverSite()));
  EXPECT_THAT(faultOf({"set", "Main", "version=5.9"}), HasSubstr("server-request-key: "));
  write("agent/etc/reqseckey.bin", "key");
  write("agent/etc/srpubkey.bin", "key");
  EXPECT_THAT(change({"set", "Main", "version=5.9"}), Not(HasSubstr("adds a fault")));
  const std::string copy = write("lists/list.xml", document(serverSite({{"Version", "5.9"}})));
  const Output output =
      shell("cd lists && \"$0\" --agent-dir ../agent edit --file list.xml disable Main");
  EXPECT_EQ(output.status, 0) << output.err;
}

#ifdef __linux__
// From now on, this thread and the programs that it starts are on a file system without symbolic
// links.
void forbidSymbolicLinks() {
  sock_filter instructions[] = {
      BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, nr)),
      BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, SYS_symlinkat, 2, 0),
#ifdef SYS_symlink
      BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, SYS_symlink, 1, 0),
#else
      BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, SYS_symlinkat, 1, 0),
#endif
      BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW),
      BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ERRNO | EPERM),
  };
  const sock_fprog filter = {std::size(instructions), instructions};
  if (::prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) != 0 ||
      ::prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &filter) != 0) {
    throw std::runtime_error("prctl");
  }
}

TEST_F(CliEditFaults, AreFoundWithoutSymbolicLinks) {
  write("agent/agent.toml", "managed = true\n");
  setOwnList(document(serverSite({{"Version", "5.9"}})));
  write("agent/etc/reqseckey.bin", "key");
  write("agent/etc/srpubkey.bin", "key");
  Output refused;
  Output changed;
  std::string link;
  std::thread([&] {
    forbidSymbolicLinks();
    link = shell("ln -s x link").err;
    refused = edit({"set", "Main", "relativePath="});
    changed = edit({"disable", "Main"});
  }).join();
  EXPECT_THAT(link, HasSubstr("not permitted"));
  EXPECT_EQ(refused.status, 1) << refused.err;
  EXPECT_THAT(refused.err, HasSubstr("server-path: the management server has no \"RelativePath\""));
  EXPECT_EQ(changed.status, 0) << changed.err;
  EXPECT_EQ(site("Main")["enabled"], "false");
}
#endif

TEST_F(CliEditFaults, AnEmptyKeyFileIsNotAKeyFile) {
  write("agent/agent.toml", "managed = true\n");
  setOwnList(document(serverSite()));
  write("agent/etc/reqseckey.bin", "");
  write("agent/etc/srpubkey.bin", "key");
  EXPECT_THAT(faultOf({"set", "Main", "version=5.9"}), HasSubstr("server-request-key: "));
}

TEST_F(CliEditFaults, DoNotPreventAnUndo) {
  setOwnList(document(siteElement("HttpSite", "Depot", "1")));
  change({"set", "Depot", "server=depot.example"});
  EXPECT_EQ(sitelist({"undo"}).status, 0);
  EXPECT_EQ(site("Depot")["server"], "");
}

}  // namespace
}  // namespace test
