#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <iostream>
#include <nlohmann/json.hpp>

#include "tests/cli/cli_fixture.h"
#include "tests/cli/documents.h"

// Commands that read many lists.
namespace test {
namespace {

namespace fs = std::filesystem;
using nlohmann::json;
using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;

class CliFleet : public CliTest {
 protected:
  // Writes the list of an endpoint and returns its path.
  std::string addList(const std::string& endpoint, const std::string& text) {
    fs::create_directories(file("fleet/" + endpoint));
    return write("fleet/" + endpoint + "/SiteList.xml", text);
  }
  // Writes lists that differ from each other. Some have faults, some cannot be read.
  void addMixedLists(int count) {
    for (int i = 0; i < count; ++i) {
      const std::string number = std::to_string(i);
      std::string sites = serverSite({{"Name", i % 3 == 0 ? "" : "Server " + number}});
      for (int site = 0; site <= i % 7; ++site) {
        sites += httpSite(number + "-" + std::to_string(site), std::to_string(site + 2));
      }
      const std::string certificates = std::string("<CaBundle><CaCertificate>") + c_certificatePem +
                                       "</CaCertificate></CaBundle>";
      addList("e" + number, i % 5 == 4 ? "<broken" + number : document(sites, certificates));
    }
  }
  // Returns the values of a member of each line.
  static std::vector<json> linesOf(const Output& output) {
    std::vector<json> lines;
    for (std::size_t begin = 0; begin < output.out.size();) {
      const std::size_t end = output.out.find('\n', begin);
      lines.push_back(json::parse(output.out.substr(begin, end - begin)));
      begin = end + 1;
    }
    return lines;
  }
  static std::vector<std::string> filesOf(const Output& output) {
    std::vector<std::string> files;
    for (const json& line : linesOf(output)) files.push_back(line["file"]);
    return files;
  }
};

TEST_F(CliFleet, ReadsEveryListBelowADirectoryInTheOrderOfPaths) {
  const std::string text = document(httpSite("depot"));
  const std::string b = addList("b/deep/er", text);
  const std::string a = addList("a", text);
  const std::string c = addList("c", text);
  write("fleet/a/Other.xml", text);
  write("fleet/sitelist.xml", text);
  addList(".snapshot/a", text);
  addList("a/.sitelist-draft", text);
  const Output output = sitelist({"show", "--format", "jsonl", file("fleet") + "//"});
  EXPECT_EQ(output.status, 0) << output.err;
  EXPECT_THAT(filesOf(output), ElementsAre(a, b, c));
  EXPECT_EQ(output.err, "sitelist: 3 lists read\n");
  EXPECT_THAT(filesOf(sitelist({"show", "--format", "jsonl", c, file("fleet/a"), c})),
              ElementsAre(c, a, c))
      << "the arguments are read in their order";
}

TEST_F(CliFleet, FollowsLinksToListsAndToNamedDirectoriesButNotToDirectoriesBelow) {
  const std::string text = document(httpSite("depot"));
  addList("a", text);
  const std::string linked = file("fleet/linked/SiteList.xml");
  fs::create_directories(file("fleet/linked"));
  fs::create_symlink(file("fleet/a/SiteList.xml"), linked);
  fs::create_directory_symlink("..", file("fleet/a/loop"));
  fs::create_directory_symlink(file("fleet"), file("name"));
  EXPECT_THAT(filesOf(sitelist({"show", "--format", "jsonl", file("name")})),
              ElementsAre(file("name/a/SiteList.xml"), file("name/linked/SiteList.xml")));
}

TEST_F(CliFleet, TheOutputDoesNotDependOnTheNumberOfThreads) {
  addMixedLists(60);
  const std::string base = write("base.xml", document(serverSite() + httpSite("1-0", "2")));
  const std::vector<std::vector<std::string>> commands = {
      {"show"},     {"versions"},
      {"certs"},    {"servers", "--all"},
      {"explain"},  {"explain", "--host", "a.example"},
      {"validate"}, {"diff", "--to", base},
      {"summary"}};
  for (const std::vector<std::string>& command : commands) {
    for (const char* format : {"table", "json", "jsonl", "csv", "xml"}) {
      const auto run = [&](const char* jobs) {
        std::vector<std::string> arguments = command;
        arguments.insert(arguments.end(), {"--format", format, "--jobs", jobs, file("fleet")});
        return sitelist(arguments);
      };
      const Output one = run("1");
      const Output eight = run("8");
      EXPECT_EQ(one.status, 3) << command[0] << one.err;
      EXPECT_NE(one.out, "") << command[0] << " " << format;
      EXPECT_EQ(one.out, eight.out) << command[0] << " " << format;
      EXPECT_EQ(one.err, eight.err) << command[0] << " " << format;
      EXPECT_EQ(one.status, eight.status) << command[0] << " " << format;
    }
  }
}

TEST_F(CliFleet, AListThatFailsIsARowAndTheOthersGoOn) {
  const std::string good = addList("z", document(httpSite("depot")));
  const std::string illFormed = addList("a", "<ns");
  fs::create_directories(file("fleet/fifo"));
  ASSERT_EQ(::mkfifo(file("fleet/fifo/SiteList.xml").c_str(), 0600), 0);
  fs::create_directories(file("fleet/itself"));
  fs::create_symlink("SiteList.xml", file("fleet/itself/SiteList.xml"));
  fs::create_directories(file("fleet/gone"));
  fs::create_symlink("nowhere", file("fleet/gone/SiteList.xml"));
  const std::string huge = addList("huge", "");
  fs::resize_file(huge, std::uintmax_t{200} << 20);
  const Output output =
      sitelist({"versions", "--format", "jsonl", file("fleet"), file("none.xml"), good});
  EXPECT_EQ(output.status, 4);
  EXPECT_EQ(output.err, "sitelist: 2 lists read, 6 failed\n");
  std::map<std::string, std::string> messages;
  for (const json& line : linesOf(output)) {
    if (!line.contains("error")) continue;
    EXPECT_EQ(line["status"], line["error"]["status"]);
    EXPECT_EQ(line["error"]["file"], line["file"]);
    messages[line["file"]] = line["error"]["message"];
  }
  EXPECT_EQ(messages.size(), 6U);
  EXPECT_THAT(messages[illFormed], HasSubstr("the document is not well formed"));
  EXPECT_THAT(messages[file("fleet/fifo/SiteList.xml")], HasSubstr("it is not a regular file"));
  EXPECT_THAT(messages[file("fleet/itself/SiteList.xml")], HasSubstr("symbolic links"));
  EXPECT_THAT(messages[file("fleet/gone/SiteList.xml")], HasSubstr("does not exist"));
  EXPECT_THAT(messages[huge], HasSubstr("larger than"));
  EXPECT_THAT(messages[file("none.xml")], HasSubstr("does not exist"));
}

TEST_F(CliFleet, ADirectoryOrListThatMayNotBeReadIsARow) {
  addList("a", document(httpSite("depot")));
  const std::string closed = addList("b/closed", document(httpSite("depot")));
  const std::string secret = addList("c", document(httpSite("depot")));
  fs::permissions(file("fleet/b"), fs::perms::none);
  fs::permissions(secret, fs::perms::none);
  // Root may read everything, so another user runs the tool.
  const bool isRoot = ::geteuid() == 0;
  const std::string script =
      isRoot ? "chmod 755 . && exec setpriv --reuid 65534 --regid 65534 --clear-groups \"$0\" "
               "--agent-dir none versions --format jsonl fleet"
             : "exec \"$0\" --agent-dir none versions --format jsonl fleet";
  const Output output = shell(script);
  fs::permissions(file("fleet/b"), fs::perms::owner_all);
  EXPECT_EQ(output.status, 4) << output.err;
  EXPECT_THAT(output.err, EndsWith("sitelist: 1 list read, 2 failed\n"));
  const std::vector<json> lines = linesOf(output);
  ASSERT_EQ(lines.size(), 3U) << output.err;
  EXPECT_EQ(lines[0]["file"], "fleet/a/SiteList.xml");
  EXPECT_EQ(lines[1]["file"], "fleet/b");
  EXPECT_THAT(lines[1]["error"]["message"].get<std::string>(),
              HasSubstr("the directory cannot be read: Permission denied"));
  EXPECT_EQ(lines[2]["file"], "fleet/c/SiteList.xml");
  EXPECT_THAT(lines[2]["error"]["message"].get<std::string>(), HasSubstr("Permission denied"));
}

TEST_F(CliFleet, ReadingCreatesNothingAndNeedsNoAgent) {
  addMixedLists(5);
  const auto before = snapshot(file("fleet"));
  for (const char* command : {"show", "versions", "certs", "servers", "explain", "validate"}) {
    EXPECT_EQ(sitelist({command, file("fleet")}).status, 3) << command;
  }
  EXPECT_EQ(sitelist({"summary", file("fleet")}).status, 3);
  EXPECT_EQ(snapshot(file("fleet")), before);
  EXPECT_FALSE(exists(file("agent")));
}

TEST_F(CliFleet, AnyNameOfADirectoryIsShownSafely) {
  const std::string text = document(httpSite("depot"));
  for (const char* name : {"a\nb", "a\"b,c", "a\x1b[31mb", "a\xff\xfe", "a\u202eb", "$(id)"}) {
    addList(name, text);
  }
  const Output lines = sitelist({"show", "--format", "jsonl", file("fleet")});
  EXPECT_EQ(linesOf(lines).size(), 6U);
  EXPECT_THAT(filesOf(lines), testing::Contains(file("fleet/a\nb/SiteList.xml")));
  EXPECT_EQ(json::parse(sitelist({"show", "--json", file("fleet")}).out)["sites"].size(), 6U);
  const Output table = sitelist({"show", file("fleet")});
  EXPECT_THAT(table.out, HasSubstr("a\\u000Ab"));
  EXPECT_THAT(table.out, HasSubstr("a\\u001B[31mb"));
  EXPECT_EQ(std::count(table.out.begin(), table.out.end(), '\n'), 7);
  EXPECT_THAT(sitelist({"show", "--format", "csv", file("fleet")}).out,
              HasSubstr("a\"\"b,c/SiteList.xml\""));
}

TEST_F(CliFleet, WithoutAListTheResultIsNegative) {
  fs::create_directories(file("fleet/empty"));
  for (const char* command :
       {"show", "versions", "certs", "servers", "explain", "validate", "summary"}) {
    const Output output = sitelist({command, "--format", "csv", file("fleet")});
    EXPECT_EQ(output.status, 1) << command;
    EXPECT_THAT(output.err, HasSubstr("fleet: no file SiteList.xml is in this directory or below "
                                      "it\n  next: "))
        << command;
    EXPECT_EQ(std::count(output.out.begin(), output.out.end(), '\n'), 1) << command;
  }
  const Output mixed = sitelist({"versions", file("fleet"), addList("a", document(""))});
  EXPECT_EQ(mixed.status, 0) << mixed.err;
}

TEST_F(CliFleet, ReadsStandardInputAndPipesAmongTheLists) {
  const std::string text = document(httpSite("depot"));
  const std::string path = addList("a", text);
  const Output output = sitelist({"versions", "--format", "jsonl", path, "-"}, text);
  EXPECT_THAT(filesOf(output), ElementsAre(path, "standard input"));
  EXPECT_EQ(sitelist({"versions", "-", path, "-"}, text).status, 2);
  const Output piped = shell(
      "mkfifo p && { cat fleet/a/SiteList.xml >p & } && \"$0\" versions --format jsonl p fleet");
  EXPECT_EQ(piped.status, 0) << piped.err;
  EXPECT_THAT(filesOf(piped), ElementsAre("p", "fleet/a/SiteList.xml"));
}

TEST_F(CliFleet, AnOutputThatClosesEarlyEndsTheTool) {
  addMixedLists(40);
  std::string files;
  for (int i = 0; i < 30; ++i) files += " fleet";  // more than a pipe holds
  for (const char* format : {"jsonl", "csv", "table"}) {
    const Output output = shell(std::string("trap '' PIPE; { \"$0\" show --format ") + format +
                                files + "; echo $? >status; } | head -n 1; cat status");
    EXPECT_THAT(output.out, EndsWith("\n4\n")) << output.err;
    EXPECT_EQ(output.err,
              "sitelist: cannot write to standard output: Broken pipe\n"
              "  next: check the disk, or the program that reads the output\n");
  }
}

TEST_F(CliFleet, ASignalEndsTheToolWhileItsThreadsWork) {
  addMixedLists(40);
  std::string files;
  for (int i = 0; i < 30; ++i) files += " fleet";
  // The tool waits in the middle of its output, because nobody reads the second line.
  const Output output = shell(
      "mkfifo out && { \"$0\" show --format jsonl" + files +
      " >out & } && tool=$! && exec 3<out && read -r line <&3 && kill -TERM $tool; wait $tool; "
      "echo \"$line\"; echo $?; wait $tool; echo $?");
  EXPECT_THAT(output.out, EndsWith("\n143\n")) << output.err;
}

TEST_F(CliFleet, SaysHowFarItIsOnlyOnATerminal) {
  addMixedLists(40);
  const auto onTerminal = [&](std::vector<std::string> arguments) {
    arguments.insert(arguments.end(), {"versions", file("fleet")});
    return withTerminalForMessages(arguments, "\n", [] {}).err;
  };
  EXPECT_THAT(onTerminal({}), HasSubstr("\r\033[K40 of 40 lists"));
  EXPECT_THAT(onTerminal({}), HasSubstr("sitelist: 32 lists read, 8 failed"));
  EXPECT_THAT(onTerminal({"--verbose"}), testing::Not(HasSubstr(" of 40 lists")));
  EXPECT_EQ(sitelist({"--quiet", "versions", file("fleet")}).err, "");
  EXPECT_EQ(sitelist({"--quiet", "versions", file("fleet")}).out, "");
}

TEST_F(CliFleet, WarnsOnceOfPasswordsThatCannotBeDecrypted) {
  for (const char* name : {"a", "b"}) addList(name, document(httpSite("depot", "1", "QUJDREVG")));
  // The passwords of a list that fails are not counted for another list.
  addList("aa", document(httpSite("depot", "1", "QUJDREVG") + "<Odd/>"));
  const Output output = sitelist({"show", "--json", "--jobs", "1", file("fleet")});
  EXPECT_EQ(output.status, 3) << output.err;
  EXPECT_THAT(json::parse(output.out)["warnings"],
              ElementsAre("2 passwords in 2 lists cannot be decrypted with the password key and "
                          "are read as empty"));
}

TEST_F(CliFleet, ServersOfAFileAreThoseOfTheAgentWithThisList) {
  initAgent();
  const std::string text =
      document(serverSite({{"SecurePort", "443"}, {"ServerIP", "[2001:db8::1]:80"}}) +
               serverSite({{"Name", "Other"}, {"Order", "2"}, {"Server", "b.example:81"}}) +
               httpSite("depot", "3"));
  setOwnList(text);
  const std::string path = write("list.xml", text);
  for (const std::vector<std::string>& options : std::vector<std::vector<std::string>>{
           {}, {"--all"}, {"--non-secure-port"}, {"--all", "--non-secure-port"}}) {
    std::vector<std::string> own = {"servers", "--json"};
    own.insert(own.end(), options.begin(), options.end());
    std::vector<std::string> named = own;
    named.push_back(path);
    const Output expected = sitelist(own);
    EXPECT_EQ(expected.status, 0) << expected.err;
    EXPECT_EQ(sitelist(named).out, expected.out);
  }
}

TEST_F(CliFleet, DiffToABaseHasTheRowsOfEachDiff) {
  const std::string base = write("base.xml", document(serverSite() + httpSite("depot", "2")));
  const std::string same = addList("same", readFile(base));
  const std::string other = addList("other", document(httpSite("depot", "3")));
  const Output many =
      sitelist({"diff", "--format", "jsonl", "--exit-code", "--to", base, same, other});
  EXPECT_EQ(many.status, 1) << many.err;
  std::vector<json> rows = linesOf(many);
  for (json& row : rows) {
    EXPECT_EQ(row["file"], other);
    row.erase("file");
  }
  EXPECT_EQ(json(rows), json::parse(sitelist({"diff", "--json", base, other}).out)["changes"]);
  EXPECT_EQ(sitelist({"diff", "--exit-code", "--to", base, same, same}).status, 0);
  EXPECT_EQ(sitelist({"diff", base, same, other}).status, 2);
  EXPECT_EQ(sitelist({"diff", "--to", base}).status, 2);
  EXPECT_EQ(sitelist({"diff", "--to", file("none.xml"), same, other}).status, 4);
}

TEST_F(CliFleet, AWrongNumberOfJobsIsWrongUsage) {
  addList("a", document(""));
  for (const char* jobs : {"0", "-1", "x", "257", "1x"}) {
    const std::string option = std::string("--jobs=") + jobs;
    EXPECT_EQ(sitelist({"versions", option, file("fleet")}).status, 2) << jobs;
    EXPECT_EQ(sitelist({"versions", option}).status, 2) << jobs;
  }
  EXPECT_EQ(sitelist({"versions", "--jobs", "256", file("fleet")}).status, 0);
}

TEST_F(CliFleet, SummaryFindsTheListsThatDifferMost) {
  const std::string usual = serverSite() + httpSite("depot", "2");
  addList("a", document(serverSite({{"Server", "gone.example:80"}})));
  for (const char* name : {"b", "c", "d"}) {
    addList(name,
            document(usual, "", std::string("GlobalVersion=\"1\" LocalVersion=\"") + name + "\""));
  }
  addList("e", document(usual + httpSite("extra", "3") +
                        "<KeystoneSite Type=\"repository\" Name=\"k\" Order=\"4\" "
                        "Server=\"agent.example:80\"/>"));
  const json report = json::parse(sitelist({"summary", "--json", file("fleet")}).out);
  EXPECT_EQ(report["mostFrequent"], file("fleet/b/SiteList.xml"));
  EXPECT_EQ(report["mostFrequentCount"], 3);
  EXPECT_EQ(report["byVersion"][0]["globalVersion"], "1");
  EXPECT_EQ(report["byVersion"][0]["lists"], 3);
  EXPECT_EQ(report["byVersion"][0]["localVersions"], 3);
  EXPECT_EQ(report["byServer"][0]["lists"], 4);
  ASSERT_EQ(report["byServer"].size(), 2U) << "an agent repository is not a management server";
  EXPECT_EQ(report["byServer"][1]["server"], "gone.example:80");
  ASSERT_EQ(report["mostDifferent"].size(), 2U);
  EXPECT_EQ(report["mostDifferent"][0]["file"], file("fleet/a/SiteList.xml"));
  EXPECT_EQ(report["mostDifferent"][0]["differences"], 2);
  EXPECT_EQ(report["mostDifferent"][1]["file"], file("fleet/e/SiteList.xml"));
  EXPECT_EQ(report["mostDifferent"][1]["differences"], 2);
}

TEST_F(CliFleet, ASummaryFitsOneScreen) {
  initAgent();
  for (int i = 0; i < 40; ++i) {
    const std::string number = std::to_string(i);
    addList(std::string(100, 'x') + number,
            document(serverSite({{"Server", "s" + number + ".example:80"}}) +
                         httpSite(std::string(100, 'd') + number, "2"),
                     "", "GlobalVersion=\"" + number + "\" LocalVersion=\"1\""));
  }
  const std::string out = onTerminal(80, {"--color", "never", "summary", file("fleet")}).out;
  std::size_t lines = 0;
  for (std::size_t begin = 0, end; (end = out.find('\n', begin)) != out.npos; begin = end + 1) {
    ++lines;
    EXPECT_LE(wide(out.substr(begin, end - begin)).size(), 81U) << "80 and a carriage return";
  }
  EXPECT_LE(lines, 40U);
  EXPECT_THAT(out, HasSubstr("and 36 more"));
}

}  // namespace
}  // namespace test
