#include <sys/file.h>
#include <unistd.h>

#include <chrono>
#include <future>
#include <string>

#include "host/agent.h"
#include "host/lock/directory_lock.h"
#include "platform/lock/interprocess_lock.h"
#include "tests/cli/edit_fixture.h"
#include "tests/support/locker.h"

// Every command that changes a list holds its lock from its first read to its last write.
namespace test {
namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;
using Mode = Locker::Mode;

// The name of the site that another writer adds.
constexpr const char* c_otherSite = "Another";

class CliListLock : public CliTest {
 protected:
  CliListLock() {
    initAgent();
    setOwnList(list("Depot"));
  }

  static std::string list(const std::string& site, const std::string& other = "") {
    return document(httpSite(site) + (other.empty() ? "" : httpSite(other, "2")));
  }

  // Runs a command while another process reads the list. Once the command waits for the write lock,
  // changes the files that it will read and releases the read lock. The result shows whether the
  // command had already read the files. The test fails if the command does not wait.
  Output changingMeanwhile(const Arguments& arguments, const std::function<void()>& change) {
    Locker reader(file("agent"));
    Locker probe(file("agent"));
    EXPECT_TRUE(reader.lock(Mode::Read));
    auto running = std::async(std::launch::async, [&] { return sitelist(arguments); });
    bool hasEnded = false;
    // A waiting writer keeps new readers out.
    while (!hasEnded && probe.lock(Mode::Read, 0)) {
      probe.unlock(Mode::Read);
      hasEnded = running.wait_for(std::chrono::seconds(0)) == std::future_status::ready;
    }
    EXPECT_FALSE(hasEnded) << "the command does not wait for a reader";
    change();
    reader.unlock(Mode::Read);
    Output output = running.get();
    EXPECT_EQ(output.status, 0) << testing::PrintToString(arguments) << '\n' << output.err;
    return output;
  }

  // Does the same and adds a site to the agent's list. The site must be in the list at the end.
  void keepsAnotherSite(const Arguments& arguments) {
    changingMeanwhile(arguments, [this] { setOwnList(list("Depot", c_otherSite)); });
    EXPECT_THAT(readFile(ownList()), HasSubstr(c_otherSite)) << testing::PrintToString(arguments);
  }

  std::string incoming(const std::string& site) { return write("in/SiteList.xml", list(site)); }
};

TEST_F(CliListLock, PoliciesSetKeepsWhatAnotherWriterAdds) {
  keepsAnotherSite({"policies", "set", "Name", "Value"});
  EXPECT_EQ(sitelist({"policies"}).out, "Name = Value\n");
}

TEST_F(CliListLock, ModifyKeepsWhatAnotherWriterAdds) {
  keepsAnotherSite({"modify", "--servers", incoming("Offered")});
}

TEST_F(CliListLock, MergeIntoTheAgentsListKeepsWhatAnotherWriterAdds) {
  keepsAnotherSite({"merge", "--first", incoming("Offered"), "--output", ownList()});
}

TEST_F(CliListLock, RewriteOfTheAgentsListKeepsWhatAnotherWriterAdds) {
  keepsAnotherSite({"rewrite", ownList(), ownList()});
}

TEST_F(CliListLock, EditKeepsWhatAnotherWriterAdds) {
  keepsAnotherSite({"edit", "disable", "Depot"});
}

TEST_F(CliListLock, ImportAndInstallTakeTheIncomingListUnderTheLock) {
  for (const char* command : {"import", "install"}) {
    changingMeanwhile({command, incoming("Old")}, [this] { incoming("New"); });
    EXPECT_THAT(readFile(ownList()), AllOf(HasSubstr("New"), Not(HasSubstr("Old")))) << command;
  }
}

TEST_F(CliListLock, UndoTakesTheHistoryUnderTheLock) {
  write("agent/etc/history/1-20260101T000000Z-import.xml", list("Old"));
  changingMeanwhile(
      {"undo"}, [this] { write("agent/etc/history/2-20260102T000000Z-import.xml", list("New")); });
  EXPECT_EQ(readFile(ownList()), list("New"));
}

TEST_F(CliListLock, DeriveServerListTakesTheListUnderTheLock) {
  changingMeanwhile({"derive-server-list", file("agent/etc")},
                    [this] { setOwnList(list("Depot", c_otherSite)); });
  EXPECT_THAT(readFile(file("agent/etc/ServerSiteList.xml")), HasSubstr(c_otherSite));
}

TEST_F(CliListLock, ServerListIsStoredUnderTheLock) {
  for (const Arguments& options : {Arguments{}, {"--adjust-passwords"}}) {
    const Arguments arguments = Arguments{"server-list", incoming("Offered")} + options;
    changingMeanwhile(arguments, [this] {
      EXPECT_FALSE(exists(file("agent/ServerSiteList.xml"))) << "it is written too early";
    });
    EXPECT_THAT(readFile(file("agent/ServerSiteList.xml")), HasSubstr("Offered"));
    EXPECT_EQ(::unlink(file("agent/ServerSiteList.xml").c_str()), 0);
  }
}

TEST_F(CliListLock, TheMeshServicesLoadCommandReadsTheListWithoutWaiting) {
  const Output init = bare({"--agent-dir", file("meshed"), "init", "--mesh-command", SITELIST_TOOL,
                            "--agent-dir", file("meshed"), "--wait", "0", "get", "globalVersion"});
  ASSERT_EQ(init.status, 0) << init.err;
  for (const Arguments& arguments :
       {Arguments{"import", incoming("Depot")}, {"policies", "set", "Name", "Value"}}) {
    const Output output = bare(Arguments{"--verbose", "--agent-dir", file("meshed")} + arguments);
    EXPECT_EQ(output.status, 0) << output.err;
    EXPECT_THAT(output.err, AllOf(HasSubstr("Mesh service load command: 20260101000000"),
                                  Not(HasSubstr("failed"))))
        << testing::PrintToString(arguments);
  }
}

class CliEveryChange : public CliListLock {
 protected:
  CliEveryChange() {
    write("agent/etc/history/1-20260101T000000Z-import.xml", list("Old"));
    const std::string in = incoming("Offered");
    commands = {{"import", in},
                {"install", in},
                {"modify", "--servers", in},
                {"policies", "set", "Name", "Value"},
                {"merge", "--first", in, "--output", ownList()},
                {"rewrite", in, ownList()},
                {"from-buffer", in},
                {"server-list", in},
                {"derive-server-list", file("agent/etc")},
                {"edit", "disable", "Depot"},
                {"edit", "add", "http", "New", "server=new.example"},
                {"undo"}};
  }
  std::vector<Arguments> commands;
};

TEST_F(CliEveryChange, WritesNothingWhenTheLockIsNotToBeHadInTime) {
  Locker other(file("agent"));
  ASSERT_TRUE(other.lock(Mode::Read));
  const auto before = agentFiles();
  for (const Arguments& arguments : commands) {
    const Output output = sitelist(Arguments{"--wait", "0"} + arguments);
    EXPECT_EQ(output.status, 4) << testing::PrintToString(arguments) << '\n' << output.err;
    EXPECT_THAT(output.err, HasSubstr("locked by another process\n  next: "))
        << testing::PrintToString(arguments);
  }
  EXPECT_EQ(agentFiles(), before);
}

TEST_F(CliEveryChange, WritesNothingWhenTheLockCannotBeOpened) {
  ASSERT_EQ(shell("rm -r agent/locks && echo 'in the way' > agent/locks").status, 0);
  const auto before = agentFiles();
  for (const Arguments& arguments : commands) {
    // A command that does not change the agent's list does not need the agent's lock.
    if (arguments.front() == "derive-server-list") continue;
    const Output output = sitelist(arguments);
    EXPECT_EQ(output.status, 4) << testing::PrintToString(arguments) << '\n' << output.err;
    EXPECT_THAT(output.err, HasSubstr("the agent's locks cannot be used"))
        << testing::PrintToString(arguments);
  }
  EXPECT_EQ(agentFiles(), before);
}

TEST_F(CliEveryChange, NeedsNoLockToSayWhatItWouldChange) {
  Locker other(file("agent"));
  ASSERT_TRUE(other.lock(Mode::Write));
  const std::string in = incoming("Offered");
  for (const Arguments& arguments : {Arguments{"import", in},
                                     {"install", in},
                                     {"modify", "--servers", in},
                                     {"merge", "--first", in},
                                     {"edit", "disable", "Depot"}}) {
    const Output output = sitelist(arguments + Arguments{"--wait", "0", "--dry-run"});
    EXPECT_EQ(output.status, 0) << testing::PrintToString(arguments) << '\n' << output.err;
  }
}

TEST_F(CliListLock, AReaderWaitsForAWriterOnlyAsLongAsItIsTold) {
  Locker writer(file("agent"));
  ASSERT_TRUE(writer.lock(Mode::Write));
  const std::vector<Arguments> commands = {{"show"},     {"versions"}, {"certs"},
                                           {"policies"}, {"servers"},  {"get", "globalVersion"},
                                           {"explain"},  {"history"},  {"diff", "--history", "1"}};
  for (const Arguments& arguments : commands) {
    const Output output = sitelist(arguments + Arguments{"--wait", "0"});
    EXPECT_EQ(output.status, 4) << testing::PrintToString(arguments) << '\n' << output.err;
    EXPECT_THAT(output.err, HasSubstr("locked by another process"));
  }
  writer.unlock(Mode::Write);
  ASSERT_TRUE(writer.lock(Mode::Read));
  EXPECT_EQ(sitelist({"show", "--wait", "0"}).status, 0) << "readers share the lock";
}

TEST_F(CliListLock, AReaderOfTheCachedListTakesTheLockOfTheCacheFirst) {
  const host::AgentSettings before = host::agent();
  host::AgentSettings settings;
  settings.dataDirectory = file("agent");
  host::setAgent(settings);
  korvel_com::orb::lock::InterProcessWriteLock cache("SmartSiteListLock");
  ASSERT_TRUE(cache.lock(0));
  EXPECT_EQ(sitelist({"servers", "--wait", "0"}).status, 4);
  EXPECT_EQ(sitelist({"show", "--wait", "0"}).status, 0)
      << "only readers of the cached list need its lock";
  cache.unlock();
  EXPECT_NE(sitelist({"servers", "--wait", "0"}).status, 4);
  host::setAgent(before);
}

TEST_F(CliListLock, AReaderThatCannotUseTheLockReads) {
  ASSERT_EQ(shell("rm -r agent/locks && echo 'in the way' > agent/locks").status, 0);
  const Output output = sitelist({"show"});
  EXPECT_EQ(output.status, 0);
  EXPECT_THAT(output.out, HasSubstr("Depot"));
  EXPECT_THAT(output.err, HasSubstr("Cannot lock"));
}

TEST_F(CliListLock, TellsATerminalThatItWaits) {
  Locker other(file("agent"));
  ASSERT_TRUE(other.lock(Mode::Write));
  const std::string line = "sitelist: waiting for the lock of " + ownList() + "\n";
  const Output output = withTerminalForMessages({"policies", "set", "Name", "Value"}, line,
                                                [&] { other.unlock(Mode::Write); });
  EXPECT_EQ(output.status, 0);
  EXPECT_THAT(output.err, StartsWith(line + "sitelist: " + ownList() + ": set "));
  ASSERT_TRUE(other.lock(Mode::Write));
  const Output quiet = sitelist({"policies", "set", "Name", "Value", "--wait", "2"});
  EXPECT_EQ(quiet.status, 4);
  EXPECT_THAT(quiet.err, Not(HasSubstr("waiting"))) << "a file gets only the result";
}

TEST_F(CliListLock, RefusesAWaitThatIsNoNumberOfSeconds) {
  for (const char* wait : {"soon", "-1", "86401", ""}) {
    const Output output = sitelist({"show", "--wait", wait});
    EXPECT_EQ(output.status, 2) << wait << '\n' << output.err;
    EXPECT_THAT(output.err, HasSubstr("--wait"));
  }
  EXPECT_EQ(sitelist({"--wait", "86400", "show"}).status, 0);
}

// A list that belongs to no agent.
class CliNamedListLock : public CliListLock {
 protected:
  CliNamedListLock() { path = write("lists/list.xml", list("Depot")); }

  Arguments withoutAgent(const Arguments& arguments) const {
    return Arguments{"--agent-dir", file("none")} + arguments;
  }
  std::string path;
};

TEST_F(CliNamedListLock, IsTheLockOfItsDirectory) {
  host::DirectoryLock other;
  ASSERT_EQ(other.lock(file("lists"), 0), 0);
  const std::vector<Arguments> commands = {
      withoutAgent({"edit", "--file", path, "disable", "Depot"}),
      withoutAgent({"derive-server-list", file("lists")}),
      {"--agent-dir", file("agent"), "merge", "--second", path, "--output", path},
      {"--agent-dir", file("agent"), "rewrite", path, path}};
  ASSERT_EQ(shell("ln -s lists/list.xml link.xml && cp lists/list.xml lists/SiteList.xml").status,
            0);
  const auto before = snapshot(file("lists"));
  for (const Arguments& arguments : commands) {
    const Output output = bare(arguments + Arguments{"--wait", "0"});
    EXPECT_EQ(output.status, 4) << testing::PrintToString(arguments) << '\n' << output.err;
    EXPECT_THAT(output.err, HasSubstr("locked by another process"));
  }
  EXPECT_EQ(
      bare(withoutAgent({"edit", "--file", file("link.xml"), "disable", "Depot", "--wait", "0"}))
          .status,
      4)
      << "another name of the list has the same lock";
  EXPECT_EQ(snapshot(file("lists")), before);
  EXPECT_EQ(bare(withoutAgent({"show", path, "--wait", "0"})).status, 0) << "reading needs none";
}

TEST_F(CliNamedListLock, LeavesNoFileBehind) {
  EXPECT_EQ(bare(withoutAgent({"edit", "--file", path, "disable", "Depot"})).status, 0);
  EXPECT_EQ(snapshot(file("lists")).size(), 1U);
}

TEST_F(CliNamedListLock, ADirectoryThatIsMissingIsNotMade) {
  const Output output = sitelist({"rewrite", path, file("none/list.xml")});
  EXPECT_EQ(output.status, 4) << output.err;
  EXPECT_FALSE(exists(file("none")));
}

#ifdef INTERPOSER
// On a file system whose directories cannot be locked.
class CliWithoutDirectoryLocks : public CliNamedListLock {
 protected:
  // `meanwhile` is the file that another program changes while the tool is at work.
  Output tool(const Arguments& arguments, const std::string& meanwhile = "") {
    return shell("NO_DIRECTORY_LOCKS=1 CHANGED_MEANWHILE='" + meanwhile +
                     "' LD_PRELOAD='" INTERPOSER "' \"$0\" \"$@\"",
                 arguments);
  }

  std::vector<Arguments> commands() const {
    return {withoutAgent({"edit", "--file", path, "rename", "Depot", "Store"}),
            {"--agent-dir", file("agent"), "merge", "--second", path, "--output", path},
            {"--agent-dir", file("agent"), "rewrite", path, path}};
  }
};

TEST_F(CliWithoutDirectoryLocks, AListIsChanged) {
  for (const Arguments& arguments : commands()) {
    write("lists/list.xml", list("Depot"));
    const Output output = tool(arguments);
    EXPECT_EQ(output.status, 0) << testing::PrintToString(arguments) << '\n' << output.err;
    EXPECT_NE(readFile(path), list("Depot")) << testing::PrintToString(arguments);
  }
}

TEST_F(CliWithoutDirectoryLocks, AChangeByAnotherProgramIsKeptAndTold) {
  write("lists/list.xml.bak", list("Old"));
  for (const Arguments& arguments : commands()) {
    write("lists/list.xml", list("Depot"));
    const Output output = tool(arguments, path);
    EXPECT_EQ(output.status, 6) << testing::PrintToString(arguments) << '\n' << output.err;
    EXPECT_THAT(output.err, HasSubstr("another program changed the list meanwhile"))
        << testing::PrintToString(arguments);
    EXPECT_EQ(readFile(path), list("Depot") + "\n") << testing::PrintToString(arguments);
  }
  EXPECT_EQ(readFile(path + ".bak"), list("Old"));
}
#endif

}  // namespace
}  // namespace test
