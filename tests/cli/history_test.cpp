#include <filesystem>
#include <iostream>

#include "tests/cli/edit_fixture.h"

// The history of the agent's own list, and `undo`.
namespace test {
namespace {

namespace fs = std::filesystem;
using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::MatchesRegex;
using testing::Not;
using testing::SizeIs;

std::string versions(const std::string& global) {
  return "GlobalVersion=\"" + global + "\" LocalVersion=\"20260102000000\"";
}

class CliHistory : public CliEdit {
 protected:
  CliHistory() { setOwnList(list()); }

  static std::string list() {
    std::string sites;
    for (const auto& [name, order] : {std::pair{"a", "1"}, {"b", "2"}, {"c", "3"}}) {
      sites += siteElement("HttpSite", name, order, "Server=\"host.example:80\" Enabled=\"1\"");
    }
    return document(sites);
  }
  std::string directory() const { return file("agent/etc/history"); }

  // The names of the files, the oldest first.
  std::vector<std::string> kept() const {
    std::map<unsigned long, std::string> names;
    if (fs::exists(directory())) {
      for (const auto& entry : fs::directory_iterator(directory())) {
        const std::string name = entry.path().filename();
        names[std::strtoul(name.c_str(), nullptr, 10)] = name;
      }
    }
    std::vector<std::string> sorted;
    for (const auto& [number, name] : names) sorted.push_back(name);
    return sorted;
  }
  std::string bytesOf(const std::string& name) const { return readFile(directory() + "/" + name); }
  void setHistory(const std::string& length) {
    write("agent/agent.toml", "history = " + length + "\n");
  }
};

TEST_F(CliHistory, KeepsTheListAtEachPathThatLeadsToIt) {
  const std::string before = readFile(ownList());
  fs::create_directory_symlink("agent", file("link"));
  ASSERT_EQ(edit({"--file", file("link/etc/SiteList.xml"), "disable", "a"}).status, 0);
  ASSERT_THAT(kept(), SizeIs(1));
  EXPECT_EQ(bytesOf(kept().back()), before);

  // The next path has no symbolic link.
  fs::create_directory(file("mounted"));
  const std::string mount = "unshare -m sh -c 'mount --bind agent mounted && exec \"$@\"' sh ";
  if (shell(mount + "true").status != 0) {
    std::cout << "this process cannot mount a directory, so there is no second path\n";
    return;
  }
  const std::string changed = readFile(ownList());
  const Output output =
      shell(mount + "\"$0\" --agent-dir agent edit --file mounted/etc/SiteList.xml disable b");
  ASSERT_EQ(output.status, 0) << output.err;
  ASSERT_THAT(kept(), SizeIs(2));
  EXPECT_EQ(bytesOf(kept().back()), changed);
}

TEST_F(CliHistory, KeepsTheListThatEachCommandReplaces) {
  const std::string incoming = write("incoming.xml", document(httpSite("depot")));
  const std::string second = write("second.xml", document(httpSite("other")));
  const std::string servers = write("servers.xml", document(serverSite()));
  const std::vector<std::pair<std::string, Arguments>> commands = {
      {"edit_set", {"edit", "set", "a", "server=there.example"}},
      {"edit_disable", {"edit", "disable", "a"}},
      {"policies_set", {"policies", "set", "name", "value"}},
      {"policies_unset", {"policies", "unset", "name"}},
      {"merge", {"merge", "--second", second, "--output", ownList()}},
      {"modify", {"modify", "--servers", servers}},
      {"import", {"import", incoming}},
      {"install", {"install", servers}},
      {"rewrite", {"rewrite", incoming, ownList()}},
      {"undo", {"undo"}},
  };
  std::size_t count = 0;
  for (const auto& [name, arguments] : commands) {
    const std::string before = readFile(ownList());
    const Output output = sitelist(arguments);
    ASSERT_EQ(output.status, 0) << name << ": " << output.err;
    ASSERT_NE(readFile(ownList()), before) << name;
    ASSERT_THAT(kept(), SizeIs(++count)) << name;
    EXPECT_THAT(kept().back(),
                MatchesRegex(std::to_string(count) + "-[0-9]{8}T[0-9]{6}Z-" + name + "\\.xml"));
    EXPECT_EQ(bytesOf(kept().back()), before) << name;
  }
}

TEST_F(CliHistory, KeepsNothingOfACommandThatChangesNothing) {
  const std::vector<std::pair<int, Arguments>> commands = {
      {0, {"edit", "enable", "a"}},
      {7, {"edit", "remove", "none"}},
      {0, {"edit", "--dry-run", "disable", "a"}},
      {4, {"import", file("none.xml")}},
      {0, {"show"}},
      {1, {"validate", ownList()}},
  };
  for (const auto& [status, arguments] : commands) {
    EXPECT_EQ(sitelist(arguments).status, status) << testing::PrintToString(arguments);
    EXPECT_THAT(kept(), IsEmpty()) << testing::PrintToString(arguments);
  }
}

TEST_F(CliHistory, KeepsNothingOfAListThatIsNotTheAgents) {
  const std::string path = write("list.xml", list());
  EXPECT_EQ(sitelist({"edit", "--file", path, "disable", "a"}).status, 0);
  EXPECT_THAT(kept(), IsEmpty());
  EXPECT_FALSE(exists(file("history")));
}

TEST_F(CliHistory, IsNoMoreReadableThanTheList) {
  ::chmod(ownList().c_str(), 0644);
  change({"disable", "a"});
  EXPECT_EQ(modeOf(directory() + "/" + kept().back()), 0640U);
  ::chmod(ownList().c_str(), 0600);
  change({"disable", "b"});
  EXPECT_EQ(modeOf(directory() + "/" + kept().back()), 0600U);
  EXPECT_EQ(modeOf(directory()) & 0027U, 0U);
}

TEST_F(CliHistory, HasAsManyListsAsTheSettingSays) {
  setHistory("2");
  for (const char* name : {"a", "b", "c"}) change({"disable", name});
  ASSERT_THAT(kept(), ElementsAre(testing::StartsWith("2-"), testing::StartsWith("3-")));
  setHistory("1");
  change({"enable", "a"});
  EXPECT_THAT(kept(), ElementsAre(testing::StartsWith("4-")));
  setHistory("0");
  change({"enable", "b"});
  EXPECT_THAT(kept(), ElementsAre(testing::StartsWith("4-"))) << "no more, and no fewer";
}

TEST_F(CliHistory, HasTenListsByDefault) {
  for (int i = 0; i < 12; ++i) change({i % 2 == 0 ? "disable" : "enable", "a"});
  EXPECT_THAT(kept(), SizeIs(10));
  EXPECT_THAT(kept().front(), testing::StartsWith("3-"));
}

TEST_F(CliHistory, IsPrintedWithTheVersionsOfTheLists) {
  const Output none = sitelist({"history"});
  EXPECT_EQ(none.status, 1);
  EXPECT_THAT(none.err, HasSubstr(": the history is empty\n"));
  setOwnList(document(httpSite("depot"), "", versions("20260914083012")));
  change({"disable", "depot"});
  const Output output = sitelist({"history", "--format", "csv"});
  EXPECT_EQ(output.status, 0);
  EXPECT_THAT(
      output.out,
      MatchesRegex("number,time,replacedBy,globalVersion,localVersion,file\r?\n"
                   "1,[0-9-]{10}T[0-9:]{8}Z,edit disable,20260914083012,[^,]*,.*\\.xml\r?\n"));
}

TEST_F(CliHistory, UndoRestoresTheListToTheByteAndCanBeUndone) {
  const std::string first = "\xEF\xBB\xBF" + list();  // a byte order mark, which no edit writes
  writeFile(ownList(), first, 0640);
  change({"disable", "a"});
  const std::string second = readFile(ownList());
  const auto before = agentFiles();
  const Output trial = sitelist({"undo", "--dry-run"});
  EXPECT_EQ(trial.status, 0);
  EXPECT_THAT(trial.out, AllOf(HasSubstr("false -> true"), HasSubstr("Nothing was written.")));
  EXPECT_EQ(agentFiles(), before);
  const Output undone = sitelist({"undo"});
  EXPECT_EQ(undone.status, 0) << undone.err;
  EXPECT_THAT(undone.err, MatchesRegex("sitelist: " + ownList() +
                                       ": restored list 1, which \"edit disable\" replaced at "
                                       "[0-9-]{10}T[0-9:]{8}Z\n"));
  EXPECT_EQ(readFile(ownList()), first);
  EXPECT_EQ(modeOf(ownList()), 0640U) << "the list keeps its mode";
  EXPECT_EQ(sitelist({"undo"}).status, 0);
  EXPECT_EQ(readFile(ownList()), second);
  EXPECT_EQ(sitelist({"undo", "1"}).status, 0);
  EXPECT_EQ(readFile(ownList()), first);
  const auto same = agentFiles();
  const Output nothing = sitelist({"undo", "1"});
  EXPECT_EQ(nothing.status, 0);
  EXPECT_THAT(nothing.err, HasSubstr(": nothing to change: "));
  EXPECT_EQ(agentFiles(), same);
}

TEST_F(CliHistory, UndoRestoresAListThatIsGoneOrBroken) {
  change({"disable", "a"});
  setOwnList("<broken");
  EXPECT_EQ(sitelist({"undo"}).status, 0);
  EXPECT_EQ(readFile(ownList()), list());
  fs::remove(ownList());
  EXPECT_EQ(sitelist({"undo", "1"}).status, 0);
  EXPECT_EQ(readFile(ownList()), list());
}

TEST_F(CliHistory, UndoCreatesAMissingListWithTheModeOfAnyNewList) {
  ::chmod(ownList().c_str(), 0600);
  change({"disable", "a"});
  fs::remove(ownList());
  EXPECT_EQ(sitelist({"undo"}).status, 0);
  EXPECT_EQ(modeOf(ownList()), 0640U) << "the group of the agent reads the list";
}

TEST_F(CliHistory, UndoRefusesWhatTheAgentCouldNotRead) {
  const Output empty = sitelist({"undo"});
  EXPECT_EQ(empty.status, 7);
  EXPECT_THAT(empty.err, HasSubstr("the history is empty"));
  change({"disable", "a"});
  const Output missing = sitelist({"undo", "2"});
  EXPECT_EQ(missing.status, 7);
  EXPECT_THAT(missing.err, HasSubstr("the history has no list with the number 2\n  next: "));
  const std::string path = directory() + "/" + kept().front();
  const std::string present = readFile(ownList());
  for (const char* text : {"<ns:SiteLists>\n</a>", "<other/>", ""}) {
    writeFile(path, text);
    EXPECT_EQ(sitelist({"undo"}).status, 3) << text;
    EXPECT_EQ(readFile(ownList()), present);
  }
}

TEST_F(CliHistory, DiffComparesAListOfTheHistoryWithThePresentOne) {
  change({"disable", "a"});
  const Output output = sitelist({"diff", "--history", "1", "--exit-code"});
  EXPECT_EQ(output.status, 1);
  EXPECT_THAT(output.out, AllOf(HasSubstr("  to " + ownList()), HasSubstr("true -> false")));
  EXPECT_EQ(sitelist({"diff", "--history", "2"}).status, 7);
  EXPECT_EQ(sitelist({"diff", "--history", "1", ownList()}).status, 2);
  EXPECT_EQ(sitelist({"diff", ownList()}).status, 2);
}

TEST_F(CliHistory, AListThatCannotBeKeptIsNotReplaced) {
  fs::create_directory(directory());
  for (const Arguments& arguments :
       {Arguments{"edit", "disable", "a"}, {"policies", "set", "name", "value"}}) {
    const Output output = shell(
        "(trap '' XFSZ; ulimit -f 0; exec \"$0\" --agent-dir agent \"$@\") 2>&1 | cat", arguments);
    EXPECT_THAT(output.out,
                AllOf(HasSubstr("the list cannot be put into the history, so nothing was changed: "
                                "File too large\n  next: "),
                      Not(HasSubstr("Segmentation"))));
    EXPECT_EQ(readFile(ownList()), list());
    EXPECT_THAT(kept(), IsEmpty());
  }
}

TEST_F(CliHistory, HasTheListThatAKilledCommandReplaced) {
  change({"disable", "a"});
  // The state after a process was killed right after it had replaced the list.
  const std::string entry = directory() + "/" + kept().front();
  fs::rename(entry, directory() + "/pending-20261122T140512Z-import.xml");
  const Output printed = sitelist({"history", "--format", "csv"});
  EXPECT_THAT(printed.out, HasSubstr("\n1,2026-11-22T14:05:12Z,import,"));
  EXPECT_EQ(sitelist({"undo"}).status, 0);
  EXPECT_EQ(readFile(ownList()), list());
  EXPECT_THAT(kept(), ElementsAre("1-20261122T140512Z-import.xml", testing::StartsWith("2-")));
}

TEST_F(CliHistory, HasNothingOfAKilledCommandThatReplacedNothing) {
  fs::create_directory(directory());
  writeFile(directory() + "/pending-20261122T140512Z-import.xml", list());
  EXPECT_EQ(sitelist({"history"}).status, 1);
  change({"disable", "a"});
  ASSERT_THAT(kept(), SizeIs(1));
  EXPECT_THAT(kept().front(), testing::EndsWith("-edit_disable.xml"));
}

TEST_F(CliHistory, IgnoresFilesOfOthers) {
  fs::create_directory(directory());
  for (const char* name : {"notes.txt", "1-x.xml", "a-20261122T140512Z-import.xml", "7.xml"}) {
    writeFile(directory() + "/" + name, list());
  }
  EXPECT_EQ(sitelist({"history"}).status, 1);
  setHistory("1");
  change({"disable", "a"});
  change({"enable", "a"});
  EXPECT_TRUE(exists(directory() + "/notes.txt"));
  EXPECT_TRUE(exists(directory() + "/7.xml"));
}

class CliOlderList : public CliTest {
 protected:
  CliOlderList() {
    initAgent();
    setOwnList(document(httpSite("present"), "", versions("20260914083012")));
  }

  Output take(const std::string& command, const std::string& version,
              const Arguments& options = {}) {
    const std::string path =
        write("in/list.xml", document(httpSite("incoming"), "", versions(version)));
    return sitelist(Arguments{command, path} + options);
  }
};

TEST_F(CliOlderList, IsRefusedUnlessItIsAllowed) {
  for (const char* command : {"import", "install"}) {
    const auto before = agentFiles();
    for (const Arguments& options : {Arguments{}, {"--dry-run"}}) {
      const Output output = take(command, "20260914083011", options);
      EXPECT_EQ(output.status, 6) << output.err;
      EXPECT_THAT(output.err, HasSubstr(": the list is older than the agent's own list: its global "
                                        "version is 20260914083011, that of the agent's own list "
                                        "is 20260914083012\n  next: "));
    }
    EXPECT_EQ(agentFiles(), before);
    EXPECT_EQ(take(command, "20260914083011", {"--dry-run", "--allow-older"}).status, 0);
    EXPECT_EQ(take(command, "20260914083011", {"--allow-older"}).status, 0);
    EXPECT_THAT(readFile(ownList()), HasSubstr("incoming"));
    setOwnList(document(httpSite("present"), "", versions("20260914083012")));
  }
}

TEST_F(CliOlderList, IsOneWithTheTimeOfAnEarlierSecond) {
  EXPECT_EQ(take("import", "20260914083012").status, 0);
  EXPECT_EQ(take("import", "20260914083013").status, 0);
  EXPECT_EQ(take("import", "1").status, 0) << "not a time";
  EXPECT_EQ(take("import", "19990101000000").status, 0)
      << "the version of the agent's own list is not a time";
}

}  // namespace
}  // namespace test
