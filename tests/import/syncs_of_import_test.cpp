#include <sys/stat.h>

#include "tests/import/import_fixture.h"
#include "tests/support/synced_paths.h"

using namespace sitehlp;
using namespace test;
using testing::ElementsAre;

namespace {

class SyncsOfAnImport : public ImportFixture {
 protected:
  SyncsOfAnImport() {
    incomingList(document(serverElement("s", "5.1"), ""));
    incomingKeys("old ");
    syncs();  // the first import creates the password key
    incomingKeys();
  }
  // Imports once, and returns what was synced in the agent's data directory.
  std::vector<std::string> syncs() {
    const RecordingFileSystem files;
    EXPECT_EQ(import(), c_success);
    return syncedPaths(files, agent.dataDirectory());
  }
  ino_t inodeOf(const std::string& name) {
    struct stat status {};
    EXPECT_EQ(::stat(agent.etc(name).c_str(), &status), 0) << name;
    return status.st_ino;
  }
};

TEST_F(SyncsOfAnImport, OneOfTheDirectoryForAllKeyFilesAndThenThoseOfTheLists) {
  EXPECT_THAT(syncs(), ElementsAre("etc/srpubkey.bin", "etc/sr2048pubkey.bin", "etc/reqseckey.bin",
                                   "etc/req2048seckey.bin", "etc", "etc/SiteList.xml", "etc",
                                   "mesh/SiteList.xml", "mesh"));
}

// Another program may have written the same keys without a sync. The list must not be on the disk
// before them.
TEST_F(SyncsOfAnImport, IncludeKeyFilesThatAreNotWrittenAgain) {
  const std::vector<std::string> first = syncs();
  const ino_t key = inodeOf("req2048seckey.bin");
  const ino_t list = inodeOf("SiteList.xml");
  EXPECT_EQ(syncs(), first);
  EXPECT_EQ(inodeOf("req2048seckey.bin"), key);
  EXPECT_NE(inodeOf("SiteList.xml"), list) << "the list is always written";
}

TEST_F(SyncsOfAnImport, AreTheSameIfOneKeyFileChanged) {
  const std::vector<std::string> first = syncs();
  const ino_t same = inodeOf("srpubkey.bin");
  const ino_t changed = inodeOf("reqseckey.bin");
  writeFile(incoming.file("reqseckey.bin"), "another key");
  EXPECT_EQ(syncs(), first);
  EXPECT_EQ(inodeOf("srpubkey.bin"), same);
  EXPECT_NE(inodeOf("reqseckey.bin"), changed);
  EXPECT_EQ(readFile(agent.etc("reqseckey.bin")), "another key");
}

}  // namespace
