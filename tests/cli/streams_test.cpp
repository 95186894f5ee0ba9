#include <sys/stat.h>

#include <filesystem>

#include "tests/cli/edit_fixture.h"

// Standard input and standard output as "-", and pipes, in place of files.
namespace test {
namespace {

namespace fs = std::filesystem;
using testing::AllOf;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;

constexpr const char* c_standardInput = "standard input";
constexpr const char* c_pipe = "/dev/fd/0";

std::string replaced(std::string text, const std::string& what, const std::string& by) {
  for (std::size_t at = text.find(what); at != std::string::npos;
       at = text.find(what, at + by.size())) {
    text.replace(at, what.size(), by);
  }
  return text;
}

class CliStreams : public CliTest {
 protected:
  CliStreams() {
    initAgent();
    setOwnList(document(httpSite("Own")));
    list = write("list.xml",
                 document(httpSite("Depot", "1", protectedText("fair")),
                          std::string("<CaBundle><CaCertificate>") + c_certificatePem +
                              "</CaCertificate></CaBundle><Policies><Setting name=\"a\">1"
                              "</Setting></Policies>",
                          "GlobalVersion=\"20260101000000\" LocalVersion=\"20260102000000\" "
                          "FipsMode=\"1\""));
    broken = write("broken.xml", "<a>\n</b>");
  }
  // No command may make a file with this name, or leave a temporary file.
  ~CliStreams() override { EXPECT_FALSE(exists(file("-"))); }

  // Runs the tool with the file as its standard input, through a pipe.
  Output piped(const std::string& input, const Arguments& arguments) {
    return shell("cat '" + input + "' | \"$0\" --agent-dir agent \"$@\"", arguments);
  }

  // Expects the same from the command with the file, with "-" and with a pipe.
  void expectSame(const Arguments& before, const std::string& input, const Arguments& after = {}) {
    const std::string what = testing::PrintToString(before);
    const Output named = sitelist(before + Arguments{input} + after);
    for (const auto& [word, name] : {std::pair{"-", c_standardInput}, {c_pipe, c_pipe}}) {
      const Output streamed = piped(input, before + Arguments{word} + after);
      EXPECT_EQ(streamed.status, named.status) << what << word << streamed.err;
      EXPECT_EQ(streamed.out, replaced(named.out, input, name)) << what << word;
      EXPECT_EQ(streamed.err, replaced(named.err, input, name)) << what << word;
    }
  }

  std::string list;
  std::string broken;
};

TEST_F(CliStreams, EveryCommandThatReadsAListReadsThem) {
  for (const std::string& format : {std::string("table"), std::string("json")}) {
    for (const Arguments& command : {Arguments{"show"},
                                     {"show", "--show-secrets"},
                                     {"explain"},
                                     {"versions"},
                                     {"certs"},
                                     {"policies"},
                                     {"get", "globalVersion"},
                                     {"get", "policy.b"},
                                     {"validate", "--unmanaged"},
                                     {"diff", ownList()},
                                     {"import", "--dry-run"},
                                     {"install", "--dry-run"},
                                     {"modify", "--dry-run", "--repositories"},
                                     {"merge", "--dry-run", "--first"},
                                     {"merge", "--dry-run", "--second"}}) {
      expectSame(Arguments{"--format", format} + command, list);
      expectSame(Arguments{"--format", format} + command, broken);
    }
    expectSame({"--format", format, "diff"}, list, {ownList()});
    expectSame({"--format", format, "edit", "--dry-run", "--file"}, list, {"disable", "Depot"});
    expectSame({"--format", format, "edit", "--dry-run", "--file"}, list, {"disable", "None"});
  }
}

TEST_F(CliStreams, EveryCommandThatChangesTheAgentTakesThem) {
  for (const Arguments& command :
       {Arguments{"import"}, {"install"}, {"modify", "--repositories"}, {"server-list"}}) {
    const auto before = agentFiles();
    const Output named = sitelist(command + Arguments{list});
    const auto after = agentFiles();
    const std::string shown = sitelist({"show", "--json", "--show-secrets"}).out;
    for (const char* word : {"-", c_pipe}) {
      fs::remove_all(file("agent"));
      for (const auto& [name, bytes] : before) write("agent/" + name, bytes);
      const Output streamed = piped(list, command + Arguments{word});
      EXPECT_EQ(streamed.status, named.status) << command.front() << word << streamed.err;
      EXPECT_EQ(sitelist({"show", "--json", "--show-secrets"}).out, shown)
          << command.front() << word;
      EXPECT_EQ(agentFiles().count("ServerSiteList.xml"), after.count("ServerSiteList.xml"));
    }
  }
}

// The files next to the list are not those next to the temporary file.
TEST_F(CliStreams, AnImportTakesTheKeyFileOfTheOption) {
  write("keys/srpubkey.bin", "key");
  const std::string unversioned = write("servers.xml", document(serverSite()));
  const Output output = piped(unversioned, {"import", "--keys", file("keys"), "-"});
  EXPECT_EQ(output.status, 0) << output.err;
  EXPECT_EQ(readFile(file("agent/etc/srpubkey.bin")), "key");
}

TEST_F(CliStreams, AnImportSaysThatAStreamHasNoKeyFiles) {
  const std::string versioned = write("v.xml", document(serverSite({{"Version", "5.9"}})));
  for (const Arguments& command : {Arguments{"import"}, {"install"}, {"modify", "--servers"}}) {
    const auto before = readFile(ownList());
    const Output output = piped(versioned, command + Arguments{"-"});
    EXPECT_EQ(output.status, 5) << command.front();
    EXPECT_THAT(output.err,
                AllOf(StartsWith("sitelist: standard input: the key files that belong to the list "
                                 "could not be copied (-1, 0xFFFFFFFF)\n  it is read from a "
                                 "stream, so there is no directory with key files\n"),
                      EndsWith("  next: save the list to a file next to its key files, and name "
                               "that file\n")));
    EXPECT_EQ(readFile(ownList()), before);
  }
}

TEST_F(CliStreams, MergeAndRewritePrintTheirResult) {
  const Output usual = sitelist({"merge", "--first", list});
  ASSERT_EQ(usual.status, 0);
  const Output merged = piped(list, {"merge", "--first", "-", "--output", "-"});
  EXPECT_EQ(merged.status, 0) << merged.err;
  const auto sites = [&](const std::string& text) {
    return sitelist({"show", "--format=csv", "--show-secrets", "-"}, text).out;
  };
  EXPECT_EQ(sites(merged.out), sites(usual.out));
  EXPECT_EQ(merged.err, "");

  const Output rewritten = piped(list, {"rewrite", "-", "-"});
  EXPECT_EQ(rewritten.status, 0);
  EXPECT_EQ(rewritten.err, "sitelist: warning: standard input: the FIPS mode \"1\" is not kept\n");
  EXPECT_EQ(sites(rewritten.out), sites(readFile(list)));
  EXPECT_EQ(piped(list, {"rewrite", "-", file("copy.xml")}).status, 0);
  EXPECT_EQ(sites(readFile(file("copy.xml"))), sites(readFile(list)));
}

TEST_F(CliStreams, AnEditOfStandardInputPrintsTheEditedList) {
  ASSERT_EQ(sitelist({"rewrite", list, file("edited.xml")}).status, 0);
  const auto agent = agentFiles();
  const Output edited = piped(list, {"edit", "--file", "-", "disable", "Depot"});
  EXPECT_EQ(edited.status, 0);
  EXPECT_EQ(edited.err, "sitelist: standard input: disabled http \"Depot\"\n");
  EXPECT_EQ(agentFiles(), agent);
  const std::string before = readFile(list);
  ASSERT_EQ(sitelist({"edit", "--file", list, "disable", "Depot"}).status, 0);
  EXPECT_EQ(edited.out, readFile(list));
  writeFile(list, before);

  const Output same = piped(list, {"edit", "--file", "-", "enable", "Depot"});
  EXPECT_EQ(same.status, 0);
  EXPECT_EQ(same.out, before) << "the output is a whole list also when nothing changes";
  EXPECT_THAT(same.err, HasSubstr("standard input: nothing to change: "));
}

TEST_F(CliStreams, AnEditThatFailsPrintsNothing) {
  for (const auto& [status, arguments] :
       {std::pair{7, Arguments{"disable", "None"}}, {1, {"set", "Depot", "server="}}}) {
    const Output output = piped(list, Arguments{"edit", "--file", "-"} + arguments);
    EXPECT_EQ(output.status, status) << output.err;
    EXPECT_EQ(output.out, "");
    EXPECT_THAT(output.err, AllOf(StartsWith("sitelist: standard input: "), Not(HasSubstr("tmp"))));
  }
}

TEST_F(CliStreams, APipeCannotBeChangedInPlace) {
  const Output output = piped(list, {"edit", "--file", c_pipe, "disable", "Depot"});
  EXPECT_EQ(output.status, 2);
  EXPECT_EQ(output.err,
            "sitelist: /dev/fd/0: a pipe cannot be changed in place\n"
            "  next: use --file - to edit standard input and print the edited list\n");
}

TEST_F(CliStreams, AListOnStandardOutputHasNoOtherFormat) {
  for (const Arguments& command : {Arguments{"merge", "--output", "-"},
                                   {"rewrite", "-", "-"},
                                   {"edit", "--file", "-", "disable", "Depot"}}) {
    const Output output = piped(list, Arguments{"--json"} + command);
    EXPECT_EQ(output.status, 2) << command.front();
    EXPECT_THAT(output.err, HasSubstr(" is an XML document and has no other format\n  next: "));
  }
}

TEST_F(CliStreams, StandardInputIsReadOnce) {
  const auto before = agentFiles();
  for (const Arguments& arguments :
       {Arguments{"diff", "-", "-"},
        {"merge", "--first", "-", "--second", "-"},
        {"edit", "--file", "-", "set", "Depot", "--password-stdin"},
        {"edit", "--file", "-", "set", "Depot", "--password-file", "-"},
        {"edit", "--file", "-", "set", "Depot", "--password-file", "/dev/stdin"},
        {"validate", "-", "-"},
        {"validate", "-", "/dev/stdin"},
        {"diff", c_pipe, "-"},
        {"merge", "--first", c_pipe, "--second", c_pipe}}) {
    const Output output = piped(list, arguments);
    EXPECT_EQ(output.status, 2) << testing::PrintToString(arguments) << output.err;
    EXPECT_THAT(output.err, StartsWith("sitelist: standard input can be read only once\n"));
    EXPECT_EQ(output.out, "");
  }
  EXPECT_EQ(agentFiles(), before);
}

TEST_F(CliStreams, AClosedOneIsNamedAsTheCause) {
  for (const Arguments& arguments : {Arguments{"show", "-"},
                                     {"import", "-"},
                                     {"protect"},
                                     {"edit", "set", "Own", "--password-stdin"}}) {
    const Output output = shell("exec \"$0\" --agent-dir agent \"$@\" <&-", arguments);
    EXPECT_EQ(output.status, 4) << testing::PrintToString(arguments);
    EXPECT_EQ(output.err,
              "sitelist: standard input: cannot be read: Bad file descriptor\n"
              "  next: standard input is not open for reading; redirect a file to it\n")
        << testing::PrintToString(arguments);
  }
}

#ifdef __linux__  // /proc tells which file has which number
TEST_F(CliStreams, NoFileTakesTheNumberOfAClosedOne) {
  ASSERT_EQ(::mkfifo(file("pipe").c_str(), 0600), 0);
  const Output output = shell(
      "{ \"$0\" --agent-dir agent get globalVersion pipe <&- >&- 2>&- & }; tool=$!\n"
      "{ for stream in 0 1 2; do readlink /proc/$tool/fd/$stream; done; cat list.xml >&3; } 3> "
      "pipe\n"
      "wait $tool; echo $?");
  EXPECT_EQ(output.out, "/dev/null\n/dev/null\n/dev/null\n4\n") << output.err;
}
#endif

TEST_F(CliStreams, APasswordFileMayBeOne) {
  for (const char* word : {"-", c_pipe}) {
    const Output output =
        shell("echo '" + std::string(word) + "' | \"$0\" --agent-dir agent \"$@\"",
              {"edit", "set", "Own", "--password-file", word});
    EXPECT_EQ(output.status, 0) << output.err;
    EXPECT_EQ(sitelist({"get", "password", "--site", "Own", "--show-secrets"}).out,
              std::string(word) + "\n");
  }
}

TEST_F(CliStreams, ADirectoryOrTheMeshCopyCannotBeOne) {
  for (const auto& [arguments, what] :
       {std::pair{Arguments{"derive-server-list", "-"}, "SOURCE_DIR"},
        {{"derive-server-list", "agent/etc", "-"}, "TARGET_DIR"},
        {{"--agent-dir", "agent", "import", "--keys", "-", "list.xml"}, "--keys"},
        {{"--agent-dir", "agent", "modify", "--servers", "--keys", "-", "list.xml"}, "--keys"},
        {{"--agent-dir", "-", "init"}, "--agent-dir"},
        {{"--agent-dir", "new", "init", "--mesh-path", "-"}, "--mesh-path"}}) {
    const Output output = shell("\"$0\" \"$@\"", arguments);
    EXPECT_EQ(output.status, 2) << what << output.err;
    EXPECT_EQ(output.err, "sitelist: " + std::string(what) +
                              ": \"-\" does not name a file or directory\n"
                              "  next: write ./- if this is its name\n");
    EXPECT_FALSE(exists(file("new")));
  }
}

TEST_F(CliStreams, AFileOfThisNameIsNamedThroughItsDirectory) {
  const Output output = shell(
      "mkdir here && cd here && cp ../list.xml ./- && \"$0\" get globalVersion ./- && "
      "\"$0\" --agent-dir ../agent edit --file ./- disable Depot && "
      "\"$0\" get enabled --site Depot ./-");
  EXPECT_EQ(output.status, 0) << output.err;
  EXPECT_EQ(output.out, "20260101000000\nfalse\n");
}

TEST_F(CliStreams, ANamedPipeIsReadOnceToo) {
  ASSERT_EQ(::mkfifo(file("pipe").c_str(), 0600), 0);
  const Output output =
      shell("{ cat list.xml > pipe & }; \"$0\" --agent-dir agent get globalVersion pipe; wait");
  EXPECT_EQ(output.status, 0);
  EXPECT_EQ(output.out, "20260101000000\n") << output.err;
}

TEST_F(CliStreams, StandardInputThatCannotBeReadIsNamed) {
  for (const char* command : {"show", "validate"}) {
    const Output output = shell("\"$0\" --agent-dir agent \"$@\" - < agent", {command});
    EXPECT_EQ(output.status, 4) << command;
    EXPECT_THAT(output.out + output.err,
                AllOf(HasSubstr("standard input: "), HasSubstr("it is a directory")));
  }
}

TEST_F(CliStreams, AnEditDoesNotAskForKeyFilesBesideStandardInput) {
  write("agent/agent.toml", "managed = true\n");
  const Output output =
      sitelist({"edit", "--file", "-", "set", "Main", "version=5.9"}, document(serverSite()));
  EXPECT_EQ(output.status, 0) << output.err;
  EXPECT_THAT(output.out, HasSubstr(" Version=\"5.9\""));
}

// Two stored lists, of which one is removed before the other.
TEST_F(CliStreams, SeveralCanBeUsedAtOnce) {
  ASSERT_EQ(::mkfifo(file("pipe").c_str(), 0600), 0);
  const Output merged = shell(
      "{ cat list.xml > pipe & }; \"$0\" --agent-dir agent merge --first pipe --second - --output "
      "merged.xml < agent/etc/SiteList.xml; wait");
  EXPECT_EQ(merged.err, "sitelist: wrote 2 entries to merged.xml\n");
}

}  // namespace
}  // namespace test
