#include <signal.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <string>
#include <vector>

#include "host/lock/directory_lock.h"
#include "tests/cli/edit_fixture.h"
#include "tests/links/two_users.h"

namespace fs = std::filesystem;

// The commands that need a temporary directory. None may leave one behind.
namespace test {
namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

std::vector<std::string> namesIn(const std::string& directory) {
  std::vector<std::string> names;
  for (const auto& entry : fs::directory_iterator(directory)) {
    names.push_back(entry.path().filename().string());
  }
  return names;
}

class CliScratch : public CliTest {
 protected:
  CliScratch() {
    initAgent();
    const std::string password = protectedText("fair");
    setOwnList(document(httpSite("Depot", "1", password)));
    list = write("lists/list.xml", document(httpSite("Offered", "1", password)));
    for (const Arguments& rest : {Arguments{"show"},
                                  {"explain"},
                                  {"versions"},
                                  {"certs"},
                                  {"policies"},
                                  {"validate", "--unmanaged"}}) {
      reading.push_back(rest + Arguments{list});
    }
    reading.push_back({"diff", ownList(), list});
    reading.push_back({"get", "globalVersion", list});
    drafting = {{"edit", "--file", list, "disable", "Offered", "--dry-run"},
                {"merge", "--second", list},
                {"merge", "--second", list, "--dry-run"},
                {"import", list, "--dry-run"},
                {"modify", list, "--repositories", "--dry-run"},
                {"validate", "--unmanaged", "-"}};
  }

  Output with(const std::string& settings, const Arguments& arguments) {
    const std::string input = arguments.front() == "validate" ? " < '" + list + "'" : "";
    return shell(settings + " \"$0\" --agent-dir agent \"$@\"" + input, arguments);
  }

  // Creates the directory that a process leaves when it is killed during a draft.
  std::string leaveBehind(const std::string& parent, const std::string& name = c_name) {
    const std::string directory = parent + "/" + name;
    EXPECT_EQ(::mkdir(directory.c_str(), 0700), 0);
    writeFile(directory + "/SiteList.xml", "a list");
    EXPECT_EQ(::mkdir((directory + "/etc").c_str(), 0700), 0);
    writeFile(directory + "/etc/SiteList.xml", "a list");
    return directory;
  }

  static constexpr const char* c_name = ".sitelist-0123456789abcdef";
  std::string list;
  std::vector<Arguments> reading;
  std::vector<Arguments> drafting;
};

TEST_F(CliScratch, ReadingNeedsNoTemporaryDirectory) {
  for (const Arguments& arguments : reading) {
    const Output usual = with("", arguments);
    const Output without = with("TMPDIR=/none", arguments);
    EXPECT_EQ(without.status, usual.status) << testing::PrintToString(arguments) << without.err;
    EXPECT_EQ(without.out, usual.out) << testing::PrintToString(arguments);
    EXPECT_EQ(without.err, usual.err) << testing::PrintToString(arguments);
    EXPECT_LE(without.status, 1);
  }
}

TEST_F(CliScratch, ReadingTakesNoLockOfTheAgentAndMakesNothing) {
  fs::remove_all(file("agent/locks"));
  const auto before = agentFiles();
  for (const Arguments& arguments : reading) EXPECT_LE(with("", arguments).status, 1);
  EXPECT_FALSE(exists(file("agent/locks")));
  EXPECT_EQ(agentFiles(), before);
  for (const Arguments& arguments : reading) {
    const Output output = bare(Arguments{"--agent-dir", file("none")} + arguments);
    EXPECT_LE(output.status, 1) << testing::PrintToString(arguments) << output.err;
  }
  EXPECT_FALSE(exists(file("none")));
}

TEST_F(CliScratch, WithoutAPlaceForADraftTheStatusIsThatOfAFile) {
  for (const Arguments& arguments : drafting) {
    const Output output = with("TMPDIR=/none", arguments);
    EXPECT_EQ(output.status, 4) << testing::PrintToString(arguments) << output.err;
    EXPECT_THAT(output.err,
                HasSubstr("/none: cannot create a temporary directory: No such file or directory\n"
                          "  next: free space there, or set TMPDIR to a directory that you may "
                          "write to\n"))
        << testing::PrintToString(arguments);
  }
}

TEST_F(CliScratch, AnEditIsDraftedBesideTheList) {
  const Output edit = with("TMPDIR=/none", {"edit", "--file", list, "disable", "Offered"});
  EXPECT_EQ(edit.status, 0) << edit.err;
  EXPECT_THAT(namesIn(file("lists")), testing::ElementsAre("list.xml"));
  const Output own = with("TMPDIR=/none", {"edit", "disable", "Depot"});
  EXPECT_EQ(own.status, 0) << own.err;
  EXPECT_THAT(namesIn(file("agent/etc")), testing::ElementsAre("SiteList.xml", "history"));
  const Output merge = with("TMPDIR=/none", {"merge", "--second", list, "--output", list});
  EXPECT_EQ(merge.status, 0) << merge.err;
  EXPECT_THAT(namesIn(file("lists")), testing::ElementsAre("list.xml"));
}

TEST_F(CliScratch, ABrokenSettingsFileLeavesNothing) {
  write("agent/agent.toml", "managed = maybe\n");
  for (const auto* commands : {&reading, &drafting}) {
    for (const Arguments& arguments : *commands) {
      EXPECT_EQ(with("", arguments).status, arguments.front() == "validate" ? 0 : 3)
          << testing::PrintToString(arguments);
      EXPECT_THAT(namesIn(file("tmp")), IsEmpty()) << testing::PrintToString(arguments);
    }
  }
}

TEST_F(CliScratch, WhatAKilledProcessLeftIsRemovedByTheNext) {
  for (const Arguments& arguments : drafting) {
    leaveBehind(file("tmp"));
    EXPECT_EQ(with("", arguments).status, 0) << testing::PrintToString(arguments);
    EXPECT_THAT(namesIn(file("tmp")), IsEmpty()) << testing::PrintToString(arguments);
  }
  leaveBehind(file("lists"));
  EXPECT_EQ(with("", {"edit", "--file", list, "disable", "Offered"}).status, 0);
  EXPECT_THAT(namesIn(file("lists")), testing::ElementsAre("list.xml"));
}

TEST_F(CliScratch, WhatALivingProcessHasStays) {
  const std::string directory = leaveBehind(file("tmp"));
  host::DirectoryLock living;
  ASSERT_EQ(living.lock(directory, 0), 0);
  EXPECT_EQ(with("", drafting.front()).status, 0);
  EXPECT_TRUE(exists(directory + "/etc/SiteList.xml"));
  fs::remove_all(directory);
}

TEST_F(CliScratch, WhatHasAnotherNameOrIsALinkStays) {
  const std::string other = leaveBehind(file("tmp"), "sitelist-0123456789abcdef");
  const std::string longer = leaveBehind(file("tmp"), std::string(c_name) + "0");
  const std::string target = leaveBehind(file(""), "target");
  fs::create_directory_symlink(target, file(std::string("tmp/") + c_name));
  EXPECT_EQ(with("", drafting.front()).status, 0);
  for (const std::string& directory : {other, longer, target}) {
    EXPECT_TRUE(exists(directory + "/SiteList.xml")) << directory;
  }
  for (const std::string& name : namesIn(file("tmp"))) fs::remove_all(file("tmp/" + name));
}

TEST_F(CliScratch, ManyProcessesDraftInOnePlaceAtOnce) {
  const Output output = shell(
      "ids=; for round in 1 2 3 4 5 6 7 8; do for i in 1 2 3 4 5 6 7 8; do "
      "\"$0\" --agent-dir agent \"$@\" > /dev/null & ids=\"$ids $!\"; done; "
      "for id in $ids; do wait $id || exit; done; ids=; done",
      {"edit", "--file", list, "disable", "Offered", "--dry-run"});
  EXPECT_EQ(output.status, 0);
  EXPECT_EQ(output.err, "");
}

// Root must not remove a directory whose owner could not remove it.
TEST_F(CliScratch, WhatBelongsToAnotherUserStays) {
  if (!haveTwoUsers()) return;
  const std::string theirs = leaveBehind(file("tmp"));
  giveToAgent(theirs);
  EXPECT_EQ(with("", drafting.front()).status, 0);
  EXPECT_TRUE(exists(theirs + "/SiteList.xml"));
  fs::remove_all(theirs);

  // The directory of the list belongs to another user, who may have renamed a directory of root.
  giveToAgent(file("lists"));
  const std::string ofRoot = leaveBehind(file("lists"));
  const std::string ofOwner = leaveBehind(file("lists"), ".sitelist-fedcba9876543210");
  giveToAgent(ofOwner);
  const Output edit = with("", {"edit", "--file", list, "disable", "Offered"});
  EXPECT_EQ(edit.status, 0) << edit.err;
  EXPECT_TRUE(exists(ofRoot + "/SiteList.xml"));
  EXPECT_FALSE(exists(ofOwner));
}

#ifdef INTERPOSER
class CliScratchSignal : public CliScratch {
 protected:
  // The signal ends the tool even if this process ignores the signal.
  Output interrupted(int signal, const Arguments& arguments) {
    struct sigaction defaults {};
    struct sigaction before {};
    defaults.sa_handler = SIG_DFL;
    if (signal != SIGKILL) ::sigaction(signal, &defaults, &before);
    Output output = with(
        "SIGNAL_IN_DRAFT=" + std::to_string(signal) + " LD_PRELOAD='" INTERPOSER "'", arguments);
    if (signal != SIGKILL) ::sigaction(signal, &before, nullptr);
    return output;
  }
};

TEST_F(CliScratchSignal, EndsTheProgramAndLeavesNothing) {
  for (const int signal : {SIGINT, SIGTERM, SIGHUP, SIGPIPE, SIGQUIT}) {
    for (const Arguments& arguments : drafting) {
      EXPECT_EQ(interrupted(signal, arguments).status, 128 + signal)
          << signal << testing::PrintToString(arguments);
      EXPECT_THAT(namesIn(file("tmp")), IsEmpty()) << signal << testing::PrintToString(arguments);
    }
    const std::string before = readFile(list);
    EXPECT_EQ(interrupted(signal, {"edit", "--file", list, "disable", "Offered"}).status,
              128 + signal);
    EXPECT_THAT(namesIn(file("lists")), testing::ElementsAre("list.xml")) << signal;
    EXPECT_EQ(readFile(list), before);
  }
}

TEST_F(CliScratchSignal, ThatCannotBeCaughtLeavesADirectoryForTheNextRun) {
  EXPECT_EQ(interrupted(SIGKILL, drafting.front()).status, 128 + SIGKILL);
  EXPECT_EQ(namesIn(file("tmp")).size(), 1U);
  EXPECT_EQ(with("", drafting.front()).status, 0);
  EXPECT_THAT(namesIn(file("tmp")), IsEmpty());
}
#endif

}  // namespace
}  // namespace test
