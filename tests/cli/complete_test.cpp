#include <sys/stat.h>

#include <filesystem>

#include "tests/cli/cli_fixture.h"
#include "tests/cli/documents.h"
#include "tests/support/locker.h"

// The completion candidates that the tool prints for shells.
namespace test {
namespace {

using testing::AllOf;
using testing::Contains;
using testing::Each;
using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsSupersetOf;
using testing::Not;
using testing::StartsWith;
using testing::UnorderedElementsAre;

using Words = std::vector<std::string>;

const char* const c_nothing = ":nothing";
const char* const c_noSpace = ":nospace";
const char* const c_files = ":files";
const char* const c_directories = ":directories";

class CliComplete : public CliTest {
 protected:
  // Returns the lines that the tool prints for these words.
  Words linesFor(const Words& words) {
    Words arguments = {"__complete", "--"};
    arguments.insert(arguments.end(), words.begin(), words.end());
    return linesOf(bare(arguments));
  }

  static Words linesOf(const Output& output) {
    EXPECT_EQ(output.status, 0);
    EXPECT_EQ(output.err, "");
    Words lines;
    for (std::size_t begin = 0, end; begin < output.out.size(); begin = end + 1) {
      end = output.out.find('\n', begin);
      lines.push_back(output.out.substr(begin, end - begin));
    }
    return lines;
  }

  // Returns the candidates that begin with the last word, without descriptions.
  Words offered(const Words& words) {
    Words found;
    Words lines = linesFor(words);
    EXPECT_FALSE(lines.empty());
    if (!lines.empty()) lines.pop_back();
    for (const std::string& line : lines) {
      if (line.rfind(words.back(), 0) == 0) found.push_back(line.substr(0, line.find('\t')));
    }
    return found;
  }

  // The description of a candidate; fails the test when there is none.
  std::string description(const Words& words, const std::string& value) {
    const std::string front = value + '\t';
    for (const std::string& line : linesFor(words)) {
      if (line.rfind(front, 0) == 0) return line.substr(front.size());
    }
    ADD_FAILURE() << value << " is not offered with a description";
    return "";
  }

  std::string lastLine(const Words& words) {
    const Words lines = linesFor(words);
    return lines.empty() ? "" : lines.back();
  }

  // Returns the offered site names for an agent's list with these sites.
  Words sites(const std::string& elements) {
    setOwnList(document(elements));
    return offered({"--agent-dir", file("agent"), "edit", "disable", ""});
  }
};

TEST_F(CliComplete, OffersCommandsWithWhatTheyDo) {
  EXPECT_THAT(linesFor({""}), AllOf(Contains(StartsWith("show\t")), Contains(StartsWith("edit\t")),
                                    Contains(StartsWith("protect\t"))));
  EXPECT_THAT(bare({"--help"}).out, HasSubstr(' ' + description({""}, "show") + '\n'));
  EXPECT_EQ(lastLine({""}), c_nothing);
  EXPECT_THAT(offered({"sh"}), ElementsAre("show"));
  EXPECT_THAT(offered({"--verbose", "--format", "show", "sh"}), ElementsAre("show"));
  EXPECT_THAT(offered({"edit", "re"}), UnorderedElementsAre("remove", "rename"));
  EXPECT_THAT(offered({"edit", "disable", "x", "re"}), ElementsAre());
  EXPECT_THAT(offered({"policies", "lists/SiteList.xml", "se"}), ElementsAre());
}

TEST_F(CliComplete, OffersCommandsAlsoWithoutWhatTheLineBeginsWith) {
  EXPECT_THAT(linesFor({"lidat"}), Contains(StartsWith("validate\t")))
      << "the shell decides how it completes a word";
}

TEST_F(CliComplete, OffersOptionsOfACommandAndOfThoseAboveIt) {
  const Words lines = linesFor({"show", "-"});
  EXPECT_THAT(lines, AllOf(Contains(StartsWith("--agent-dir\t")), Contains(StartsWith("-h\t")),
                           Contains(StartsWith("--version\t"))));
  EXPECT_THAT(bare({"show", "--help"}).out,
              HasSubstr(' ' + description({"show", "-"}, "--wide") + '\n'));
  EXPECT_THAT(lines, Not(Contains(StartsWith("show"))));
  EXPECT_EQ(lines.back(), c_nothing);
  EXPECT_THAT(offered({"edit", "set", "--"}),
              IsSupersetOf({"--kind", "--password-file", "--dry-run", "--file", "--json"}));
  EXPECT_THAT(offered({"show", "--col"}), UnorderedElementsAre("--columns", "--color"));
}

TEST_F(CliComplete, OffersAnOptionOnceUnlessItMayBeRepeated) {
  const Words left = offered({"show", "--wide", "--columns=name", "--filter", "x", "--"});
  EXPECT_THAT(left, IsSupersetOf({"--filter", "--sort", "--help"}));
  EXPECT_THAT(left, Not(Contains("--wide")));
  EXPECT_THAT(left, Not(Contains("--columns")));
}

TEST_F(CliComplete, OffersTheChoicesOfAnOption) {
  const Words plain = {"table", "json", "jsonl", "csv", "xml", c_nothing};
  EXPECT_EQ(linesFor({"--format", ""}), plain);
  EXPECT_EQ(linesFor({"show", "--format", "j"}), plain);
  EXPECT_THAT(offered({"show", "--format=x"}), ElementsAre("--format=xml"));
  EXPECT_THAT(offered({"edit", "add", "f"}), ElementsAre("ftp"));
  EXPECT_THAT(offered({"explain-rule", "server-na"}), ElementsAre("server-name"));
  EXPECT_EQ(linesFor({"show", "--filter", ""}), Words{c_nothing});
  EXPECT_EQ(linesFor({"--json="}), Words{c_nothing}) << "a flag has no value";
}

TEST_F(CliComplete, GoesOnWithAListBehindItsCommas) {
  EXPECT_THAT(offered({"show", "--columns", "na"}), ElementsAre("name"));
  EXPECT_THAT(offered({"show", "--columns", "kind,name,pat"}), ElementsAre("kind,name,path"));
  EXPECT_THAT(offered({"show", "--columns=name,pat"}), ElementsAre("--columns=name,path"));
  EXPECT_EQ(lastLine({"show", "--columns", "name,"}), c_noSpace);
  EXPECT_EQ(lastLine({"show", "--sort", "na"}), c_nothing);
}

TEST_F(CliComplete, OffersFieldsUntilOneHasItsValue) {
  EXPECT_THAT(offered({"edit", "set", "Depot", "order=1", "relative"}),
              ElementsAre("relativePath="));
  EXPECT_THAT(offered({"edit", "set", "Depot", "n"}), ElementsAre()) << "rename sets the name";
  EXPECT_EQ(lastLine({"edit", "set", "Depot", ""}), c_noSpace);
  EXPECT_EQ(linesFor({"edit", "set", "Depot", "server="}), Words{c_nothing});
  EXPECT_EQ(linesFor({"edit", "set", "Depot", "server=use"}), Words{c_nothing});
  EXPECT_THAT(offered({"edit", "set", "Depot", "--password-field", "httpP"}),
              ElementsAre("httpProxyPassword"));
}

TEST_F(CliComplete, PutsNoSpaceBehindAWordThatCannotEndThere) {
  EXPECT_EQ(lastLine({"get", "pol"}), c_noSpace) << "policy.";
  EXPECT_EQ(lastLine({"get", "glob"}), c_nothing);
  EXPECT_EQ(lastLine({"get", ""}), c_nothing);
}

TEST_F(CliComplete, LeavesFilesAndDirectoriesToTheShell) {
  for (const Words& words : {Words{"show", "x"},
                             {"validate", "a", "b", ""},
                             {"merge", "--first="},
                             {"edit", "--file", "x"},
                             {"init", "--mesh-command", "/bin/sh", "--format", ""}}) {
    EXPECT_EQ(linesFor(words), Words{c_files}) << testing::PrintToString(words);
  }
  EXPECT_EQ(linesFor({"--agent-dir", ""}), Words{c_directories});
  EXPECT_EQ(linesFor({"show", "--agent-dir=x"}), Words{c_directories});
  EXPECT_EQ(linesFor({"get", "type", "a", ""}), Words{c_nothing}) << "there is one file only";
  EXPECT_EQ(linesFor({"show", "a", ""}), Words{c_files});
  EXPECT_THAT(linesFor({"policies", ""}),
              ElementsAre(StartsWith("set\t"), StartsWith("unset\t"), c_files));
}

TEST_F(CliComplete, OffersNoOptionAndNoCommandBehindTwoDashes) {
  EXPECT_EQ(linesFor({"show", "--", "-"}), Words{c_files});
  EXPECT_EQ(linesFor({"--", ""}), Words{c_nothing});
  EXPECT_EQ(linesFor({"--", "show", ""}), Words{c_nothing});
  EXPECT_EQ(linesFor({"policies", "--", ""}), Words{c_files});
}

TEST_F(CliComplete, OffersNothingBehindWordsThatItDoesNotKnow) {
  EXPECT_EQ(linesFor({"bogus", ""}), Words{c_nothing});
  EXPECT_EQ(linesFor({"bogus", "show", ""}), Words{c_files}) << "a command may still follow";
  EXPECT_EQ(linesFor({"show", "--bogus="}), Words{c_nothing});
  EXPECT_EQ(linesFor({"policies", "set", "a", "1", "x", ""}), Words{c_nothing});
  EXPECT_EQ(linesFor({"show", "--bogus", ""}), Words{c_files}) << "an option is no argument";
}

TEST_F(CliComplete, OffersTheSitesOfTheAgentThatTheLineNames) {
  initAgent();
  setOwnList(document(serverSite({{"Name", "Main server"}}) + httpSite("Depot") +
                      httpSite("Depot", "2") +
                      "<ProxyConfigList><ProxyConfig Name=\"Proxy\"/></ProxyConfigList>"));
  const Words names = {"Depot", "Main server", "Proxy", c_nothing};
  EXPECT_EQ(linesFor({"--agent-dir", file("agent"), "edit", "disable", ""}), names);
  EXPECT_EQ(linesFor({"edit", "move", "a", "before", "--agent-dir=" + file("agent"), ""}), names);
  EXPECT_THAT(offered({"get", "server", "--agent-dir", file("agent") + "/", "--site=Ma"}),
              ElementsAre("--site=Main server"));
  EXPECT_THAT(linesOf(shell("exec \"$0\" __complete -- --agent-dir agent get server --site ''")),
              Contains("Depot"));
  EXPECT_THAT(linesOf(shell("export HOME=\"$PWD\"; "
                            "exec \"$0\" __complete -- --agent-dir '~/agent' edit enable ''")),
              Contains("Depot"));
}

TEST_F(CliComplete, OffersTheSitesOfTheListThatTheLineNames) {
  initAgent();
  setOwnList(document(httpSite("Own")));
  const std::string other = write("other.xml", document(httpSite("Other")));
  const Words names = {"Other", c_nothing};
  EXPECT_EQ(linesFor({"--agent-dir", file("agent"), "edit", "--file", other, "enable", ""}), names);
  EXPECT_EQ(linesFor({"--agent-dir", file("agent"), "get", "server", other, "--site", ""}), names);
}

TEST_F(CliComplete, OffersNoSiteThatCannotBeNamed) {
  initAgent();
  const std::string longest(259, 'x');
  EXPECT_THAT(sites(httpSite(longest)), ElementsAre(longest));
  EXPECT_THAT(sites(httpSite(longest + 'x')), ElementsAre())
      << "the name is longer than a record can hold";
  EXPECT_THAT(sites(httpSite("")), ElementsAre());
  EXPECT_THAT(sites("<OtherSite Name=\"Depot\"/>"), ElementsAre());
}

TEST_F(CliComplete, OffersHostileNamesOnlyAsFarAsTheyAreHarmless) {
  initAgent();
  EXPECT_THAT(sites(httpSite("it's \\ &quot;so&quot; $(x) `y` &amp; | ; &lt; * ~ ! # %n")),
              ElementsAre("it's \\ \"so\" $(x) `y` & | ; < * ~ ! # %n"));
  EXPECT_THAT(sites(httpSite(":files")), ElementsAre(":files"));
  EXPECT_THAT(sites(httpSite("東京支社")), ElementsAre("東京支社"));
  for (const char* harmful :
       {"a&#9;b", "a&#10;b", "a&#13;b", "a&#x7F;b", "a&#x9B;31mb", "a&#x202E;b", "a&#x2028;b"}) {
    EXPECT_THAT(sites(httpSite(harmful) + httpSite("Depot", "2")), ElementsAre("Depot")) << harmful;
  }
}

TEST_F(CliComplete, OffersANameThatLooksLikeAnOptionOnlyWhereItIsNone) {
  initAgent();
  setOwnList(document(httpSite("--agent-dir=/x") + httpSite("Depot", "2") + httpSite("-", "3")));
  const std::string agent = "--agent-dir=" + file("agent");
  EXPECT_EQ(linesFor({agent, "edit", "disable", ""}), (Words{"-", "Depot", c_nothing}));
  EXPECT_THAT(offered({agent, "edit", "disable", "--", "-"}), ElementsAre("-", "--agent-dir=/x"));
  EXPECT_THAT(offered({agent, "get", "server", "--site=-"}),
              ElementsAre("--site=-", "--site=--agent-dir=/x"));
  EXPECT_THAT(offered({agent, "get", "server", "--site", "-"}), ElementsAre("-", "--agent-dir=/x"));
}

TEST_F(CliComplete, TakesWordsOfAnyBytes) {
  const std::string bytes = "\x01\t\n\x1B[31m\xFF\xC3(";
  EXPECT_EQ(linesFor({bytes, ""}), Words{c_nothing});
  EXPECT_EQ(linesFor({"edit", "disable", "--agent-dir", bytes, ""}), Words{c_nothing});
  EXPECT_EQ(linesFor({"show", "--columns", bytes + ","}), Words{c_noSpace})
      << "a word with unprintable characters is not completed";
  EXPECT_THAT(linesFor({bytes}), Contains(StartsWith("show\t")));
  EXPECT_THAT(linesFor({"-" + bytes}), Contains(StartsWith("--json\t")));
  EXPECT_EQ(linesFor({std::string(100000, 'x'), std::string(100000, '=')}), Words{c_nothing});
}

TEST_F(CliComplete, SaysNothingOfErrors) {
  const Words none = {c_nothing};
  const auto sitesOf = [&] {
    return linesFor({"--agent-dir", file("agent"), "edit", "disable", ""});
  };
  EXPECT_EQ(sitesOf(), none) << "no agent";
  initAgent();
  EXPECT_EQ(sitesOf(), none) << "no list";
  setOwnList("<list><a></b></list>");
  EXPECT_EQ(sitesOf(), none) << "not an XML document";
  setOwnList("<list/>");
  EXPECT_EQ(sitesOf(), none) << "not a site list";
  std::filesystem::remove(ownList());
  ASSERT_EQ(::mkfifo(ownList().c_str(), 0600), 0);
  EXPECT_EQ(sitesOf(), none) << "a pipe that nobody writes to";
  EXPECT_EQ(linesFor({}), none);
  EXPECT_EQ(linesOf(bare({"__complete"})), Words());
  EXPECT_EQ(linesOf(bare({"__complete", "show"})), Words());
  EXPECT_EQ(linesOf(shell("exec \"$0\" __complete -- '' >&-")), Words());
  EXPECT_EQ(linesOf(shell("mkdir gone && cd gone && rmdir ../gone && "
                          "exec \"$0\" __complete -- --agent-dir a edit disable ''")),
            none);
}

TEST_F(CliComplete, ChangesNothingAndNeedsNoKeyAndNoSettings) {
  initAgent();
  setOwnList(document(httpSite("Depot", "1", protectedText("secret"))));
  for (const char* name : {"agent/locks", "agent/keystore", "agent/mesh"}) {
    std::filesystem::remove_all(file(name));
  }
  write("agent/agent.toml", "managed = maybe");
  const auto before = agentFiles();
  EXPECT_THAT(linesOf(shell("export TMPDIR=\"$PWD/none\"; "
                            "exec \"$0\" __complete -- --agent-dir agent edit disable ''")),
              ElementsAre("Depot", c_nothing));
  EXPECT_EQ(agentFiles(), before);
  for (const char* name : {"agent/locks", "agent/keystore", "agent/mesh", "none"}) {
    EXPECT_FALSE(exists(file(name))) << name;
  }
}

TEST_F(CliComplete, DoesNotWaitForAWriter) {
  initAgent();
  setOwnList(document(httpSite("Depot")));
  Locker other(file("agent"));
  ASSERT_TRUE(other.lock(Locker::Mode::Write));
  EXPECT_THAT(linesFor({"--agent-dir", file("agent"), "edit", "disable", ""}),
              ElementsAre("Depot", c_nothing));
  other.unlock(Locker::Mode::Write);
}

TEST_F(CliComplete, IsToldToNobody) {
  EXPECT_THAT(bare({"--help"}).out, Not(HasSubstr("__complete")));
  EXPECT_THAT(linesFor({""}), Each(Not(HasSubstr("__complete"))));
  EXPECT_THAT(linesFor({"_"}), Each(Not(HasSubstr("__complete"))));
  const Output wrong = bare({"__complet"});
  EXPECT_EQ(wrong.status, 2);
  EXPECT_THAT(wrong.err, Not(HasSubstr("__complete")));
  EXPECT_EQ(bare({"show", "__complete", "--"}).status, 4)
      << "in another place it is an ordinary word";
}

}  // namespace
}  // namespace test
