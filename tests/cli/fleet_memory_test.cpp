#include <fcntl.h>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>
#include <iostream>
#include <nlohmann/json.hpp>

#include "tests/cli/cli_fixture.h"
#include "tests/cli/documents.h"
#include "tests/support/sanitizer.h"

extern char** environ;

// The memory of a command does not grow with the number of lists.
namespace test {
namespace {

namespace fs = std::filesystem;

class CliFleetMemory : public CliTest {
 protected:
  // Writes that many lists of twelve sites.
  void addLists(const std::string& directory, int count) {
    for (int i = 0; i < count; ++i) {
      const std::string number = std::to_string(i);
      std::string sites = serverSite();
      for (int site = 2; site <= 12; ++site) {
        sites += httpSite("Depot " + number + "-" + std::to_string(site), std::to_string(site));
      }
      fs::create_directories(file(directory + "/e" + number));
      write(directory + "/e" + number + "/SiteList.xml", document(sites));
    }
  }

  // Returns the largest memory use of a program, which must succeed. Its output is in "output".
  long peakOf(std::vector<std::string> words) {
    std::vector<char*> pointers;
    for (std::string& word : words) pointers.push_back(word.data());
    pointers.push_back(nullptr);
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, file("output").c_str(),
                                     O_WRONLY | O_CREAT | O_TRUNC, 0600);
    posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
    pid_t pid = 0;
    const int error =
        ::posix_spawn(&pid, SITELIST_TOOL, &actions, nullptr, pointers.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    EXPECT_EQ(error, 0);
    int status = 0;
    rusage usage = {};
    EXPECT_EQ(::wait4(pid, &status, 0, &usage), pid);
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << status;
    return usage.ru_maxrss;
  }
};

TEST_F(CliFleetMemory, TenTimesTheListsNeedHardlyMoreMemory) {
  addLists("few", 200);
  addLists("many", 2000);
  // The sanitizers keep released memory for a while, so only the output is checked with them.
  const double bound = TESTS_SANITIZED ? 100 : 1.3;
  if (TESTS_SANITIZED) std::cout << "with sanitizers, memory is not compared\n";
  for (const char* format : {"table", "json", "jsonl", "csv", "xml"}) {
    const auto peak = [&](const char* directory) {
      return peakOf({SITELIST_TOOL, "--agent-dir", file("agent"), "--format", format, "show",
                     "--jobs", "4", file(directory)});
    };
    const long few = peak("few");
    const auto small = fs::file_size(file("output"));
    const long many = peak("many");
    EXPECT_GT(fs::file_size(file("output")), small * 9) << format;
    EXPECT_LE(many, static_cast<long>(static_cast<double>(few) * bound)) << format;
  }
}

TEST_F(CliFleetMemory, ALargeDocumentIsCompleteAndLeavesNoFile) {
  addLists("many", 1000);
  const nlohmann::json report =
      nlohmann::json::parse(sitelist({"show", "--json", file("many")}).out);
  EXPECT_EQ(report["rowCount"], 12000);
  EXPECT_EQ(report["sites"].size(), 12000U);
  EXPECT_EQ(report["sites"][11999]["name"], "Depot 999-12");
}

TEST_F(CliFleetMemory, SaysWhenTheTemporaryFileCannotBeMade) {
  addLists("many", 1000);
  const Output output = shell("TMPDIR=/nonexistent exec \"$0\" show --json many");
  EXPECT_EQ(output.status, 4);
  EXPECT_EQ(output.err,
            "sitelist: /nonexistent: the rows could not be stored in a temporary file: No such "
            "file or directory\n  next: free space there, set TMPDIR to another directory, or use "
            "--format jsonl\n");
  EXPECT_EQ(nlohmann::json::parse(output.out)["error"]["name"], "file");
  const Output lines = shell("TMPDIR=/nonexistent exec \"$0\" show --format jsonl many");
  EXPECT_EQ(lines.status, 0) << "no temporary file is needed";
}

}  // namespace
}  // namespace test
