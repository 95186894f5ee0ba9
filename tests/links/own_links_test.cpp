#include <gmock/gmock.h>

#include <filesystem>
#include <functional>

#include "tests/links/plants.h"
#include "tests/links/two_users.h"

namespace fs = std::filesystem;

namespace {

using test::Name;
using test::Operation;
using testing::IsEmpty;

// Links in the agent's directories that root or the writing user has created.
class OwnLinks : public testing::Test {
 protected:
  // Replaces a file or directory with a link to a copy of it.
  void link(const Name& name) {
    const std::string target = elsewhere.file("target");
    fs::remove_all(target);
    if (test::exists(name.path)) {
      fs::copy(name.path, target, fs::copy_options::recursive);
      fs::remove_all(name.path);
    }
    fs::create_symlink(target, name.path);
  }

  // Returns the faults after the operation.
  std::vector<std::string> runOver(const Name& name, const Operation& operation) {
    std::vector<std::string> lines;
    {
      const test::WorkshopFileSystem files(workshop);
      if (operation.run(workshop) != 0) lines.push_back("fails");
    }
    // An outdated key file is removed by its name, so a link is removed instead of its target.
    const bool isGone = !test::exists(name.path);
    if (!isGone && !fs::is_symlink(name.path)) lines.push_back("the link is replaced");
    return lines;
  }

  // Returns the contents at the end, read through the links.
  test::State contents() const {
    test::State state = workshop.state();
    for (const Name& name : test::namesOf(workshop)) {
      if (name.kind == Name::Kind::File && fs::is_symlink(name.path) && fs::exists(name.path)) {
        state[name.path] = test::normalForm(name.path, test::readFile(name.path));
      }
    }
    return state;
  }

  test::State withoutLinks(const Operation& operation) {
    workshop.reset(operation);
    const test::WorkshopFileSystem files(workshop);
    EXPECT_EQ(operation.run(workshop), 0);
    return workshop.state();
  }

  static bool mayBeLink(const Name& name) {
    return name.kind == Name::Kind::File && name.path.find("password.key") == std::string::npos;
  }

  void giveRootsToAgent() {
    for (const std::string& root : workshop.roots()) test::giveToAgent(root);
  }

  // Runs every operation as the agent's user, with a link in place of one file after the other.
  // `plant` creates the link. Returns the number of runs.
  unsigned long followedByAgentsUser(const std::function<void(const Name&)>& plant) {
    unsigned long followed = 0;
    for (const Operation& operation : test::writingOperations()) {
      for (const Name& name : test::namesOf(workshop)) {
        if (!mayBeLink(name)) continue;
        SCOPED_TRACE(testing::Message() << operation.name << " over " << name.path);
        workshop.reset(operation);
        workshop.agent.apply();
        plant(name);
        test::giveToAgent(elsewhere.path());
        EXPECT_THAT(test::asAgentUser([&] { return runOver(name, operation); }), IsEmpty());
        ++followed;
        cleanUp(name);
      }
    }
    return followed;
  }

  void cleanUp(const Name& name) {
    if (fs::is_symlink(name.path)) fs::remove(name.path);
  }

  test::Workshop workshop;
  test::TempDir elsewhere;
};

TEST_F(OwnLinks, AtTheEndOfAPathAreFollowedAndStay) {
  unsigned long followed = 0;
  for (const Operation& operation : test::writingOperations()) {
    const test::State expected = withoutLinks(operation);
    for (const Name& name : test::namesOf(workshop)) {
      if (!mayBeLink(name)) continue;
      SCOPED_TRACE(testing::Message() << operation.name << " over " << name.path);
      workshop.reset(operation);
      link(name);
      EXPECT_THAT(runOver(name, operation), IsEmpty());
      EXPECT_EQ(contents(), expected);
      ++followed;
      cleanUp(name);
    }
  }
  EXPECT_EQ(followed, 9 * test::writingOperations().size());
}

TEST_F(OwnLinks, OnTheWayAreFollowed) {
  const std::string made = workshop.agent.dataDirectory() + "/fresh";
  unsigned long followed = 0;
  for (const Operation& operation : test::writingOperations()) {
    const test::State expected = withoutLinks(operation);
    for (const Name& name : test::namesOf(workshop)) {
      if (name.kind != Name::Kind::Directory || name.path == made) continue;
      SCOPED_TRACE(testing::Message() << operation.name << " through " << name.path);
      workshop.reset(operation);
      workshop.agent.apply();
      if (!test::exists(name.path)) continue;  // the operation makes it
      const std::string aside = elsewhere.file("directory");
      fs::remove_all(aside);
      fs::copy(name.path, aside, fs::copy_options::recursive);
      fs::remove_all(name.path);
      fs::create_symlink(aside, name.path);
      EXPECT_THAT(runOver(name, operation), IsEmpty());
      EXPECT_TRUE(fs::is_symlink(name.path));
      fs::remove(name.path);
      fs::copy(aside, name.path, fs::copy_options::recursive);
      EXPECT_EQ(workshop.state(), expected);
      ++followed;
    }
  }
  // One operation itself creates the directory of the key.
  EXPECT_EQ(followed, 6 * test::writingOperations().size() - 1);
}

TEST_F(OwnLinks, OfRootAreFollowedByTheAgentsUser) {
  EXPECT_EQ(followedByAgentsUser([&](const Name& name) {
              giveRootsToAgent();
              link(name);  // of the user who runs the test
            }),
            9 * test::writingOperations().size());
}

TEST_F(OwnLinks, OfTheAgentsUserAreFollowedByThatUser) {
  EXPECT_EQ(followedByAgentsUser([&](const Name& name) {
              link(name);
              giveRootsToAgent();
            }),
            9 * test::writingOperations().size());
}

}  // namespace
