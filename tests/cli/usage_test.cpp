#include <nlohmann/json.hpp>

#include "tests/cli/cli_fixture.h"
#include "tests/cli/documents.h"

namespace test {
namespace {

using nlohmann::json;
using testing::HasSubstr;

class CliUsage : public CliTest {};

void expectItFitsATerminal(const std::string& text) {
  std::size_t begin = 0;
  for (std::size_t end; (end = text.find('\n', begin)) != std::string::npos; begin = end + 1) {
    EXPECT_LE(end - begin, 80U) << text.substr(begin, end - begin);
  }
}

// The commands that a help text names.
std::vector<std::string> commandsIn(const std::string& help) {
  std::vector<std::string> commands;
  std::size_t begin = help.find("\nCommands:\n");
  if (begin == std::string::npos) return commands;
  for (begin = help.find('\n', begin + 1) + 1; help.compare(begin, 2, "  ") == 0;
       begin = help.find('\n', begin) + 1) {
    if (help[begin + 2] == ' ') continue;  // the continuation of a description
    commands.push_back(help.substr(begin + 2, help.find(' ', begin + 2) - begin - 2));
  }
  return commands;
}

TEST_F(CliUsage, EveryCommandHasHelpWithAnExampleThatFitsATerminal) {
  const Output all = bare({"--help"});
  EXPECT_EQ(all.status, 0);
  expectItFitsATerminal(all.out);
  const std::vector<std::string> commands = commandsIn(all.out);
  EXPECT_THAT(commands, testing::IsSupersetOf({"show", "derive-server-list", "protect"}));
  for (const std::string& command : commands) {
    const Output output = bare({command, "--help"});
    EXPECT_EQ(output.status, 0) << command;
    EXPECT_EQ(output.err, "");
    EXPECT_THAT(output.out, HasSubstr("Example"));
    EXPECT_THAT(output.out, HasSubstr("\n  sitelist "));
    expectItFitsATerminal(output.out);
    for (const std::string& part : commandsIn(output.out)) {
      const Output more = bare({command, part, "--help"});
      EXPECT_EQ(more.status, 0) << part;
      EXPECT_THAT(more.out, HasSubstr("\n  sitelist " + command + " "));
      expectItFitsATerminal(more.out);
    }
  }
}

TEST_F(CliUsage, TellsTheExitStatusesInOnePlace) {
  EXPECT_THAT(
      bare({"--help"}).out,
      HasSubstr("Exit status:\n"
                "   0  success\n"
                "   1  a negative result: lists differ, a list has an error, an edit would add a\n"
                "      fault, a certificate has expired, expires within the given days or cannot\n"
                "      be read, a check of the agent or a probe fails, or there is nothing to\n"
                "      print\n"
                "   2  wrong usage, or an unknown field\n"
                "   3  invalid document or settings file\n"
                "   4  a file is missing or locked, or cannot be read or written\n"
                "   5  a key cannot be used, encryption or decryption failed, or\n"
                "      passwords would be lost\n"
                "   6  a conflict with existing data, or with a change by another program\n"
                "   7  a named site, setting, rule or list of the history does not exist, or a\n"
                "      site does not have the field\n"
                "  70  an internal error, or out of memory\n"));
}

TEST_F(CliUsage, HelpIsACommandToo) {
  const std::vector<std::vector<std::string>> commands = {{}, {"show"}, {"edit"}, {"edit", "set"}};
  for (const std::vector<std::string>& command : commands) {
    std::vector<std::string> asked = {"help"};
    asked.insert(asked.end(), command.begin(), command.end());
    const Output output = bare(asked);
    EXPECT_EQ(output.status, 0) << output.err;
    EXPECT_EQ(output.err, "");
    std::vector<std::string> option = command;
    option.emplace_back("--help");
    EXPECT_EQ(output.out, bare(option).out);
  }
  const Output unknown = bare({"help", "edit", "sett"});
  EXPECT_EQ(unknown.status, 2);
  EXPECT_EQ(unknown.out, "");
  EXPECT_EQ(unknown.err,
            "sitelist: unknown command \"edit sett\"; did you mean set?\n"
            "  next: see `sitelist --help`\n");
}

TEST_F(CliUsage, RefusesTwoFormatsAtOnce) {
  const std::string path = write("list.xml", document(httpSite("depot")));
  for (const char* format : {"table", "csv", "xml"}) {
    const Output output = bare({"show", path, "--json", "--format", format});
    EXPECT_EQ(output.status, 2) << format;
    EXPECT_THAT(output.err, HasSubstr("sitelist: --json and --format " + std::string(format) +
                                      " cannot be used together\n  next: give only one of them\n"));
    EXPECT_EQ(json::parse(output.out)["error"]["status"], 2) << format;
  }
  EXPECT_EQ(bare({"show", path, "--json", "--format", "json"}).status, 0);
}

TEST_F(CliUsage, PrintsItsVersion) {
  const Output output = bare({"--version"});
  EXPECT_EQ(output.status, 0);
  EXPECT_THAT(output.out, testing::MatchesRegex("sitelist [0-9]+\\.[0-9]+\\.[0-9]+\n"));
}

TEST_F(CliUsage, WrongUsageIsStatus2WithAMessageAndNoData) {
  const std::vector<std::vector<std::string>> wrong = {
      {},
      {"--bogus"},
      {"bogus"},
      {"show", "--bogus"},
      {"explain-rule", "a", "b"},
      {"validate"},
      {"validate", "--managed", "--unmanaged", "a"},
      {"import"},
      {"rewrite", "only-one"},
      {"policies", "set", "only-a-name"},
      {"merge", "positional"},
      {"show", "--agent-dir"},
  };
  for (const auto& arguments : wrong) {
    const Output output = bare(arguments);
    EXPECT_EQ(output.status, 2) << testing::PrintToString(arguments);
    EXPECT_EQ(output.out, "") << testing::PrintToString(arguments);
    EXPECT_NE(output.err, "") << testing::PrintToString(arguments);
  }
}

TEST_F(CliUsage, NamesWhatItDoesNotExpect) {
  const auto error = [&](const std::vector<std::string>& arguments) {
    const Output output = bare(arguments);
    EXPECT_EQ(output.status, 2) << output.err;
    return output.err;
  };
  EXPECT_EQ(error({"--bogus"}),
            "sitelist: unknown option \"--bogus\"\n  next: see `sitelist --help`\n");
  EXPECT_EQ(error({"bogus"}),
            "sitelist: unknown command \"bogus\"\n  next: see `sitelist --help`\n");
  EXPECT_EQ(error({"edit", "bogus"}),
            "sitelist: unknown command \"edit bogus\"\n  next: see `sitelist edit --help`\n");
  EXPECT_EQ(error({"explain-rule", "a", "b"}),
            "sitelist: unexpected argument \"b\"\n  next: see `sitelist explain-rule --help`\n");
  EXPECT_EQ(
      error({"explain-rule", "a", "c", "--verbose", "b"}),
      "sitelist: unexpected arguments \"c\", \"b\"\n  next: see `sitelist explain-rule --help`\n");
  EXPECT_EQ(
      error({"explain-rule", "a", "c", "b", "--secret", "x"}),
      "sitelist: unexpected arguments \"c\", \"b\"\n  next: see `sitelist explain-rule --help`\n")
      << "what follows an option may be its value";
  EXPECT_EQ(error({"policies", "a", "b"}),
            "sitelist: unexpected argument \"b\"\n  next: see `sitelist policies --help`\n");
  EXPECT_EQ(error({"edit", "set", "Depot", "--password=secret"}),
            "sitelist: unknown option \"--password\"; did you mean --password-file, "
            "--password-stdin or --password-field?\n  next: see `sitelist edit set --help`\n");
  EXPECT_EQ(error({"show", "--agent-dir", "a", "--agent-dir", "b"}),
            "sitelist: --agent-dir: the option is given more than once\n"
            "  next: see `sitelist show --help`\n");
  EXPECT_THAT(error({"import"}), testing::EndsWith("\n  next: see `sitelist import --help`\n"));
}

TEST_F(CliUsage, AnEmptyValueIsWrongUsage) {
  initAgent();
  setOwnList(document(httpSite("depot")));
  const auto before = agentFiles();
  for (const std::vector<std::string>& arguments :
       {std::vector<std::string>{"explain", "--host", ""},
        {"show", "--columns", ""},
        {"certs", "--expiring", ""},
        {"get", "server", "--site", ""},
        {"policies", "set", "", "x"}}) {
    const Output output = sitelist(arguments);
    EXPECT_EQ(output.status, 2) << testing::PrintToString(arguments);
    EXPECT_EQ(output.out, "") << testing::PrintToString(arguments);
    EXPECT_THAT(output.err, HasSubstr(": the value is empty\n  next: see `sitelist "));
  }
  EXPECT_EQ(agentFiles(), before);
  EXPECT_EQ(sitelist({"policies", "set", "a", ""}).status, 0);
}

TEST_F(CliUsage, AWordThatOnlyBeginsLikeARequestForHelpIsAnUnknownOption) {
  const Output output = sitelist({"show", "-hidden"});
  EXPECT_EQ(output.status, 2);
  EXPECT_EQ(output.out, "");
  EXPECT_EQ(output.err,
            "sitelist: unknown option \"-hidden\"\n  next: see `sitelist show --help`\n");
  const Output help = sitelist({"show", "--help"});
  for (const std::vector<std::string>& words : {std::vector<std::string>{"-h"},
                                                {"-qh"},
                                                {"-hq"},
                                                {"-h", "-hidden"},
                                                {"--name", "-hidden", "-h"}}) {
    std::vector<std::string> arguments = {"show"};
    arguments.insert(arguments.end(), words.begin(), words.end());
    const Output asked = sitelist(arguments);
    EXPECT_EQ(asked.status, 0) << testing::PrintToString(words) << asked.err;
    EXPECT_EQ(asked.out, help.out) << testing::PrintToString(words);
  }
}

// A word that begins with "-" may be a password. So may any word that these commands do not accept.
TEST_F(CliUsage, DoesNotRepeatWhatMayBeAPassword) {
  initAgent();
  setOwnList(document(httpSite("Depot")));
  const auto before = agentFiles();
  for (const std::vector<std::string>& command : {std::vector<std::string>{"protect"},
                                                  {"edit", "set", "Depot"},
                                                  {"edit", "set", "Depot", "--password-stdin"},
                                                  {"edit", "add", "http", "New"}}) {
    for (const std::string format : {"table", "json"}) {
      for (const std::string word :
           {"-Xunter2", "--Xunter2", "--Xunter2=4", "-pXunter2", "-hunter2", "-qhunter2"}) {
        std::vector<std::string> arguments = {"--format", format};
        arguments.insert(arguments.end(), command.begin(), command.end());
        arguments.push_back(word);
        const Output output = sitelist(arguments);
        EXPECT_EQ(output.status, 2) << testing::PrintToString(arguments);
        EXPECT_THAT(output.out + output.err, testing::Not(HasSubstr("unter2")));
        EXPECT_THAT(output.err, HasSubstr("sitelist: unknown option; it is not shown, because it "
                                          "may be a password\n  next: see `sitelist "));
      }
    }
  }
  for (const char* option : {"--password-stdin", "--verbose"}) {
    const Output output = sitelist({"edit", "set", "Depot", std::string(option) + "=Xunter2"});
    EXPECT_EQ(output.status, 2);
    EXPECT_EQ(output.err, std::string("sitelist: ") + option +
                              ": the option takes no value\n"
                              "  next: see `sitelist edit set --help`\n");
  }
  EXPECT_EQ(agentFiles(), before);
}

// A path that is too long cannot be the directory of an agent, so it is refused before any command
// uses it.
TEST_F(CliUsage, ADataDirectoryThatCannotBeOneIsWrongUsage) {
  for (const std::vector<std::string>& command :
       {std::vector<std::string>{"show"}, {"init"}, {"protect"}, {"explain-rule"}}) {
    std::vector<std::string> arguments = {"--agent-dir", ""};
    arguments.insert(arguments.end(), command.begin(), command.end());
    const Output empty = bare(arguments);
    EXPECT_EQ(empty.status, 2) << command.front();
    EXPECT_EQ(empty.err, "sitelist: --agent-dir: the value is empty\n  next: name a directory\n");
    arguments[1] = file(std::string(300, 'x'));
    const Output tooLong = bare(arguments);
    EXPECT_EQ(tooLong.status, 2) << command.front();
    EXPECT_THAT(tooLong.err, HasSubstr(" is too long: with /etc it has "));
    EXPECT_THAT(
        tooLong.err,
        testing::EndsWith("\n  next: name a directory with a shorter path with --agent-dir\n"));
  }
}

TEST_F(CliUsage, AWordBehindACommandIsAnArgumentAlsoWhenItNamesACommand) {
  const Output output = bare({"show", "versions"});
  EXPECT_EQ(output.status, 4);
  EXPECT_THAT(output.err, HasSubstr("versions: the file does not exist"));
}

TEST_F(CliUsage, AdvisesAnImportOnlyForTheAgentsOwnList) {
  initAgent();
  const std::string advice = "\n  next: create the agent's list with `sitelist import`\n";
  for (const char* const command : {"show", "versions", "get"}) {
    std::vector<std::string> arguments = {command};
    if (arguments.front() == "get") arguments.emplace_back("type");
    EXPECT_THAT(sitelist(arguments).err, testing::EndsWith(advice)) << command;
    arguments.push_back(file("none.xml"));
    EXPECT_THAT(sitelist(arguments).err, testing::EndsWith("\n  next: check the path\n"))
        << command;
  }
  EXPECT_THAT(sitelist({"edit", "disable", "Depot"}).err, testing::EndsWith(advice));
}

TEST_F(CliUsage, SaysWhichValueOfAnOptionIsMissing) {
  const Output output = bare({"explain", "--host"});
  EXPECT_EQ(output.status, 2);
  EXPECT_THAT(output.err, HasSubstr("sitelist: --host: HOST is missing\n  next: "));
}

TEST_F(CliUsage, NamesTheChoicesWhenAValueIsNoneOfThem) {
  const Output output = bare({"show", "--format", "yaml"});
  EXPECT_EQ(output.status, 2);
  EXPECT_THAT(output.err,
              HasSubstr("--format: \"yaml\" is not one of table, json, jsonl, csv, xml\n  next: "));
}

TEST_F(CliUsage, GlobalOptionsMayStandBehindTheCommand) {
  initAgent();
  setOwnList(document(httpSite("depot")));
  const Output output = bare({"show", "--verbose", "--agent-dir", file("agent") + "/"});
  EXPECT_EQ(output.status, 0) << output.err;
  EXPECT_THAT(output.out, HasSubstr("depot"));
  EXPECT_THAT(output.err, HasSubstr("detail SiteHlp: Enter: Reading Sitelist\n"));
}

TEST_F(CliUsage, TakesARelativeAgentDirectory) {
  initAgent();
  setOwnList(document(httpSite("depot")));
  const Output output = shell("exec \"$0\" --agent-dir agent show");
  EXPECT_EQ(output.status, 0) << output.err;
  EXPECT_THAT(output.out, HasSubstr("depot"));
}

TEST_F(CliUsage, DoesNotMakeAnAgentByAccident) {
  for (const std::vector<std::string>& command :
       {std::vector<std::string>{"show"},
        {"servers"},
        {"protect"},
        {"policies", "set", "a", "1"},
        {"import", write("list.xml", document(httpSite("depot")))}}) {
    const Output output = sitelist(command);
    EXPECT_EQ(output.status, 4) << command.front();
    EXPECT_THAT(output.err, HasSubstr("the agent's data directory does not exist\n  next: "));
    EXPECT_FALSE(exists(file("agent")));
  }
}

TEST_F(CliUsage, ABrokenSettingsFileIsAnInvalidDocument) {
  write("agent/agent.toml", "managed = maybe");
  const Output output = sitelist({"show"});
  EXPECT_EQ(output.status, 3);
  EXPECT_THAT(output.err, HasSubstr("agent.toml"));
}

TEST_F(CliUsage, AFailureNamesFileCodeMeaningPlaceAndNextStep) {
  const std::string path = write("list.xml", "<list>\n  <a></b>\n</list>");
  const Output output = sitelist({"show", path});
  EXPECT_EQ(output.status, 3);
  EXPECT_THAT(output.err, testing::MatchesRegex("sitelist: [^\n]*/list.xml: the document is not "
                                                "well formed \\(-5, 0xFFFFFFFB\\)\n"
                                                "  line 2, column [0-9]+: mismatched tag\n"
                                                "  next: [^\n]*\n"));
  EXPECT_EQ(sitelist({"show", file("none.xml")})
                .err.find("sitelist: " + file("none.xml") +
                          ": the file does not exist (-4, "
                          "0xFFFFFFFC)\n  next: "),
            0U);
}

TEST_F(CliUsage, BytesThatAreNotInTheEncodingAreTheDocumentsFault) {
  const Output output = sitelist({"show", write("list.xml", "<a>\xC3\x28</a>")});
  EXPECT_EQ(output.status, 3);
  EXPECT_THAT(output.err, HasSubstr("(-10, 0xFFFFFFF6)"));
  EXPECT_THAT(output.err, testing::EndsWith("\n  the bytes are not valid UTF-8, UTF-16 or UTF-32\n"
                                            "  next: save the document as UTF-8, or request it "
                                            "again from the server\n"));
  const Output directory = sitelist({"get", "type", file("tmp")});
  EXPECT_EQ(directory.status, 4);
  EXPECT_THAT(directory.err, testing::EndsWith("\n  it is a directory\n  next: check that it is a "
                                               "regular file that you may read\n"));
}

TEST_F(CliUsage, OutputThatCannotBeWrittenIsAFileFailure) {
  const std::string path = write("list.xml", document(httpSite("depot")));
  const Output output = shell("exec \"$0\" show \"$1\" 1</dev/null", {path});
  EXPECT_EQ(output.status, 4);
  EXPECT_THAT(output.err, HasSubstr("cannot write to standard output: Bad file descriptor"));
}

#ifdef INTERPOSER
TEST_F(CliUsage, WhatNobodyForesawIsAnInternalError) {
  initAgent();
  const Output output = shell("UNFORESEEN=odd.xml LD_PRELOAD='" INTERPOSER
                              "' exec \"$0\" --agent-dir agent server-list odd.xml --json");
  EXPECT_EQ(output.status, 70);
  EXPECT_THAT(output.err, HasSubstr("sitelist: internal error: "));
  const json document = json::parse(output.out);
  EXPECT_EQ(document["status"], 70);
  EXPECT_EQ(document["error"]["name"], "internal");
  EXPECT_THAT(output.err, HasSubstr(document["error"]["message"].get<std::string>()));
}

TEST_F(CliUsage, MemoryThatIsMissingIsAnInternalError) {
  initAgent();
  const Output output = shell("NO_MEMORY_FOR=list.xml LD_PRELOAD='" INTERPOSER
                              "' exec \"$0\" --agent-dir agent server-list list.xml");
  EXPECT_EQ(output.status, 70);
  EXPECT_EQ(output.err, "sitelist: out of memory\n  next: free memory and try again\n");
}
#endif

}  // namespace
}  // namespace test
