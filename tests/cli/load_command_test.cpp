#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <future>

#include "host/fs/descriptor.h"
#include "tests/cli/edit_fixture.h"
#include "tests/support/locker.h"

// The tool does not hold the lock of the list while the load command runs. Another process takes
// the lock then.
namespace test {
namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::MatchesRegex;

class CliLoadCommand : public CliEdit {
 protected:
  CliLoadCommand() { setOwnList(document(sitesWithOrders({"1", "2"}))); }

  // The load command writes to the pipe "started" and then waits for a line from the pipe "end".
  void setHistory(const std::string& length) {
    write("agent/agent.toml", "history = " + length +
                                  "\nmesh.load_command = [\"/bin/sh\", \"-c\", \"echo > " +
                                  file("started") + "; read line < " + file("end") + "\"]\n");
  }

  // Changes the list. Another process holds the lock from the load command until the tool has
  // ended.
  Output changeBesideAHolder(const std::string& wait) {
    const host::Descriptor started(newPipe("started"));
    const host::Descriptor end(newPipe("end"));
    Locker other(file("agent"));
    auto change = std::async(std::launch::async, [&] {
      Output output = sitelist({"--wait", wait, "policies", "set", "Name", "Value"});
      EXPECT_EQ(::write(started.get(), "\n", 1), 1);  // if no load command ran
      return output;
    });
    char line = 0;
    EXPECT_EQ(::read(started.get(), &line, 1), 1);
    EXPECT_TRUE(other.lock(Locker::Mode::Write));
    EXPECT_EQ(::write(end.get(), "\n", 1), 1);
    const Output output = change.get();
    other.unlock(Locker::Mode::Write);
    return output;
  }

  std::vector<std::string> kept() const {
    std::vector<std::string> names;
    if (!exists(file("agent/etc/history"))) return names;
    for (const auto& entry : fs::directory_iterator(file("agent/etc/history"))) {
      names.push_back(entry.path().filename());
    }
    std::sort(names.begin(), names.end());
    return names;
  }

 private:
  // The test opens both ends, so no other process waits when it opens the pipe.
  int newPipe(const char* name) {
    EXPECT_EQ(::mkfifo(file(name).c_str(), S_IRUSR | S_IWUSR), 0);
    return ::open(file(name).c_str(), O_RDWR | O_CLOEXEC);
  }
};

TEST_F(CliLoadCommand, LeavesTheHistoryToTheNextCommandIfTheLockIsTaken) {
  setHistory("10");
  EXPECT_EQ(changeBesideAHolder("0").status, 0);
  EXPECT_THAT(kept(), ElementsAre(MatchesRegex("pending[0-9]+-[0-9T]+Z-policies_set\\.xml")));
  write("agent/agent.toml", "");
  change({"enable", "a"});
  EXPECT_THAT(kept(), ElementsAre(MatchesRegex("1-.*-policies_set\\.xml"),
                                  MatchesRegex("2-.*-edit_enable\\.xml")));
}

TEST_F(CliLoadCommand, WithoutAHistoryTheLockIsNotNeededAgain) {
  setHistory("0");
  EXPECT_EQ(changeBesideAHolder("3600").status, 0);
  EXPECT_THAT(kept(), IsEmpty());
}

}  // namespace
}  // namespace test
