#include <gmock/gmock.h>
#include <sys/stat.h>

#include <filesystem>

#include "tests/links/two_users.h"
#include "tests/resilience/workshop.h"

namespace fs = std::filesystem;

namespace {

using test::Operation;
using testing::IsEmpty;

// An agent's directories, in which root runs an operation first.
class AfterRoot : public testing::Test {
 protected:
  AfterRoot() {
    workshop.agent.settings.meshLoadCommand = {"/bin/sh", "-c", "exit 0"};
    workshop.agent.apply();
  }

  // Restores the first state. All files belong to the agent's user. `sparse`: only with what an
  // agent needs for a list, so that the operation makes the rest.
  void clean(const Operation& operation, bool sparse) {
    workshop.reset(operation);
    workshop.agent.apply();  // closes the lock files
    const std::string data = workshop.agent.dataDirectory();
    fs::remove_all(data + "/locks");
    if (sparse) {
      for (const char* made : {"mesh/SiteList.xml", "ServerSiteList.xml", "etc\\agentfipsmode"}) {
        fs::remove(data + "/" + made);
      }
      fs::remove(workshop.scratchList());
    }
    for (const std::string& root : workshop.roots()) test::giveToAgent(root);
    workshop.agent.clearLog();
  }

  // Runs one operation. Returns one line for each failure.
  std::vector<std::string> run(const Operation& operation) {
    std::vector<std::string> lines;
    workshop.agent.clearLog();
    const test::WorkshopFileSystem files(workshop);
    if (const int code = operation.run(workshop)) {
      lines.push_back(std::string(operation.name) + " gives " + std::to_string(code));
    }
    for (const std::wstring& text : workshop.agent.texts(LogLevel::Error)) {
      lines.push_back(std::string(operation.name) + " says " + test::narrow(text));
    }
    return lines;
  }

  // Every file and directory that is not the agent's.
  std::vector<std::string> foreign() const {
    std::vector<std::string> found;
    for (const std::string& root : workshop.roots()) {
      for (const auto& entry : fs::recursive_directory_iterator(root)) {
        struct stat info {};
        if (::lstat(entry.path().c_str(), &info) != 0 || info.st_uid != test::agentUser() ||
            info.st_gid != test::agentGroup()) {
          found.push_back(entry.path().string());
        }
      }
    }
    return found;
  }

  // The agent's user puts everything back and runs each operation.
  std::vector<std::string> runAllAsAgentUser() {
    return test::asAgentUser([this] {
      std::vector<std::string> lines;
      for (const auto* operations : {&test::readingOperations(), &test::writingOperations()}) {
        for (const Operation& operation : *operations) {
          workshop.reset(operation);
          const std::vector<std::string> more = run(operation);
          lines.insert(lines.end(), more.begin(), more.end());
        }
      }
      return lines;
    });
  }

  void expectTheAgentGoesOn(const Operation& operation, bool sparse) {
    SCOPED_TRACE(testing::Message() << operation.name << (sparse ? ", sparse" : ""));
    clean(operation, sparse);
    EXPECT_THAT(run(operation), IsEmpty());
    EXPECT_THAT(foreign(), IsEmpty());
    EXPECT_THAT(runAllAsAgentUser(), IsEmpty());
  }

  test::Workshop workshop;
};

TEST_F(AfterRoot, EverythingIsTheAgentsAndItsUserGoesOn) {
  for (const auto* operations : {&test::writingOperations(), &test::readingOperations()}) {
    for (const Operation& operation : *operations) {
      expectTheAgentGoesOn(operation, false);
      expectTheAgentGoesOn(operation, true);
    }
  }
}

}  // namespace
