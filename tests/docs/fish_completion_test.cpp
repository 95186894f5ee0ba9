#include "tests/docs/completion_fixture.h"
#include "tests/docs/help_texts.h"

namespace test {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::UnorderedElementsAre;

class FishCompletion : public CompletionTest {
 protected:
  // Returns the words that are offered at the end of each line.
  std::vector<Words> offered(const Words& lines) {
    Words arguments = {c_scripts + "sitelist.fish"};
    arguments.insert(arguments.end(), lines.begin(), lines.end());
    const Output output =
        shell(tool() +
                  "; export HOME=$PWD; exec fish --no-config -c 'source $argv[1]; "
                  "for line in $argv[2..-1]; complete -C $line; echo; end' \"$@\"",
              arguments);
    EXPECT_EQ(output.status, 0);
    EXPECT_EQ(output.err, "");
    std::vector<Words> all(1);
    for (const std::string& line : splitLines(output.out)) {
      if (line.empty()) {
        all.emplace_back();
      } else {
        all.back().push_back(line);
      }
    }
    all.pop_back();
    return all;
  }

  // Returns the words that are offered at the end of the line, without their descriptions.
  Words words(const std::string& line) {
    Words found;
    const std::vector<Words> all = offered({line});
    for (const std::string& each : all.at(0)) {
      found.push_back(each.substr(0, each.find('\t')));
    }
    return found;
  }
};

TEST_F(FishCompletion, OffersEveryCommandAndOptionWithAnExplanation) {
  Words lines;
  for (const HelpText& help : helpTexts()) {
    lines.push_back(help.name() + " --");
    lines.push_back(help.name() + " ");
  }
  const std::vector<Words> all = offered(lines);
  ASSERT_EQ(all.size(), lines.size());
  for (std::size_t i = 0; i < helpTexts().size(); ++i) {
    const HelpText& help = helpTexts()[i];
    EXPECT_EQ(longOptions(all[2 * i]), help.options) << help.name();
    for (const std::string& option : all[2 * i]) EXPECT_THAT(option, testing::HasSubstr("\t"));
    for (const std::string& command : help.commands) {
      EXPECT_THAT(all[2 * i + 1], Contains(testing::StartsWith(command + '\t'))) << help.name();
    }
  }
}

TEST_F(FishCompletion, OffersWhatBeginsAsTyped) {
  EXPECT_THAT(words("sitelist sh"), ElementsAre("show"));
  EXPECT_THAT(words("sitelist --verbose pol"), ElementsAre("policies"));
  EXPECT_THAT(words("sitelist --format show sh"), ElementsAre("show"))
      << "a value is not a command";
  EXPECT_THAT(words("sitelist show --col"), UnorderedElementsAre("--color", "--columns"));
  EXPECT_THAT(words("sitelist policies se"), ElementsAre("set"));
  EXPECT_THAT(words("sitelist nothing-like-it"), IsEmpty());
}

TEST_F(FishCompletion, OffersChoicesFieldsAndColumns) {
  EXPECT_THAT(words("sitelist --format "),
              UnorderedElementsAre("table", "json", "jsonl", "csv", "xml"));
  EXPECT_THAT(words("sitelist show --format=x"), ElementsAre("--format=xml"));
  EXPECT_THAT(words("sitelist get glob"), ElementsAre("globalVersion"));
  EXPECT_THAT(words("sitelist edit set Depot order=1 relative"), ElementsAre("relativePath="));
  EXPECT_THAT(words("sitelist edit --dry-run add f"), ElementsAre("ftp"));
  EXPECT_THAT(words("sitelist show --columns name,pat"), ElementsAre("name,path"));
}

TEST_F(FishCompletion, OffersFilesWhereFilesAreMeant) {
  EXPECT_THAT(words("sitelist show inc"), ElementsAre("incoming list.xml"));
  EXPECT_THAT(words("sitelist show a inc"), ElementsAre("incoming list.xml"));
  EXPECT_THAT(words("sitelist summary a inc"), ElementsAre("incoming list.xml"));
  EXPECT_THAT(words("sitelist policies a inc"), IsEmpty());
  EXPECT_THAT(words("sitelist validate a b inc"), ElementsAre("incoming list.xml"));
  EXPECT_THAT(words("sitelist policies inc"), ElementsAre("incoming list.xml"));
  EXPECT_THAT(words("sitelist policies set inc"), IsEmpty());
  EXPECT_THAT(words("sitelist merge --first lists/o"), ElementsAre("lists/other.xml"));
  EXPECT_THAT(words("sitelist --agent-dir l"), ElementsAre("lists/"));
  EXPECT_THAT(words("sitelist --agent-dir inc"), IsEmpty());
  EXPECT_THAT(words("sitelist init --mesh-command a inc"), ElementsAre("incoming list.xml"));
}

TEST_F(FishCompletion, OffersNamesOfSites) {
  EXPECT_THAT(words("sitelist --agent-dir agent get server --site "),
              UnorderedElementsAre("Main depot", "$(touch hacked)", "it's \\ \"so\"", "東京支社"));
  EXPECT_THAT(words("sitelist get server --agent-dir=agent --site Ma"), ElementsAre("Main depot"));
  EXPECT_FALSE(exists(file("hacked")));
}

TEST_F(FishCompletion, OffersNamesAsTheyAre) {
  std::set<std::string> names;
  for (const auto& [typed, name] : setSpecialNames()) names.insert(name);
  names.erase("C");
  const Words found = words("sitelist --agent-dir agent get server --site ");
  EXPECT_EQ(std::set<std::string>(found.begin(), found.end()), names);
  EXPECT_FALSE(exists(file("hacked")));
}

TEST_F(FishCompletion, CompletesQuotedWords) {
  const std::string start = "sitelist --agent-dir agent get server --site";
  for (const char* typed : {" 'Ma", " \"Ma", " Main\\ d", " depot"}) {
    EXPECT_THAT(words(start + typed), ElementsAre("Main depot")) << typed;
  }
  EXPECT_THAT(words(start + "=Ma"), ElementsAre("--site=Main depot"));
  EXPECT_THAT(words("sitelist merge --first=lists/o"), ElementsAre("--first=lists/other.xml"));
  EXPECT_THAT(words("sitelist --agent-dir=l"), ElementsAre("--agent-dir=lists/"));
}

TEST_F(FishCompletion, FindsTheAgentAndTheListThatTheLineNames) {
  EXPECT_THAT(words("sitelist get server --agent-dir ~/agent --site Ma"),
              ElementsAre("Main depot"));
  EXPECT_THAT(words("sitelist edit --file 'lists/other.xml' disable de"), ElementsAre("depot"));
}

TEST_F(FishCompletion, AsksTheProgramThatIsCalled) {
  makeOtherTool();
  EXPECT_THAT(words("./sitelist o"), ElementsAre("other"));
  EXPECT_THAT(words("~/sitelist o"), ElementsAre("other"));
  EXPECT_THAT(words("lists/sitelist inc"), IsEmpty()) << "there is none";
}

}  // namespace
}  // namespace test
