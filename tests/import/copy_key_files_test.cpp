#include <filesystem>

#include "tests/import/import_fixture.h"
#include "tests/import/key_file_system.h"

using namespace sitehlp;
using namespace test;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;

namespace {

class CopyKeyFiles : public ImportFixture {
 protected:
  CopyKeyFiles() {
    tag_Site site = serverSite(L"s");
    oldServer.add(site);
    setText(site.http.szVersion, L"5.1");
    newServer.add(site);
  }
  bool copy(const SiteChain& sites, const std::string& keyDirectory) {
    agent.clearLog();
    return helper->createDirectoriesAndCopyKeyFiles(wide(src), sites.head(), wide(keyDirectory));
  }
  // Everything in the destination directory but the list.
  std::map<std::string, std::string> keys() {
    auto files = onDisk();
    files.erase("SiteList.xml");
    return files;
  }

  SiteChain oldServer;
  SiteChain newServer;
};

TEST_F(CopyKeyFiles, BothSetsAreCopiedUnchanged) {
  incomingKeys("content of ");
  EXPECT_TRUE(copy(newServer, ""));
  EXPECT_EQ(keys(), (std::map<std::string, std::string>{
                        {"srpubkey.bin", "content of srpubkey.bin"},
                        {"reqseckey.bin", "content of reqseckey.bin"},
                        {"sr2048pubkey.bin", "content of sr2048pubkey.bin"},
                        {"req2048seckey.bin", "content of req2048seckey.bin"}}));
  EXPECT_THAT(libraryMessages(agent), IsEmpty());
}

TEST_F(CopyKeyFiles, TheNewerSetAloneLeavesTheOlderRequestKey) {
  writeFile(incoming.file("sr2048pubkey.bin"), "P");
  writeFile(incoming.file("req2048seckey.bin"), "R");
  writeFile(agent.etc("reqseckey.bin"), "old");
  EXPECT_TRUE(copy(newServer, ""));
  EXPECT_THAT(keys(), ElementsAre(Pair("req2048seckey.bin", "R"), Pair("reqseckey.bin", "old"),
                                  Pair("sr2048pubkey.bin", "P")));
}

TEST_F(CopyKeyFiles, AnOldServersPublicKeyRemovesTheOlderRequestKeyOnly) {
  writeFile(keyDir.file("srpubkey.bin"), "p");
  writeFile(agent.etc("reqseckey.bin"), "old");
  writeFile(agent.etc("req2048seckey.bin"), "old");
  EXPECT_TRUE(copy(oldServer, keyDir.path()));
  EXPECT_THAT(keys(), ElementsAre(Pair("req2048seckey.bin", "old"), Pair("srpubkey.bin", "p")));
}

TEST_F(CopyKeyFiles, ARequestKeyThatCannotBeRemovedFailsTheCall) {
  writeFile(keyDir.file("srpubkey.bin"), "p");
  writeFile(agent.etc("reqseckey.bin"), "old");
  KeyFileSystem files;
  files.irremovable = {"reqseckey.bin"};
  EXPECT_FALSE(copy(oldServer, keyDir.path()));
  EXPECT_THAT(keys(), ElementsAre(Pair("reqseckey.bin", "old"), Pair("srpubkey.bin", "p")));
}

// The name of the marker begins with a backslash, and there is no separator before it.
class FipsMarker : public CopyKeyFiles {
 protected:
  FipsMarker() { std::filesystem::create_directory(incoming.file("deep")); }
  bool copyDeep(const SiteChain& sites) {
    return helper->createDirectoriesAndCopyKeyFiles(wide(incoming.file("deep/SiteList.xml")),
                                                    sites.head(), L"");
  }
  void deepKeys() {
    writeFile(incoming.file("deep/srpubkey.bin"), "p");
    writeFile(incoming.file("deep/reqseckey.bin"), "r");
  }

  const std::string source = incoming.file("deep\\agentfipsmode");
  const std::string destination = agent.dataDirectory() + "/etc\\agentfipsmode";
};

TEST_F(FipsMarker, IsCopiedEvenWhereNoKeysCome) {
  writeFile(source, "on");
  EXPECT_TRUE(copyDeep(oldServer));
  EXPECT_THAT(keys(), IsEmpty());
  EXPECT_EQ(readFile(destination), "on");
}

TEST_F(FipsMarker, IsCopiedBehindTheKeys) {
  writeFile(source, "on");
  deepKeys();
  KeyFileSystem files;
  EXPECT_TRUE(copyDeep(newServer));
  EXPECT_THAT(files.changes, ElementsAre("srpubkey.bin", "reqseckey.bin", "etc\\agentfipsmode"));
}

TEST_F(FipsMarker, IsNotCopiedWhenAKeyCouldNotBeWritten) {
  writeFile(source, "on");
  deepKeys();
  KeyFileSystem files;
  files.irreplaceable = {"reqseckey.bin"};
  EXPECT_FALSE(copyDeep(newServer));
  EXPECT_FALSE(exists(destination));
}

TEST_F(FipsMarker, MayBeMissing) {
  writeFile(destination, "old");
  EXPECT_TRUE(copyDeep(oldServer));
  EXPECT_EQ(readFile(destination), "old");
}

TEST_F(FipsMarker, MayFailToBeCopied) {
  writeFile(source, "on");
  std::filesystem::create_directory(destination);
  EXPECT_TRUE(copyDeep(oldServer));
}

TEST_F(CopyKeyFiles, MissingKeysFailTheCall) {
  EXPECT_FALSE(copy(newServer, ""));
  EXPECT_FALSE(copy(oldServer, keyDir.path()));
  EXPECT_THAT(keys(), IsEmpty());
  EXPECT_THAT(libraryMessages(agent), IsEmpty());
}

TEST_F(CopyKeyFiles, TheDestinationDirectoryIsMadeBeforeTheKeysAreRead) {
  const std::string deep = agent.dataDirectory() + "/not/yet/there";
  helper->m_strSiteListFile = wide(deep + "/SiteList.xml");
  EXPECT_FALSE(copy(newServer, ""));
  EXPECT_TRUE(std::filesystem::is_directory(deep));
  incomingKeys();
  EXPECT_TRUE(copy(newServer, ""));
  EXPECT_EQ(snapshot(deep).size(), 4u);
}

TEST_F(CopyKeyFiles, ADestinationDirectoryThatCannotBeMadeFailsTheCall) {
  incomingKeys();
  helper->m_strSiteListFile = wide(own) + L"/SiteList.xml";
  EXPECT_FALSE(copy(newServer, ""));
  EXPECT_THAT(keys(), IsEmpty());
  EXPECT_THAT(libraryMessages(agent), IsEmpty());
}

TEST_F(CopyKeyFiles, TheListIsAskedForWriteAccessFirst) {
  incomingKeys();
  writeFile(agent.etc("srpubkey.bin"), "old");
  KeyFileSystem files;
  files.readOnly = {own, agent.etc("srpubkey.bin")};
  EXPECT_FALSE(copy(newServer, ""));
  EXPECT_THAT(libraryMessages(agent), ElementsAre(errorLine(L"Can't write " + wide(own))));
  EXPECT_THAT(keys(), ElementsAre(Pair("srpubkey.bin", "old")));
}

TEST_F(CopyKeyFiles, TheKeysAreAskedForWriteAccessInOrderAndBeforeAnyIsWritten) {
  incomingKeys();
  std::vector<std::string> order;
  for (const char* name :
       {"srpubkey.bin", "reqseckey.bin", "sr2048pubkey.bin", "req2048seckey.bin"}) {
    order.push_back(agent.etc(name));
    writeFile(agent.etc(name), "old");
  }
  KeyFileSystem files;
  files.readOnly = order;
  const auto before = onDisk();
  while (!files.readOnly.empty()) {
    EXPECT_FALSE(copy(newServer, ""));
    EXPECT_THAT(libraryMessages(agent),
                ElementsAre(errorLine(L"Can't write " + wide(files.readOnly.front()))));
    EXPECT_EQ(onDisk(), before);
    files.readOnly.erase(files.readOnly.begin());
  }
  EXPECT_TRUE(copy(newServer, ""));
}

TEST_F(CopyKeyFiles, OnlyKeysThatAreToBeWrittenNeedWriteAccess) {
  writeFile(incoming.file("sr2048pubkey.bin"), "P");
  writeFile(incoming.file("req2048seckey.bin"), "R");
  writeFile(agent.etc("srpubkey.bin"), "old");
  writeFile(agent.etc("reqseckey.bin"), "old");
  KeyFileSystem files;
  files.readOnly = {agent.etc("srpubkey.bin"), agent.etc("reqseckey.bin")};
  EXPECT_TRUE(copy(newServer, ""));
}

TEST_F(CopyKeyFiles, TheKeysAreReadBeforeWriteAccessIsAskedFor) {
  KeyFileSystem files;
  files.readOnly = {own};
  EXPECT_FALSE(copy(newServer, ""));
  EXPECT_THAT(libraryMessages(agent), IsEmpty());
}

TEST_F(CopyKeyFiles, AFailedWriteFailsTheCall) {
  incomingKeys();
  KeyFileSystem files;
  files.irreplaceable = {"req2048seckey.bin"};
  EXPECT_FALSE(copy(newServer, ""));
  EXPECT_THAT(keys(), ElementsAre(Pair("reqseckey.bin", "reqseckey.bin"),
                                  Pair("sr2048pubkey.bin", "sr2048pubkey.bin"),
                                  Pair("srpubkey.bin", "srpubkey.bin")));
}

}  // namespace
