#include <gmock/gmock.h>

#include <cstdio>

#include "tests/links/plants.h"
#include "tests/links/two_users.h"
#include "tests/resilience/experiment.h"

namespace {

using test::Name;
using test::Operation;
using test::Plant;
using testing::IsEmpty;

// As many bytes as a key has.
const std::string c_foreignBytes = "another user's thirty-two bytes.";

// Root runs operations in the directories of an agent. The agent's user has created links there.
class PlantedLinks : public testing::Test {
 protected:
  static std::vector<Operation> allOperations() {
    std::vector<Operation> all = test::writingOperations();
    const std::vector<Operation>& reading = test::readingOperations();
    all.insert(all.end(), reading.begin(), reading.end());
    return all;
  }

  // Runs every operation with the plant in place. Returns whether one of them reported a refusal.
  bool tryAll(const Name& name, Plant plant) {
    bool refused = false;
    for (const Operation& operation : allOperations())
      refused = tryOne(operation, name, plant) || refused;
    return refused;
  }

  void expectRefused(const Name& name, Plant plant, bool refused) {
    // A hard link cannot be recognised as a link. A symbolic link among the temporary files
    // remains.
    if (plant == Plant::HardLink || name.kind == Name::Kind::LeftOver) return;
    if (!refused) faults.add(name.path, std::string(nameOf(plant)) + " is never refused");
  }

  test::Workshop workshop;
  test::Outside outside;
  test::Faults faults;
  unsigned long tried = 0;

 private:
  bool tryOne(const Operation& operation, const Name& name, Plant plant) {
    const std::string where =
        std::string(operation.name) + ", " + nameOf(plant) + " as " + name.path;
    workshop.reset(operation);
    workshop.agent.apply();  // closes the lock files
    outside.prepare(bytesOf(name), name.path);
    for (const std::string& root : workshop.roots()) test::giveToAgent(root);
    const test::Planted planted(name, plant, outside);
    workshop.agent.clearLog();
    const bool keepsSecondName = name.kind == Name::Kind::LockFile || plant != Plant::HardLink;
    const auto before = outside.state(keepsSecondName);
    {
      const test::PlantedFileSystem files(workshop, name);
      operation.run(workshop);
    }
    ++tried;
    faults.addIfAny(where, test::difference(before, outside.state(keepsSecondName)));
    for (const std::wstring& line : workshop.agent.texts(LogLevel::Error)) {
      if (test::narrow(line).find(refusalOf(name, plant)) != std::string::npos) return true;
    }
    return false;
  }

  static bool nameIs(const Name& name, const char* last) {
    return name.shown.substr(name.shown.rfind('/') + 1) == last;
  }

  // Returns the expected error for a link with this name.
  static std::string refusalOf(const Name& name, Plant plant) {
    if (plant == Plant::LinkToFile && nameIs(name, "keystore")) {
      // There is no path below a file, so the owner of the link does not matter.
      return "Key file " + name.shown + "/password.key: cannot be opened: Not a directory";
    }
    if (name.kind == Name::Kind::LockFile) {
      return name.shown + ": it is a symbolic link, which is never used as a lock file";
    }
    if (nameIs(name, "password.key")) {
      return name.shown + ": refused, it is a symbolic link";
    }
    return "the symbolic link " + name.shown + " belongs to user";
  }

  static std::string bytesOf(const Name& name) {
    const bool isThere = test::exists(name.path) && name.kind != Name::Kind::Directory;
    const std::string bytes = isThere ? test::readFile(name.path) : std::string();
    return bytes.empty() ? c_foreignBytes : bytes;
  }
};

TEST_F(PlantedLinks, LeadRootToNothingOutsideTheAgentsDirectories) {
  for (const Name& name : test::namesOf(workshop)) {
    for (const Plant plant : test::plantsFor(name)) {
      expectRefused(name, plant, tryAll(name, plant));
    }
  }
  EXPECT_THAT(faults.lines(), IsEmpty());
  EXPECT_EQ(faults.count(), 0U);
  EXPECT_GT(tried, 2000U);
  std::printf("%lu combinations, %lu faults\n", tried, faults.count());
}

// The list comes last, but whether it can be written is known before the first key file.
TEST_F(PlantedLinks, OverTheListInPlaceKeepTheKeyFilesToo) {
  for (const Operation& operation : test::writingOperations()) {
    const std::string called = operation.name;
    if (called != "import" && called != "install") continue;
    for (const Plant plant : {Plant::LinkToFile, Plant::DanglingLink, Plant::ChainOfLinks}) {
      SCOPED_TRACE(testing::Message() << called << ", " << test::nameOf(plant));
      workshop.reset(operation);
      const Name own = {workshop.own(), Name::Kind::File, workshop.own()};
      outside.prepare(c_foreignBytes, own.path);
      for (const std::string& root : workshop.roots()) test::giveToAgent(root);
      const test::State before = workshop.state();
      {
        const test::Planted planted(own, plant, outside);
        const test::PlantedFileSystem files(workshop, own);
        EXPECT_NE(operation.run(workshop), 0);
      }
      EXPECT_EQ(workshop.state(), before);
      ++tried;
    }
  }
  EXPECT_EQ(tried, 6U);
}

}  // namespace
