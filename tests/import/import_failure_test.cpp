#include <filesystem>

#include "tests/import/import_fixture.h"
#include "tests/import/key_file_system.h"

using namespace sitehlp;
using namespace test;
using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;

namespace {

// Every failure of an installation is a failure of an import as well.
class IncomingFailure : public ImportFixture, public testing::WithParamInterface<bool> {
 protected:
  int bringIn() { return GetParam() ? import() : install(); }

  // Expects the code and, apart from the trace, these lines, and that nothing changed on disk.
  void expectRefusal(int code, const std::vector<LogLine>& lines) {
    const auto before = onDisk();
    EXPECT_EQ(bringIn(), code);
    EXPECT_THAT(libraryMessages(agent), ElementsAreArray(lines));
    EXPECT_EQ(onDisk(), before);
    EXPECT_THAT(snapshot(agent.dataDirectory() + "/mesh"), IsEmpty());
  }
  LogLine invalid(const std::string& path) const { return errorLine(wide(path) + L" is invalid"); }
  LogLine cannotWrite(const std::string& path) const {
    return errorLine(L"Can't write " + wide(path));
  }
  const LogLine otherSet = infoLine(L"There could be another set of key files to be used.");
};

INSTANTIATE_TEST_SUITE_P(Way, IncomingFailure, testing::Values(false, true),
                         [](const testing::TestParamInfo<bool>& way) {
                           return way.param ? "import" : "install";
                         });

// Shows: InstallSiteList=-4, ImportSiteList=-4
TEST_P(IncomingFailure, TheFileIsMissing) {
  expectRefusal(c_errorFileMissing, {errorLine(L"Failed hr=-4")});
}

// Shows: InstallSiteList=-1, ImportSiteList=-1
TEST_P(IncomingFailure, NoFileIsNamed) {
  const auto before = onDisk();
  agent.clearLog();
  EXPECT_EQ(GetParam() ? helper->ImportSiteList(L"", L"") : helper->InstallSiteList(L"", L""),
            c_errorGeneral);
  EXPECT_THAT(libraryMessages(agent), ElementsAre(internalErrorLine(L"path is empty")));
  EXPECT_EQ(onDisk(), before);
}

// Shows: InstallSiteList=-5, ImportSiteList=-5
TEST_P(IncomingFailure, TheFileIsIllFormed) {
  incomingList("<ns:SiteLists><SiteList>");
  expectRefusal(c_errorParse, {errorLine(L"Failed hr=-5")});
  incomingList("no markup at all");
  expectRefusal(c_errorParse, {errorLine(L"Failed hr=-5")});
}

// Shows: InstallSiteList=-10, ImportSiteList=-10
TEST_P(IncomingFailure, TheFileIsADirectory) {
  std::filesystem::create_directory(src);
  expectRefusal(c_errorRead, {errorLine(L"Failed hr=-10")});
}

// Shows: InstallSiteList=-1, ImportSiteList=-1
TEST_P(IncomingFailure, TheFileEndsWithAnUnknownElement) {
  incomingList(document(httpElement("a") + "<Unheard/>"));
  expectRefusal(c_errorGeneral, {errorLine(L"Failed hr=-1")});
}

TEST_P(IncomingFailure, TheKeyDirectoryLacksThePublicKey) {
  incomingList(document(httpElement("a")));
  expectRefusal(c_errorGeneral, beginning());
}

TEST_P(IncomingFailure, ThePublicKeyInTheKeyDirectoryIsEmpty) {
  incomingList(document(httpElement("a")));
  const std::string key = keyDir.file("srpubkey.bin");
  writeFile(key, "");
  expectRefusal(c_errorGeneral, joined(beginning(), {invalid(key), otherSet}));
}

TEST_P(IncomingFailure, ThePublicKeyInTheKeyDirectoryCannotBeRead) {
  incomingList(document(httpElement("a")));
  std::filesystem::create_directory(keyDir.file("srpubkey.bin"));
  expectRefusal(c_errorGeneral, beginning());
}

// Shows: InstallSiteList=-1, ImportSiteList=-1
TEST_P(IncomingFailure, TheKeysBesideTheListAreMissing) {
  incomingList(document(serverElement("s", "5.1")));
  writeFile(keyDir.file("srpubkey.bin"), "not consulted");
  expectRefusal(c_errorGeneral, beginning());
}

TEST_P(IncomingFailure, NoSetOfKeysIsComplete) {
  incomingList(document(serverElement("s", "5.1")));
  writeFile(incoming.file("srpubkey.bin"), "p");
  writeFile(incoming.file("req2048seckey.bin"), "r");
  expectRefusal(c_errorGeneral, beginning());
}

TEST_P(IncomingFailure, TheKeysBesideTheListAreEmpty) {
  incomingList(document(serverElement("s", "5.1")));
  incomingKeys();
  writeFile(incoming.file("srpubkey.bin"), "");
  writeFile(incoming.file("req2048seckey.bin"), "");
  expectRefusal(c_errorGeneral,
                joined(beginning(), {invalid(incoming.file("req2048seckey.bin")), otherSet,
                                     invalid(incoming.file("srpubkey.bin")), otherSet}));
}

TEST_P(IncomingFailure, ADestinationKeyIsReadOnly) {
  incomingList(document(serverElement("s", "5.1")));
  incomingKeys();
  for (const char* name :
       {"srpubkey.bin", "reqseckey.bin", "sr2048pubkey.bin", "req2048seckey.bin"}) {
    writeFile(agent.etc(name), "old");
    KeyFileSystem files;
    files.readOnly = {agent.etc(name)};
    expectRefusal(c_errorGeneral, joined(beginning(), {cannotWrite(agent.etc(name))}));
  }
}

TEST_P(IncomingFailure, TheListInPlaceIsReadOnly) {
  incomingList(document(serverElement("s", "5.1")));
  incomingKeys();
  KeyFileSystem files;
  files.readOnly = {own};
  expectRefusal(c_errorGeneral, joined(beginning(), {cannotWrite(own)}));
}

TEST_P(IncomingFailure, ADestinationKeyIsADirectoryAndTheKeysBeforeItStay) {
  incomingList(document(serverElement("s", "5.1")));
  incomingKeys();
  std::filesystem::create_directory(agent.etc("reqseckey.bin"));
  const std::string former = readFile(own);
  EXPECT_EQ(bringIn(), c_errorGeneral);
  EXPECT_THAT(libraryMessages(agent), ElementsAreArray(beginning()));
  EXPECT_EQ(onDisk(),
            (std::map<std::string, std::string>{{"SiteList.xml", former},
                                                {"srpubkey.bin", "srpubkey.bin"},
                                                {"sr2048pubkey.bin", "sr2048pubkey.bin"}}));
  EXPECT_THAT(snapshot(agent.dataDirectory() + "/mesh"), IsEmpty());
}

TEST_P(IncomingFailure, TheDestinationDirectoryCannotBeMade) {
  incomingList(document(serverElement("s", "5.1")));
  incomingKeys();
  helper->m_strSiteListFile = wide(own) + L"/below/SiteList.xml";
  const auto before = onDisk();
  EXPECT_EQ(bringIn(), c_errorGeneral);
  EXPECT_THAT(libraryMessages(agent),
              ElementsAre(detailLine(L"Import sitelist from " + wide(src) + L" to " +
                                     helper->m_strSiteListFile),
                          detailLine(L"Original local version of " + wide(src) + L" is L1")));
  EXPECT_EQ(onDisk(), before);
}

// Shows: InstallSiteList=-1, ImportSiteList=-1
TEST_P(IncomingFailure, TheListCannotBeWrittenAndTheKeysStay) {
  incomingList(document(serverElement("s", "5.1")));
  incomingKeys("new ");
  const std::string former = readFile(own);
  KeyFileSystem files;
  files.irreplaceable = {"SiteList.xml"};
  EXPECT_EQ(bringIn(), c_errorGeneral);
  // The write of the mesh copy fails in the same way here.
  EXPECT_THAT(
      libraryMessages(agent),
      ElementsAreArray(joined(beginning(), {errorLine(L"Failed to write mesh service sitelist."),
                                            errorLine(L"CreateSiteList failed hr=-11")})));
  EXPECT_EQ(onDisk(),
            (std::map<std::string, std::string>{{"SiteList.xml", former},
                                                {"srpubkey.bin", "new srpubkey.bin"},
                                                {"reqseckey.bin", "new reqseckey.bin"},
                                                {"sr2048pubkey.bin", "new sr2048pubkey.bin"},
                                                {"req2048seckey.bin", "new req2048seckey.bin"}}));
}

TEST_P(IncomingFailure, ADirectoryInThePlaceOfTheListLeavesTheMeshServiceWithTheNewOne) {
  incomingList(document(httpElement("a")));
  writeFile(keyDir.file("srpubkey.bin"), "key");
  std::filesystem::remove(own);
  std::filesystem::create_directory(own);
  EXPECT_EQ(bringIn(), c_errorGeneral);
  EXPECT_THAT(libraryMessages(agent),
              ElementsAreArray(
                  joined(beginning(), {meshLine, errorLine(L"CreateSiteList failed hr=-11")})));
  EXPECT_EQ(onDisk(), (std::map<std::string, std::string>{{"srpubkey.bin", "key"}}));
  EXPECT_TRUE(exists(agent.dataDirectory() + "/mesh/SiteList.xml"));
}

class InternalImport : public ImportFixture {
 protected:
  int bringIn(const std::string& from, const SiteChain& sites) {
    agent.clearLog();
    return helper->InternalImportSiteList(wide(from), sites.head(), L"");
  }
};

// Shows: InternalImportSiteList=0
TEST_F(InternalImport, WritesTheRecordsItIsGiven) {
  incomingList(document(httpElement("in the file")));
  const SiteChain sites{httpSite(L"given"), ftpSite(L"too")};
  EXPECT_EQ(bringIn(src, sites), 0);
  EXPECT_THAT(installedNames(), ElementsAre(L"given", L"too"));
  EXPECT_THAT(libraryMessages(agent), ElementsAreArray(joined(beginning(), {meshLine})));
}

// Shows: InternalImportSiteList=-4, InternalImportSiteList=-1, InternalImportSiteList=-10
TEST_F(InternalImport, FailsWithTheCodeOfTheVersions) {
  const SiteChain sites{httpSite(L"given")};
  const auto before = onDisk();
  EXPECT_EQ(bringIn(src, sites), c_errorFileMissing);
  EXPECT_THAT(libraryMessages(agent), ElementsAre(errorLine(L"Get version failed hr=-4")));
  incomingList("<ns:SiteLists>");
  EXPECT_EQ(bringIn(src, sites), c_errorGeneral);
  EXPECT_THAT(libraryMessages(agent), ElementsAre(errorLine(L"Get version failed hr=-1")));
  EXPECT_EQ(bringIn(incoming.path(), sites), c_errorRead);
  EXPECT_THAT(libraryMessages(agent), ElementsAre(errorLine(L"Get version failed hr=-10")));
  EXPECT_EQ(onDisk(), before);
}

TEST_F(InternalImport, ALastRecordOfUnknownKindIsAFailureAlthoughTheListIsWritten) {
  incomingList(document(httpElement("a")));
  tag_Site unknown = httpSite(L"unknown");
  unknown.eSiteKind = 9;
  const SiteChain sites{httpSite(L"given"), unknown};
  EXPECT_EQ(bringIn(src, sites), c_errorGeneral);
  EXPECT_THAT(
      libraryMessages(agent),
      ElementsAreArray(joined(beginning(), {meshLine, errorLine(L"CreateSiteList failed hr=-1")})));
  EXPECT_THAT(installedNames(), ElementsAre(L"given"));
}

}  // namespace
