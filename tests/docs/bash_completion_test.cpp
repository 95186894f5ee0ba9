#include "tests/docs/completion_fixture.h"
#include "tests/docs/help_texts.h"

namespace test {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::UnorderedElementsAre;

// The function that the script registers, called as the shell does.
class BashCompletion : public CompletionTest {
 protected:
  // Returns the words that are offered for the last word.
  Words offered(const Words& words) {
    Words arguments = {c_scripts + "sitelist.bash"};
    arguments.insert(arguments.end(), words.begin(), words.end());
    const Output output =
        shell(tool() +
                  "; exec bash --norc -c 'source \"$1\"; shift; COMP_WORDS=(\"$@\")"
                  "; COMP_CWORD=$(($# - 1)); last=${@: -1}; _sitelist sitelist \"${last#=}\""
                  "; ((${#COMPREPLY[@]} == 0)) || printf \"%s\\n\" "
                  "\"${COMPREPLY[@]}\"' bash \"$@\"",
              arguments);
    EXPECT_EQ(output.status, 0);
    EXPECT_EQ(output.err, "");
    return splitLines(output.out);
  }
};

TEST_F(BashCompletion, OffersEveryCommandAndOption) {
  for (const HelpText& help : helpTexts()) {
    Words words = {"sitelist"};
    words.insert(words.end(), help.path.begin(), help.path.end());
    words.emplace_back("-");
    EXPECT_EQ(longOptions(offered(words)), help.options) << help.name();
    words.back() = "";
    const Words next = offered(words);
    for (const std::string& command : help.commands) {
      EXPECT_THAT(next, Contains(command)) << help.name();
    }
  }
}

TEST_F(BashCompletion, OffersWhatBeginsAsTyped) {
  EXPECT_THAT(offered({"sitelist", "sh"}), ElementsAre("show"));
  EXPECT_THAT(offered({"sitelist", "show", "--col"}), UnorderedElementsAre("--columns", "--color"));
  EXPECT_THAT(offered({"sitelist", "policies", "se"}), ElementsAre("set"));
  EXPECT_THAT(offered({"sitelist", "--verbose", "pol"}), ElementsAre("policies"));
  EXPECT_THAT(offered({"sitelist", "nothing-like-it"}), IsEmpty());
}

TEST_F(BashCompletion, OffersTheChoicesOfAnOption) {
  const auto forms = UnorderedElementsAre("table", "json", "jsonl", "csv", "xml");
  EXPECT_THAT(offered({"sitelist", "--format", ""}), forms);
  EXPECT_THAT(offered({"sitelist", "show", "--format", "="}), forms);
  EXPECT_THAT(offered({"sitelist", "show", "--format", "=", "x"}), ElementsAre("xml"));
  EXPECT_THAT(offered({"sitelist", "--format", "json", "--color", "a"}),
              UnorderedElementsAre("auto", "always"));
  EXPECT_THAT(offered({"sitelist", "--format", "show", "sh"}), ElementsAre("show"))
      << "a value is not a command";
}

TEST_F(BashCompletion, OffersFieldsRulesAndColumns) {
  EXPECT_THAT(offered({"sitelist", "get", "glob"}), ElementsAre("globalVersion"));
  EXPECT_THAT(offered({"sitelist", "explain-rule", "server-na"}), ElementsAre("server-name"));
  EXPECT_THAT(offered({"sitelist", "show", "--columns", "name,pa"}), Contains("name,path"));
}

TEST_F(BashCompletion, OffersFieldsToGiveValuesTo) {
  EXPECT_THAT(offered({"sitelist", "edit", "set", "Depot", "serverP"}), ElementsAre("serverPort="));
  EXPECT_THAT(offered({"sitelist", "edit", "set", "Depot", "order", "=", "1", "relative"}),
              ElementsAre("relativePath="));
  EXPECT_THAT(offered({"sitelist", "edit", "set", "Depot", "server", "="}), IsEmpty());
  EXPECT_THAT(offered({"sitelist", "edit", "set", "Depot", "server", "=", "use"}), IsEmpty());
  EXPECT_THAT(offered({"sitelist", "edit", "--dry-run", "add", "f"}), ElementsAre("ftp"));
}

TEST_F(BashCompletion, LeavesFilesToTheShell) {
  EXPECT_THAT(offered({"sitelist", "show", "inc"}), IsEmpty());
  EXPECT_THAT(offered({"sitelist", "--agent-dir", ""}), IsEmpty());
  EXPECT_THAT(offered({"sitelist", "policies", "inc"}), ElementsAre("incoming list.xml"))
      << "if the tool offers commands, the shell does not add files itself";
}

class BashTerminal : public CompletionTest {
 protected:
  ShellSession bash{{"bash", "--norc", "--noprofile", "-i"},
                    file(""),
                    "set -o emacs; " + tool() + "; source '" + c_scripts + "sitelist.bash'"};
};

TEST_F(BashTerminal, CompletesCommandsOptionsAndFiles) {
  EXPECT_EQ(bash.completed("sitelist val"), "[sitelist][validate]");
  EXPECT_EQ(bash.completed("sitelist show --form"), "[sitelist][show][--format]");
  EXPECT_EQ(bash.completed("sitelist show --format=j"), "[sitelist][show][--format=json]");
  EXPECT_EQ(bash.completed("sitelist show inc"), "[sitelist][show][incoming list.xml]");
  EXPECT_EQ(bash.completed("sitelist policies inc"), "[sitelist][policies][incoming list.xml]");
  EXPECT_EQ(bash.completed("sitelist merge --first=lists/o"),
            "[sitelist][merge][--first=lists/other.xml]");
  EXPECT_EQ(bash.completed("sitelist --agent-dir l"), "[sitelist][--agent-dir][lists/]");
  EXPECT_EQ(bash.completed("sitelist --agent-dir inc"),
            "[sitelist][--agent-dir][incoming list.xml]");
  EXPECT_EQ(bash.completed("sitelist init --mesh-command inc"),
            "[sitelist][init][--mesh-command][incoming list.xml]");
  EXPECT_EQ(bash.completed("sitelist edit --file inc"),
            "[sitelist][edit][--file][incoming list.xml]");
  EXPECT_EQ(bash.completed("sitelist --format inc"), "[sitelist][--format][inc]");
  EXPECT_EQ(bash.completed("sitelist policies set inc"), "[sitelist][policies][set][inc]");
}

TEST_F(BashTerminal, CompletesNamesOfSitesAndRunsNothingOfThem) {
  const std::string start = "sitelist --agent-dir agent get server --site ";
  const std::string words = "[sitelist][--agent-dir][agent][get][server][--site]";
  EXPECT_EQ(bash.completed(start + "Ma"), words + "[Main depot]");
  EXPECT_EQ(bash.completed(start + "Main\\ d"), words + "[Main depot]");
  EXPECT_EQ(bash.completed(start + "'Ma"), words + "[Main depot]");
  EXPECT_EQ(bash.completed(start + "\"Ma"), words + "[Main depot]");
  EXPECT_EQ(bash.completed(start + "\\$"), words + "[$(touch hacked)]");
  EXPECT_EQ(bash.completed(start + "'$"), words + "[$(touch hacked)]");
  EXPECT_EQ(bash.completed(start + "i"), words + "[it's \\ \"so\"]");
  EXPECT_EQ(bash.completed(start + "東"), words + "[東京支社]");
  EXPECT_EQ(bash.completed("sitelist --agent-dir='agent' get server --site Ma"),
            "[sitelist][--agent-dir=agent][get][server][--site][Main depot]");
  bash.listed("sitelist --agent-dir \"$(touch hacked)\" get server --site M");
  bash.listed("sitelist --agent-dir agent get server --site ");
  EXPECT_FALSE(exists(file("hacked")));
}

TEST_F(BashTerminal, ReadsANameBackAsItIs) {
  for (const auto& [typed, name] : setSpecialNames()) {
    for (const char* option : {"--site ", "--site="}) {
      const std::string end = option[6] == '=' ? "[--site=" + name + ']' : "[--site][" + name + ']';
      EXPECT_EQ(bash.completed("sitelist --agent-dir agent get server " + (option + typed)),
                "[sitelist][--agent-dir][agent][get][server]" + end);
    }
  }
  EXPECT_FALSE(exists(file("hacked")));
}

TEST_F(BashTerminal, FindsTheAgentAndTheListThatTheLineNames) {
  const std::string end = "[--site][Main depot]";
  EXPECT_EQ(bash.completed("sitelist get server --agent-dir ~/agent --site Ma"),
            "[sitelist][get][server][--agent-dir][" + file("/agent") + ']' + end);
  EXPECT_EQ(bash.completed("sitelist get server --agent-dir \\a\"g\"'ent' --site Ma"),
            "[sitelist][get][server][--agent-dir][agent]" + end);
  EXPECT_EQ(bash.completed("sitelist edit --file 'lists/other.xml' disable de"),
            "[sitelist][edit][--file][lists/other.xml][disable][depot]");
}

TEST_F(BashTerminal, AsksTheProgramThatIsCalled) {
  makeOtherTool();
  EXPECT_EQ(bash.completed("./sitelist o"), "[./sitelist][other]");
  EXPECT_EQ(bash.completed("~/sitelist o"), "[" + file("/sitelist") + "][other]");
  EXPECT_EQ(bash.completed("lists/sitelist inc"), "[lists/sitelist][inc]") << "there is none";
}

}  // namespace
}  // namespace test
