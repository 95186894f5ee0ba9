#include <sys/stat.h>

#include <filesystem>
#include <future>
#include <nlohmann/json.hpp>

#include "tests/cli/edit_fixture.h"
#include "tests/support/locker.h"

// Writing of edits: locks, drafts and secrets.
namespace test {
namespace {

namespace fs = std::filesystem;
using testing::AllOf;
using testing::HasSubstr;
using testing::Not;

class CliEditWriting : public CliEdit {
 protected:
  CliEditWriting() { setOwnList(text()); }

  static std::string text() { return document(sitesWithOrders({"1", "2", "3", "4", "5", "6"})); }
};

TEST_F(CliEditWriting, WaitsForOtherWritersAndReadersOnlyAsLongAsItIsTold) {
  Locker other(file("agent"));
  for (const Locker::Mode mode : {Locker::Mode::Write, Locker::Mode::Read}) {
    ASSERT_TRUE(other.lock(mode));
    for (const Arguments& arguments : {Arguments{"edit", "enable", "a"}, {"undo"}}) {
      const auto before = agentFiles();
      const Output output = sitelist(arguments + Arguments{"--wait", "0"});
      EXPECT_EQ(output.status, 4) << output.err;
      EXPECT_THAT(output.err, HasSubstr("locked by another process"));
      EXPECT_EQ(agentFiles(), before);
    }
    const Output trial = edit({"enable", "a", "--wait", "0", "--dry-run"});
    EXPECT_EQ(trial.status, 0) << "a dry run needs no lock: " << trial.err;
    other.unlock(mode);
  }
  ASSERT_TRUE(other.lock(Locker::Mode::Write));
  auto waiting = std::async(std::launch::async, [this] {
    return edit({"enable", "a", "--wait", "3600"});
  });
  other.unlock(Locker::Mode::Write);
  EXPECT_EQ(waiting.get().status, 0);
  change({"disable", "a", "--wait", "0"});
}

TEST_F(CliEditWriting, LosesNoChangeOfAnotherWriter) {
  const std::string script =
      "for name in a b c d e f; do\n"
      "  \"$0\" --agent-dir agent edit --wait 3600 \"$@\" enable $name 2>>log || echo failed &\n"
      "done; wait";
  EXPECT_EQ(shell(script).out, "") << readFile(file("log"));
  for (const auto& site : sites()) EXPECT_EQ(site.at("enabled"), "true") << site.at("name");
  std::vector<std::size_t> enabled;
  for (int number = 1; number <= 6; ++number) {
    const std::string list = sitelist({"diff", "--history", std::to_string(number), "--json"}).out;
    enabled.push_back(nlohmann::json::parse(list)["changes"].size());
  }
  EXPECT_THAT(enabled, testing::ElementsAre(6, 5, 4, 3, 2, 1)) << "each change has its entry";
  const std::string copy = write("copy.xml", text());
  EXPECT_EQ(shell(script, {"--file", copy}).out, "") << readFile(file("log"));
  setOwnList(readFile(copy));
  for (const auto& site : sites()) EXPECT_EQ(site.at("enabled"), "true") << site.at("name");
}

TEST_F(CliEditWriting, FailsWhenTheLockCannotBeHadAtAll) {
  fs::remove_all(file("agent/locks"));
  write("agent/locks", "in the way");
  const Output output = edit({"enable", "a"});
  EXPECT_EQ(output.status, 4) << output.err;
  EXPECT_THAT(output.err,
              AllOf(HasSubstr("Cannot lock"), HasSubstr("the agent's locks cannot be used")));
  EXPECT_EQ(readFile(ownList()), text());
}

TEST_F(CliEditWriting, ADryRunTellsTheChangeAndWritesNothing) {
  const auto before = agentFiles();
  const std::vector<std::pair<Arguments, std::string>> trials = {
      {{"enable", "a"}, "enabled"},
      {{"set", "b", "server=there.example"}, "there.example"},
      {{"add", "unc", "new", "server=h"}, "new"},
      {{"remove", "c"}, "removed"},
      {{"rename", "d", "other"}, "other"},
      {{"move", "e", "first"}, "reordered"},
  };
  for (const auto& [arguments, expected] : trials) {
    const Output output = edit(Arguments{"--dry-run"} + arguments);
    EXPECT_EQ(output.status, 0) << output.err;
    EXPECT_EQ(output.err, "");
    EXPECT_THAT(output.out, AllOf(HasSubstr("What would change in " + ownList()),
                                  HasSubstr(expected), HasSubstr("Nothing was written.")));
    EXPECT_EQ(agentFiles(), before);
  }
  const Output none = edit({"--dry-run", "--json", "disable", "a"});
  EXPECT_THAT(none.out, HasSubstr("\"differs\": false"));
  EXPECT_THAT(edit({"--dry-run", "enable", "none"}).err, HasSubstr("there is no site"));
}

TEST_F(CliEditWriting, EditsAnotherFileWithoutAnAgent) {
  const std::string path = write("lists/list.xml", text());
  ::chmod(path.c_str(), 0604);
  const auto before = agentFiles();
  EXPECT_EQ(edit({"--file", path, "enable", "a"}).status, 0);
  EXPECT_EQ(agentFiles(), before);
  const Output output = bare({"--agent-dir", file("none"), "edit", "--file", path, "disable", "a"});
  EXPECT_EQ(output.status, 0) << output.err;
  EXPECT_FALSE(exists(file("none")));
  EXPECT_THAT(readFile(path), HasSubstr("Enabled=\"0\""));
  EXPECT_EQ(modeOf(path), 0604U);
  EXPECT_EQ(bare({"--agent-dir", file("none"), "edit", "enable", "a"}).status, 4);
}

TEST_F(CliEditWriting, TakesAnotherNameOfTheOwnListForTheOwnList) {
  fs::create_symlink(ownList(), file("link.xml"));
  Locker other(file("agent"));
  ASSERT_TRUE(other.lock(Locker::Mode::Write));
  EXPECT_EQ(edit({"--file", file("link.xml"), "--wait", "0", "enable", "a"}).status, 4);
  other.unlock(Locker::Mode::Write);
  EXPECT_EQ(edit({"--file", file("link.xml"), "enable", "a"}).status, 0);
  EXPECT_TRUE(fs::is_symlink(file("link.xml")));
  EXPECT_EQ(site("a")["enabled"], "true");
}

// A file size limit of 0 acts like a full file system.
TEST_F(CliEditWriting, KeepsTheOldListWhenThereIsNoRoom) {
  write("agent/etc/history/1-20260101T000000Z-import.xml", document(""));
  write("agent/agent.toml", "history = 0\n");
  const auto before = agentFiles();
  for (const Arguments& arguments : {Arguments{"edit", "enable", "a"}, {"undo"}}) {
    const Output output = shell(
        "(trap '' XFSZ; ulimit -f 0; exec \"$0\" --agent-dir agent \"$@\") 2>&1 | cat", arguments);
    EXPECT_THAT(output.out, AllOf(HasSubstr("written"), HasSubstr("\n  next: ")));
    EXPECT_EQ(agentFiles(), before);
  }
}

// A readable list whose directory no longer exists.
TEST_F(CliEditWriting, FailsWhenTheListCannotBeReplaced) {
  write("lists/list.xml", text());
  const Output output = shell(
      "exec 3<lists/list.xml; rm -r lists; \"$0\" edit --file /dev/fd/3 enable a; echo $?; cat "
      "<&3");
  EXPECT_EQ(output.out, "4\n" + text());
  EXPECT_THAT(output.err, HasSubstr("/dev/fd/3: the file could not be written (-11, 0xFFFFFFF5)"));
}

class CliEditPassword : public CliEditWriting {
 protected:
  static constexpr const char* c_clear = "Canary & 東京";

  void expectHidden(const Output& output) {
    EXPECT_THAT(output.out + output.err, Not(HasSubstr("Canary")));
  }
};

TEST_F(CliEditPassword, ComesFromStandardInputOrAFileAndIsShownNowhere) {
  const std::string path = write("secret.txt", std::string(c_clear) + "\nsecond line\n");
  const std::string input = std::string(c_clear) + "\n";
  expectHidden(edit({"--verbose", "set", "a", "--password-stdin", "--dry-run"}, input));
  expectHidden(edit({"--verbose", "set", "a", "--password-stdin"}, input));
  EXPECT_EQ(site("a")["password"], c_clear);
  changeNothing({"set", "a", "--password-file", path});
  changeNothing({"set", "a", "--password-stdin"}, input);
  expectHidden(edit({"--verbose", "--json", "add", "ftp", "new", "server=h", "userName=u",
                     "--password-file", path}));
  EXPECT_EQ(site("new")["password"], c_clear);
  changeNothing({"add", "ftp", "new", "server=h", "userName=u", "--password-file", path});
  expectHidden(edit({"add", "ftp", "new", "--password-stdin"}, "another Canary\n"));
  for (const auto& [name, bytes] : agentFiles()) {
    EXPECT_THAT(bytes, Not(HasSubstr("Canary"))) << name;
  }
  EXPECT_THAT(readFile(ownList()), HasSubstr("<Password Encrypted=\"1\">"));
}

TEST_F(CliEditPassword, GoesToTheFieldThatIsNamed) {
  setOwnList(document("<ProxyConfigList><ProxyConfig Name=\"x\"/></ProxyConfigList>"));
  for (const std::string field : {"httpProxyPassword", "ftpProxyPassword",
                                  "alternateHttpProxyPassword", "alternateFtpProxyPassword"}) {
    const Arguments arguments = {"set", "x", "--password-stdin", "--password-field", field};
    change(arguments, field);
    changeNothing(arguments, field);
  }
  auto proxy = site("x");
  for (const std::string field : {"httpProxyPassword", "ftpProxyPassword",
                                  "alternateHttpProxyPassword", "alternateFtpProxyPassword"}) {
    EXPECT_EQ(proxy[field], field);
  }
  EXPECT_THAT(fail(2, {"set", "x", "--password-stdin"}, "x"),
              AllOf(HasSubstr("--password-field"), HasSubstr("alternateFtpProxyPassword")));
  fail(2, {"set", "x", "--password-stdin", "--password-field", "httpProxyUser"}, "x");
}

TEST_F(CliEditPassword, HasNoPlaceOnTheCommandLine) {
  for (const std::string given : {"password=Canary", "httpProxyPassword=Canary", "Canary"}) {
    const std::string message = fail(2, {"set", "a", given});
    EXPECT_THAT(message, Not(HasSubstr("Canary")));
    if (given != "Canary") {
      EXPECT_THAT(message, AllOf(HasSubstr("--password-stdin"), HasSubstr("--password-file")));
    }
  }
  EXPECT_THAT(fail(2, {"add", "http", "new", "password=Canary"}), HasSubstr("--password-stdin"));
}

TEST_F(CliEditPassword, RefusesOneThatIsNone) {
  change({"set", "a", "--password-stdin"}, std::string(259, 'x'));
  EXPECT_THAT(fail(2, {"set", "a", "--password-stdin"}, std::string(260, 'x')),
              HasSubstr("longer than 259 characters"));
  fail(2, {"set", "a", "--password-stdin"}, "\xFF\xFE\n");
  EXPECT_THAT(fail(4, {"set", "a", "--password-file", file("none")}), HasSubstr(file("none")));
  fail(4, {"set", "a", "--password-file", file("agent")});
  fail(2, {"set", "a", "--password-file", ""});
  fail(2, {"set", "a", "--password-file", write("secret", "x"), "--password-stdin"}, "x");
}

TEST_F(CliEditPassword, NeedsTheKeyOfTheAgent) {
  const std::string path = write("list.xml", text());
  fs::remove(file("agent/keystore/password.key"));
  const Arguments set = {"set", "a", "--password-stdin"};
  EXPECT_THAT(fail(5, Arguments{"--file", path} + set, "x"), HasSubstr("password.key"));
  EXPECT_THAT(fail(5, Arguments{"--dry-run"} + set, "x"), HasSubstr("password.key"));
  EXPECT_EQ(readFile(path), text());
  change(set, "x");
  EXPECT_EQ(site("a")["password"], "x") << "for the agent's own list the tool creates the key";
  EXPECT_EQ(edit(Arguments{"--file", path} + set, "y").status, 0);
  setOwnList(readFile(path));
  EXPECT_EQ(site("a")["password"], "y");
  write("agent/keystore/password.key", "too short");
  fail(5, set, "z");
}

TEST_F(CliEditPassword, StaysAsItIsWhenTheKeyDoesNotOpenIt) {
  setOwnList(document(httpSite("a", "1", "bG9zdA==") + httpSite("b", "2", "bG9zdA==")));
  change({"disable", "a"});
  change({"set", "a", "userName=x", "--password-stdin"}, "new");
  EXPECT_EQ(site("a")["password"], "new");
  EXPECT_THAT(readFile(ownList()), HasSubstr("<Password Encrypted=\"1\">bG9zdA==</Password>"));
  change({"set", "b", "--password-stdin"}, "\n");
  EXPECT_THAT(readFile(ownList()), Not(HasSubstr("bG9zdA==")))
      << "the user requested an empty password";
  changeNothing({"set", "b", "--password-stdin"}, "\n");
}

}  // namespace
}  // namespace test
