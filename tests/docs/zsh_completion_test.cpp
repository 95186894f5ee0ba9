#include <regex>

#include "tests/docs/completion_fixture.h"
#include "tests/docs/help_texts.h"

namespace test {
namespace {

using testing::HasSubstr;

class ZshTerminal : public CompletionTest {
 protected:
  ShellSession zsh{{"zsh", "-f", "-i"},
                   file(""),
                   "bindkey -e; unsetopt beep auto_menu; LISTMAX=10000; " + tool() + "; fpath=('" +
                       c_scripts +
                       "' $fpath); autoload -Uz compinit; compinit -u -D; zstyle "
                       "':completion:*' verbose no"};

  std::set<std::string> optionsListed(const std::string& line) {
    const std::string text = zsh.listed(line);
    static const std::regex option("--[a-z-]+");
    const std::size_t begin = text.find(line) + line.size();
    std::set<std::string> found;
    for (std::sregex_iterator i(text.begin() + begin, text.end(), option), end; i != end; ++i) {
      found.insert(i->str());
    }
    return found;
  }
};

TEST_F(ZshTerminal, OffersEveryCommandAndOption) {
  for (const HelpText& help : helpTexts()) {
    EXPECT_EQ(optionsListed(help.name() + " --"), help.options) << help.name();
    if (help.commands.empty()) continue;
    const std::string listed = zsh.listed(help.name() + " ");
    for (const std::string& command : help.commands) EXPECT_THAT(listed, HasSubstr(command));
  }
}

TEST_F(ZshTerminal, CompletesCommandsOptionsAndFiles) {
  EXPECT_EQ(zsh.completed("sitelist val"), "[sitelist][validate]");
  EXPECT_EQ(zsh.completed("sitelist --verbose val"), "[sitelist][--verbose][validate]");
  EXPECT_EQ(zsh.completed("sitelist show --form"), "[sitelist][show][--format]");
  EXPECT_EQ(zsh.completed("sitelist show --format=j"), "[sitelist][show][--format=json]");
  EXPECT_EQ(zsh.completed("sitelist --format j"), "[sitelist][--format][json]");
  EXPECT_EQ(zsh.completed("sitelist show --columns name,pat"),
            "[sitelist][show][--columns][name,path]");
  EXPECT_EQ(zsh.completed("sitelist get glob"), "[sitelist][get][globalVersion]");
  EXPECT_EQ(zsh.completed("sitelist edit set Depot order=1 relative"),
            "[sitelist][edit][set][Depot][order=1][relativePath=]");
  EXPECT_EQ(zsh.completed("sitelist edit --dry-run add f"),
            "[sitelist][edit][--dry-run][add][ftp]");
  EXPECT_EQ(zsh.completed("sitelist edit --file inc"),
            "[sitelist][edit][--file][incoming list.xml]");
  EXPECT_EQ(zsh.completed("sitelist show inc"), "[sitelist][show][incoming list.xml]");
  EXPECT_EQ(zsh.completed("sitelist validate a b inc"),
            "[sitelist][validate][a][b][incoming list.xml]");
  EXPECT_EQ(zsh.completed("sitelist policies inc"), "[sitelist][policies][incoming list.xml]");
  EXPECT_EQ(zsh.completed("sitelist merge --first=lists/o"),
            "[sitelist][merge][--first=lists/other.xml]");
  EXPECT_EQ(zsh.completed("sitelist --agent-dir l"), "[sitelist][--agent-dir][lists]");
  EXPECT_EQ(zsh.completed("sitelist init --mesh-command /bin/s inc"),
            "[sitelist][init][--mesh-command][/bin/s][incoming list.xml]");
  EXPECT_EQ(zsh.completed("sitelist policies set inc"), "[sitelist][policies][set][inc]");
}

TEST_F(ZshTerminal, CompletesNamesOfSitesAndRunsNothingOfThem) {
  const std::string start = "sitelist --agent-dir agent get server --site ";
  const std::string words = "[sitelist][--agent-dir][agent][get][server][--site]";
  EXPECT_EQ(zsh.completed(start + "Ma"), words + "[Main depot]");
  EXPECT_EQ(zsh.completed(start + "Main\\ d"), words + "[Main depot]");
  EXPECT_EQ(zsh.completed(start + "\"Ma"), words + "[Main depot]");
  EXPECT_EQ(zsh.completed(start + "\\$"), words + "[$(touch hacked)]");
  EXPECT_EQ(zsh.completed(start + "i"), words + "[it's \\ \"so\"]");
  EXPECT_EQ(zsh.completed(start + "東"), words + "[東京支社]");
  EXPECT_EQ(zsh.completed("sitelist get --agent-dir='agent' server --site Ma"),
            "[sitelist][get][--agent-dir=agent][server][--site][Main depot]");
  zsh.listed("sitelist --agent-dir \"$(touch hacked)\" get server --site M");
  zsh.listed(start);
  EXPECT_FALSE(exists(file("hacked")));
}

TEST_F(ZshTerminal, ReadsANameBackAsItIs) {
  for (const auto& [typed, name] : setSpecialNames()) {
    for (const char* option : {"--site ", "--site="}) {
      const std::string end = option[6] == '=' ? "[--site=" + name + ']' : "[--site][" + name + ']';
      EXPECT_EQ(zsh.completed("sitelist --agent-dir agent get server " + (option + typed)),
                "[sitelist][--agent-dir][agent][get][server]" + end);
    }
  }
  EXPECT_FALSE(exists(file("hacked")));
}

TEST_F(ZshTerminal, FindsTheAgentAndTheListThatTheLineNames) {
  const std::string end = "[--site][Main depot]";
  EXPECT_EQ(zsh.completed("sitelist get server --agent-dir ~/agent --site Ma"),
            "[sitelist][get][server][--agent-dir][" + file("/agent") + ']' + end);
  EXPECT_EQ(zsh.completed("sitelist get server --agent-dir \\a\"g\"'ent' --site Ma"),
            "[sitelist][get][server][--agent-dir][agent]" + end);
  EXPECT_EQ(zsh.completed("sitelist edit --file 'lists/other.xml' disable de"),
            "[sitelist][edit][--file][lists/other.xml][disable][depot]");
}

TEST_F(ZshTerminal, AsksTheProgramThatIsCalled) {
  makeOtherTool();
  EXPECT_EQ(zsh.completed("./sitelist o"), "[./sitelist][other]");
  EXPECT_EQ(zsh.completed("~/sitelist o"), "[" + file("/sitelist") + "][other]");
  EXPECT_EQ(zsh.completed("lists/sitelist inc"), "[lists/sitelist][inc]") << "there is none";
}

}  // namespace
}  // namespace test
