#include <filesystem>

#include "tests/cli/documents.h"
#include "tests/cli/edit_fixture.h"

namespace test {
namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;
using testing::Not;

// An agent whose load command notes each load, and reads the list without waiting for its lock.
class CliMeshCopy : public CliTest {
 protected:
  void SetUp() override {
    const std::string load = "echo loaded >> '" + file("loads") + "'; exec '" SITELIST_TOOL +
                             "' --agent-dir '" + file("agent") + "' --wait 0 get type";
    ASSERT_EQ(sitelist({"init", "--mesh-command", "/bin/sh", "-c", load}).status, 0);
    setOwnList(document(serverSite({{"Name", "Old"}}) + httpSite("depot", "2")));
    write("in/SiteList.xml", document(serverSite({{"Name", "New"}}) + httpSite("depot", "2")));
  }

  std::string meshCopy() const { return file("agent/mesh/SiteList.xml"); }
  std::string loads() const { return exists(file("loads")) ? readFile(file("loads")) : ""; }
};

TEST_F(CliMeshCopy, FollowsEveryCommandThatChangesTheOwnList) {
  const std::string incoming = file("in/SiteList.xml");
  for (const Arguments& command : {
           Arguments{"import", incoming},
           {"install", incoming},
           {"modify", "--servers", incoming},
           {"policies", "set", "name", "value"},
           {"policies", "unset", "name"},
           {"merge", "--first", incoming, "--output", ownList()},
           {"rewrite", incoming, ownList()},
           {"edit", "disable", "depot"},
           {"edit", "--file", ownList(), "rename", "depot", "store"},
           {"edit", "remove", "store"},
           {"undo"},
       }) {
    SCOPED_TRACE(testing::PrintToString(command));
    fs::remove(file("loads"));
    write("agent/mesh/SiteList.xml", "stale");
    const Output changed = sitelist(command);
    EXPECT_EQ(changed.status, 0) << changed.err;
    EXPECT_EQ(readFile(meshCopy()), readFile(ownList()));
    EXPECT_EQ(loads(), "loaded\n");
    EXPECT_THAT(changed.err, Not(HasSubstr("load command"))) << "it got the lock";
  }
}

TEST_F(CliMeshCopy, StaysAsItIsWhenTheOwnListDoes) {
  const std::string other = write("other.xml", readFile(ownList()));
  write("agent/mesh/SiteList.xml", "stale");
  write("agent/etc/history/1-20260101T000000Z-import.xml", document(httpSite("store")));
  ASSERT_EQ(sitelist({"edit", "--file", other, "disable", "depot"}).status, 0);
  for (const Arguments& command : {
           Arguments{"edit", "enable", "depot"},
           {"edit", "--dry-run", "disable", "depot"},
           {"edit", "--file", other, "enable", "depot"},
           {"undo", "--dry-run", "1"},
           {"modify", "--dry-run", "--servers", file("in/SiteList.xml")},
           {"merge", "--first", file("in/SiteList.xml"), "--output", other},
           {"rewrite", file("in/SiteList.xml"), other},
       }) {
    SCOPED_TRACE(testing::PrintToString(command));
    const Output output = sitelist(command);
    EXPECT_EQ(output.status, 0) << output.err;
    EXPECT_EQ(readFile(meshCopy()), "stale");
    EXPECT_EQ(loads(), "");
  }
}

TEST_F(CliMeshCopy, ThatCannotBeWrittenIsSaidAndTheChangeStays) {
  fs::remove_all(file("agent/mesh"));
  const Output output = sitelist({"edit", "disable", "depot"});
  EXPECT_EQ(output.status, 0);
  EXPECT_THAT(output.err, HasSubstr("sitelist: warning: " + meshCopy() +
                                    ": the mesh copy could not be written: No such file or "
                                    "directory\n  next: check that its directory exists"));
  EXPECT_THAT(readFile(ownList()), HasSubstr("Enabled=\"0\""));
  EXPECT_EQ(loads(), "");
}

TEST_F(CliMeshCopy, ALoadCommandThatFailsIsNamed) {
  write("agent/agent.toml", "mesh.load_command = [\"/bin/sh\", \"-c\", \"exit 3\"]\n");
  const Output output = sitelist({"edit", "disable", "depot"});
  EXPECT_EQ(output.status, 0);
  EXPECT_THAT(output.err,
              HasSubstr("Mesh service load command /bin/sh failed: it ended with status 3\n"));
}

}  // namespace
}  // namespace test
