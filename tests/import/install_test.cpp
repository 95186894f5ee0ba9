#include "tests/import/import_fixture.h"
#include "tests/import/key_file_system.h"

using namespace sitehlp;
using namespace test;
using testing::AllOf;
using testing::Contains;
using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::MatchesRegex;
using testing::Not;

namespace {

class Install : public ImportFixture {
 protected:
  Install() { writeFile(keyDir.file("srpubkey.bin"), "key"); }
};

// Shows: InstallSiteList=0
TEST_F(Install, MakesTheIncomingListTheAgentsOwn) {
  incomingList(document(httpElement("a") + serverElement("s") + proxyElement("p") +
                        element("FTPSite", "f", R"(Type="repository" Order="5" Enabled="1")") +
                        element("UNCSite", "u", R"(Type="mirror" Enabled="1" Server="FILES")") +
                        element("LocalSite", "l", R"(Type="repository" Enabled="0" Local="1")")));
  SiteChain expected;
  ASSERT_EQ(helper->ReadSiteList(wide(src), expected.address(), true), 0);

  EXPECT_EQ(install(), 0);
  SiteChain got;
  ASSERT_EQ(helper->ReadSiteList(wide(own), got.address(), true), 0);
  EXPECT_THAT(namesOf(got.head()), ElementsAre(L"a", L"s", L"p", L"f", L"u", L"l"));
  const auto gotRecords = recordsOf(got.head());
  const auto expectedRecords = recordsOf(expected.head());
  ASSERT_EQ(gotRecords.size(), expectedRecords.size());
  for (std::size_t i = 0; i < gotRecords.size(); ++i) {
    EXPECT_EQ(gotRecords[i]->bEnabled, expectedRecords[i]->bEnabled) << i;
    EXPECT_EQ(gotRecords[i]->bLocal, expectedRecords[i]->bLocal) << i;
    EXPECT_EQ(gotRecords[i]->iOrder, expectedRecords[i]->iOrder) << i;
    EXPECT_EQ(gotRecords[i]->eSiteKind, expectedRecords[i]->eSiteKind) << i;
  }
  EXPECT_TRUE(sameContent(*gotRecords[0], *expectedRecords[0]));
  EXPECT_TRUE(sameContent(*gotRecords[1], *expectedRecords[1]));
  EXPECT_TRUE(sameContent(*gotRecords[3], *expectedRecords[3]));
}

TEST_F(Install, TakesTheVersionsOfTheListInPlaceWhenNoFileIsNamed) {
  SiteChain sites;
  sites.add(httpSite(L"given"));
  EXPECT_EQ(helper->InternalImportSiteList(L"", sites.head(), wide(keyDir.path())), 0);
  EXPECT_THAT(installedNames(), ElementsAre(L"given"));
  std::wstring global, local, type;
  ASSERT_EQ(helper->GetSitelistVersions(wide(own), global, local, type), 0);
  EXPECT_EQ(global, L"oldG");
  EXPECT_EQ(local, L"oldL");
}

TEST_F(Install, TracesItsScopeWithBothPaths) {
  incomingList(document(httpElement("a")));
  EXPECT_EQ(install(), 0);
  EXPECT_TRUE(tracedScope(agent, L"InstallSiteList," + wide(src) + L"," + wide(keyDir.path())));
}

TEST_F(Install, TellsWhatItImportsAndHasTheMeshServiceLoadIt) {
  incomingList(document(httpElement("a")));
  EXPECT_EQ(install(), 0);
  EXPECT_THAT(libraryMessages(agent), ElementsAreArray(joined(beginning(), {meshLine})));
  EXPECT_EQ(readFile(agent.dataDirectory() + "/mesh/SiteList.xml"), readFile(own));
}

TEST_F(Install, CarriesVersionsAndTypeUnchanged) {
  incomingList(document(httpElement("a"), "",
                        R"(GlobalVersion=" 7x" LocalVersion="&lt;8&gt;" Type="Server")"));
  EXPECT_EQ(install(), 0);
  EXPECT_THAT(libraryMessages(agent), ElementsAreArray(joined(beginning(L"<8>"), {meshLine})));
  std::wstring global, local, type;
  ASSERT_EQ(helper->GetSitelistVersions(wide(own), global, local, type), 0);
  EXPECT_EQ(global, L" 7x");
  EXPECT_EQ(local, L"<8>");
  EXPECT_EQ(type, L"Server");
}

TEST_F(Install, AListWithoutVersionsAndTypeGetsTheWritersOwn) {
  incomingList(document(httpElement("a"), "", ""));
  EXPECT_EQ(install(), 0);
  std::wstring global, local, type;
  ASSERT_EQ(helper->GetSitelistVersions(wide(own), global, local, type), 0);
  EXPECT_EQ(global, L"oldG") << "remembered from the list in place";
  EXPECT_THAT(narrow(local), MatchesRegex("[0-9]{14}"));
  EXPECT_EQ(type, L"Client");
}

TEST_F(Install, CarriesTheCertificatesUnchangedAndInOrder) {
  incomingList(document(httpElement("a"),
                        "<CaBundle><CaCertificate> one\n two </CaCertificate><Other>x</Other>"
                        "<CaCertificate>&amp;&lt;</CaCertificate></CaBundle>"));
  EXPECT_EQ(install(), 0);
  std::vector<std::wstring> certificates;
  ASSERT_EQ(helper->GetCaCertificates(wide(own), certificates), 0);
  EXPECT_THAT(certificates, ElementsAre(L" one\n two ", L"&<"));
}

TEST_F(Install, CertificatesOfTheFormerListAreGone) {
  writeFile(own, document("", "<CaBundle><CaCertificate>old</CaCertificate></CaBundle>"));
  incomingList(document(httpElement("a")));
  EXPECT_EQ(install(), 0);
  EXPECT_THAT(readFile(own), AllOf(Not(HasSubstr("CaBundle")), Not(HasSubstr("old"))));
}

TEST_F(Install, CarriesThePolicySettingsAlong) {
  incomingList(document(httpElement("a"), policies("Incoming", "v")));
  helper->SetPolicySetting(L"Own", L"w");
  EXPECT_EQ(install(), 0);
  OpenHelper reader{wide(own)};
  SiteChain list;
  ASSERT_EQ(reader.ReadSiteList(L"", list.address(), true), 0);
  std::wstring value;
  EXPECT_TRUE(reader.GetPolicySetting(L"Incoming", value));
  EXPECT_EQ(value, L"v");
  EXPECT_TRUE(reader.GetPolicySetting(L"Own", value));
  EXPECT_EQ(value, L"w");
}

TEST_F(Install, PasswordsKeepTheirValueAndAreNeverLogged) {
  std::wstring sealed;
  ASSERT_NE(helper->EncryptPassword(L"open sesame", sealed), 0);
  incomingList(document("<HttpSite Name=\"a\" Server=\"a:80\"><Password Encrypted=\"1\">" +
                        narrow(sealed) + "</Password></HttpSite>"));
  EXPECT_EQ(install(), 0);
  SiteChain list;
  ASSERT_EQ(helper->ReadSiteList(wide(own), list.address(), true), 0);
  ASSERT_NE(list.head(), nullptr);
  EXPECT_EQ(std::wstring(list.head()->http.szPassword), L"open sesame");
  EXPECT_THAT(readFile(own), Not(HasSubstr("open sesame")));
  for (const LogLine& line : agent.log()) {
    EXPECT_THAT(narrow(line.text), Not(HasSubstr("open sesame")));
  }
}

TEST_F(Install, AnEmptyListIsInstalledToo) {
  incomingList(document(""));
  EXPECT_EQ(install(), 0);
  EXPECT_THAT(
      libraryMessages(agent),
      ElementsAreArray(joined(joined({errorLine(L"Failed hr=0")}, beginning()), {meshLine})));
  EXPECT_THAT(installedNames(), IsEmpty());
}

TEST_F(Install, AManagedAgentTakesAListWithoutServerSiteUnchecked) {
  agent.settings.managed = true;
  agent.apply();
  incomingList(document(httpElement("a"), policies("OverwriteClientSites", "1")));
  EXPECT_EQ(install(), 0);
  EXPECT_THAT(libraryMessages(agent), ElementsAreArray(joined(beginning(), {meshLine})));
  EXPECT_THAT(libraryTraces(agent), Not(Contains(L"VESTA site checks")));
  EXPECT_THAT(installedNames(), ElementsAre(L"a"));
}

TEST_F(Install, KeyFilesAreInPlaceBeforeTheListThatNeedsThem) {
  incomingKeys();
  incomingList(document(serverElement("s", "5.1")));
  KeyFileSystem files;
  EXPECT_EQ(install(), 0);
  EXPECT_THAT(files.changes, ElementsAre("srpubkey.bin", "sr2048pubkey.bin", "reqseckey.bin",
                                         "req2048seckey.bin", "SiteList.xml", "SiteList.xml"));
}

TEST_F(Install, TheIncomingFilesStayAsTheyWere) {
  incomingKeys();
  incomingList(document(serverElement("s", "5.1")));
  const auto before = snapshot(incoming.path());
  EXPECT_EQ(install(), 0);
  EXPECT_EQ(snapshot(incoming.path()), before);
}

TEST_F(Install, TheListInPlaceCanBeInstalledOnItself) {
  EXPECT_EQ(helper->InstallSiteList(wide(own), wide(keyDir.path())), 0);
  EXPECT_THAT(installedNames(), ElementsAre(L"old"));
}

TEST_F(Install, ALoadThatTheMeshServiceRefusesIsLoggedAndForgiven) {
  agent.settings.meshLoadCommand = {"/bin/sh", "-c", "exit 3"};
  agent.apply();
  incomingList(document(httpElement("a")));
  EXPECT_EQ(install(), 0);
  EXPECT_THAT(libraryMessages(agent),
              ElementsAreArray(joined(
                  beginning(), {meshLine, errorLine(L"Load new sitelist command failed.")})));
  EXPECT_THAT(installedNames(), ElementsAre(L"a"));
}

TEST_F(Install, TheDestinationDirectoryIsMade) {
  const std::string elsewhere = agent.dataDirectory() + "/new/deep/SiteList.xml";
  OpenHelper other{wide(elsewhere)};
  incomingKeys();
  incomingList(document(serverElement("s", "5.1")));
  EXPECT_EQ(other.InstallSiteList(wide(src), L""), 0);
  EXPECT_EQ(readFile(agent.dataDirectory() + "/new/deep/srpubkey.bin"), "srpubkey.bin");
  SiteChain list;
  EXPECT_EQ(other.ReadSiteList(L"", list.address(), true), 0);
  EXPECT_THAT(namesOf(list.head()), ElementsAre(L"s"));
}

}  // namespace
