#include "tests/cli/doctor_fixture.h"

#include <sys/stat.h>

#include <filesystem>

#include "tests/support/file_times.h"

namespace fs = std::filesystem;

namespace test {

using testing::HasSubstr;

CliDoctor::CliDoctor() {
  initAgent({"--managed"});
  setBothLists(list());
}

std::string CliDoctor::list(const std::string& sites, const std::string& beforeSites) {
  return document(serverSite() + httpSite("Depot", "2", protectedText("fair")) + sites,
                  beforeSites);
}

void CliDoctor::setBothLists(const std::string& document) {
  for (const std::string& path : {ownList(), meshCopy()}) {
    writeFile(path, document);
    ASSERT_EQ(::chmod(path.c_str(), 0640), 0);
  }
}

void CliDoctor::setBytes(const std::string& path, const std::string& bytes) {
  const mode_t mode = modeOf(path);
  writeFile(path, bytes);
  ASSERT_EQ(::chmod(path.c_str(), mode & 07777), 0);
}

JsonReport CliDoctor::doctor(int status, const Arguments& arguments) {
  const Output output = sitelist(Arguments{"doctor", "--format", "json"} + arguments);
  EXPECT_EQ(output.status, status) << output.out << output.err;
  return readReport(output.out);
}

std::vector<JsonReport::Record> CliDoctor::resultsOf(const JsonReport& report,
                                                     const std::string& check) {
  std::vector<JsonReport::Record> found;
  for (const JsonReport::Record& row : report.rows) {
    if (row.at("check") == check) found.push_back(row);
  }
  return found;
}

void CliDoctor::expectOnly(const std::string& check, const std::string& state,
                           const std::string& text, const std::string& next) {
  const JsonReport report = doctor(state == "failure" ? 1 : 0);
  int faults = 0;
  for (const JsonReport::Record& row : report.rows) {
    if (row.at("state") == "ok") continue;
    ++faults;
    EXPECT_EQ(row.at("check"), check) << row.at("text");
    EXPECT_EQ(row.at("state"), state);
    EXPECT_THAT(row.at("text"), HasSubstr(text));
    EXPECT_THAT(row.at("next"), HasSubstr(next));
  }
  EXPECT_EQ(faults, 1);
}

void CliDoctor::expectMended(const std::string& check, const std::string& text) {
  const JsonReport first = doctor(0, {"--fix"});
  EXPECT_EQ(first.facts.at("changed"), "true");
  EXPECT_EQ(first.facts.at("mendedCount"), "1");
  int mended = 0;
  for (const JsonReport::Record& row : resultsOf(first, check)) {
    if (row.at("mended") != "true") continue;
    ++mended;
    EXPECT_EQ(row.at("text"), "mended: " + text);
    EXPECT_EQ(row.at("state"), "ok");
  }
  EXPECT_EQ(mended, 1);
  const auto before = states();
  const JsonReport second = doctor(0, {"--fix"});
  EXPECT_EQ(second.facts.at("changed"), "false");
  EXPECT_EQ(second.facts.at("mendedCount"), "0");
  EXPECT_EQ(states(), before);
  expectHealthy();
}

void CliDoctor::expectHealthy() {
  const JsonReport report = doctor(0);
  EXPECT_EQ(report.facts.at("healthy"), "true");
  for (const JsonReport::Record& row : report.rows) {
    EXPECT_EQ(row.at("state"), "ok") << row.at("check") << ": " << row.at("text");
  }
}

std::map<std::string, std::string> CliDoctor::states() const {
  std::map<std::string, std::string> found;
  const auto add = [&found](const fs::path& path) {
    struct stat info {};
    ASSERT_EQ(::lstat(path.c_str(), &info), 0) << path;
    found[path.string()] =
        std::to_string(info.st_mode) + " " + std::to_string(info.st_uid) + " " +
        std::to_string(info.st_gid) + " " + std::to_string(info.st_ino) + " " +
        timeText(writtenAt(info)) + " " + timeText(changedAt(info)) + " " +
        (S_ISREG(info.st_mode) && (info.st_mode & S_IRUSR) != 0 ? readFile(path) : "");
  };
  add(file("agent"));
  for (const auto& entry : fs::recursive_directory_iterator(file("agent"))) add(entry.path());
  return found;
}

}  // namespace test
