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

// Root works in the directories of an agent whose user puts something in the way.
class PlantedLinks : public testing::Test {
 protected:
  static std::vector<Operation> allOperations() {
    std::vector<Operation> all = test::writingOperations();
    const std::vector<Operation>& reading = test::readingOperations();
    all.insert(all.end(), reading.begin(), reading.end());
    return all;
  }

  // Runs every operation with the plant in place. Whether any of them named it in an error.
  bool tryAll(const Name& name, Plant plant) {
    bool named = false;
    for (const Operation& operation : allOperations())
      named = tryOne(operation, name, plant) || named;
    return named;
  }

  void expectNamed(const Name& name, Plant plant, bool named) {
    // A second name of a file is no link that could be told; a link among the left-overs is left.
    if (plant == Plant::HardLink || name.kind == Name::Kind::LeftOver) return;
    if (!named) faults.add(name.path, std::string(nameOf(plant)) + " is never refused");
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
    workshop.agent.apply();  // lets the lock files go
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
      if (test::narrow(line).find(name.shown) != std::string::npos) return true;
    }
    return false;
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
      expectNamed(name, plant, tryAll(name, plant));
    }
  }
  EXPECT_THAT(faults.lines(), IsEmpty());
  EXPECT_EQ(faults.count(), 0U);
  EXPECT_GT(tried, 2000U);
  std::printf("%lu combinations, %lu break out\n", tried, faults.count());
}

}  // namespace
