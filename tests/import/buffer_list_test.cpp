#include <gmock/gmock.h>

#include <filesystem>

#include "platform/lock/interprocess_lock.h"
#include "tests/import/documents.h"
#include "tests/import/log_lines.h"
#include "tests/import/records.h"
#include "tests/support/rerooted_file_system.h"
#include "tests/support/test_agent.h"

using namespace sitehlp;
using namespace test;
using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::MatchesRegex;
using testing::Not;
using testing::Pair;

namespace {

constexpr int c_limitExceeded = AdvXMLParser::ReadWriteException::LIMIT_EXCEEDED;

class BufferList : public testing::Test {
 protected:
  BufferList() {
    writeFile(own, document(httpElement("own"),
                            "<CaBundle><CaCertificate>own1</CaCertificate>"
                            "<CaCertificate>own2</CaCertificate></CaBundle>",
                            R"(GlobalVersion="ownG" LocalVersion="ownL" Type="Server")"));
    std::filesystem::create_directories(scratchDir.file("etc"));
  }
  int create(const std::string& text) {
    agent.clearLog();
    return helper.CreateSiteListFromBuffer(wide(text));
  }
  // Returns the names of the records in the scratch file.
  std::vector<std::wstring> names() {
    SiteChain list;
    OpenHelper reader(true);
    EXPECT_EQ(reader.ReadSiteList(wide(scratch), list.address(), true), 0);
    return namesOf(list.head());
  }
  std::vector<std::wstring> certificates() {
    std::vector<std::wstring> texts;
    EXPECT_EQ(helper.GetCaCertificates(wide(scratch), texts), 0);
    return texts;
  }
  void expectNothingWritten() {
    EXPECT_THAT(snapshot(scratchDir.path()), IsEmpty());
    EXPECT_FALSE(exists(agent.dataDirectory() + "/mesh/SiteList.xml"));
  }

  TestAgent agent;
  TempDir scratchDir;
  const std::string own = agent.etc("SiteList.xml");
  const std::string scratch = scratchDir.file("etc/SiteList.xml");
  RerootedFileSystem files{"/Library/Korvel/orb/scratch", scratchDir.path()};
  OpenHelper helper{wide(own)};
};

TEST_F(BufferList, TheRecordsAreWrittenToTheScratchArea) {
  const std::string before = readFile(own);
  EXPECT_EQ(create(document(httpElement("a") + serverElement("s") + proxyElement("p"))), 0);
  EXPECT_THAT(names(), ElementsAre(L"a", L"s", L"p"));
  EXPECT_EQ(readFile(own), before) << "the helper's own file stays";
  EXPECT_EQ(readFile(agent.dataDirectory() + "/mesh/SiteList.xml"), readFile(scratch));
  EXPECT_TRUE(tracedScope(agent, L"Reading Sitelist Buffer"));
}

// Shows: CreateSiteListFromBuffer=0
TEST_F(BufferList, AFormerScratchFileIsReplaced) {
  writeFile(scratch, "former");
  EXPECT_EQ(create(document(httpElement("a"))), 0);
  EXPECT_THAT(names(), ElementsAre(L"a"));
}

// Shows: CreateSiteListFromBuffer=-2
TEST_F(BufferList, AnEmptyTextIsRefused) {
  EXPECT_EQ(create(""), c_errorNoPath);
  EXPECT_TRUE(tracedScope(agent, L"Reading Sitelist Buffer"));
  expectNothingWritten();
}

TEST_F(BufferList, CertificatesOfTheTextAreWrittenInOrder) {
  EXPECT_EQ(create(document(httpElement("a"),
                            "<CaBundle><CaCertificate>b </CaCertificate><Other>no</Other>"
                            "<CaCertificate>a</CaCertificate></CaBundle>")),
            0);
  EXPECT_THAT(certificates(), ElementsAre(L"b ", L"a"));
}

TEST_F(BufferList, OnlyTheFirstBundleAndExactNamesCount) {
  EXPECT_EQ(create(document(httpElement("a"),
                            "<CaBundle><cacertificate>no</cacertificate>"
                            "<CaCertificate>1</CaCertificate></CaBundle>"
                            "<CaBundle><CaCertificate>2</CaCertificate></CaBundle>")),
            0);
  EXPECT_THAT(certificates(), ElementsAre(L"1"));
}

TEST_F(BufferList, WithoutABundleTheAgentsOwnCertificatesAreWritten) {
  EXPECT_EQ(create(document(httpElement("a"), "<cabundle/>")), 0);
  EXPECT_THAT(certificates(), ElementsAre(L"own1", L"own2"));
}

TEST_F(BufferList, WithoutABundleAndWithoutAnOwnFileThereAreNoCertificates) {
  std::filesystem::remove(own);
  EXPECT_EQ(create(document(httpElement("a"))), 0);
  EXPECT_THAT(readFile(scratch), Not(HasSubstr("CaBundle")));
}

TEST_F(BufferList, AnEmptyBundleMeansNoCertificates) {
  EXPECT_EQ(create(document(httpElement("a"), "<CaBundle/>")), 0);
  EXPECT_THAT(certificates(), IsEmpty());
}

TEST_F(BufferList, ABundleBehindTheSiteListCountsToo) {
  EXPECT_EQ(create(document(httpElement("a"), "", "",
                            "<CaBundle><CaCertificate>late</CaCertificate></CaBundle>")),
            0);
  EXPECT_THAT(certificates(), ElementsAre(L"late"));
}

TEST_F(BufferList, PolicySettingsAreReadAndStay) {
  helper.SetPolicySetting(L"kept", L"k");
  helper.SetPolicySetting(L"changed", L"old");
  EXPECT_EQ(create(document(httpElement("a"), policies("changed", "new"))), 0);
  EXPECT_THAT(helper.m_policySettings, ElementsAre(Pair(L"changed", L"new"), Pair(L"kept", L"k")));
  OpenHelper reader{wide(scratch)};
  SiteChain list;
  ASSERT_EQ(reader.ReadSiteList(L"", list.address(), true), 0);
  EXPECT_EQ(reader.m_policySettings, helper.m_policySettings);
}

TEST_F(BufferList, PolicySettingsBehindTheSiteListAreNotRead) {
  EXPECT_EQ(create(document(httpElement("a"), "", "", policies("late", "v"))), 0);
  EXPECT_TRUE(helper.m_policySettings.empty());
  EXPECT_THAT(readFile(scratch), Not(HasSubstr("Policies")));
}

TEST_F(BufferList, OnlyTheFirstSiteListIsRead) {
  EXPECT_EQ(create(document(httpElement("a"), "<sitelist><HttpSite/></sitelist>", "",
                            "<SiteList><HttpSite Name=\"b\"/></SiteList>")),
            0);
  EXPECT_THAT(names(), ElementsAre(L"a"));
}

TEST_F(BufferList, TheVersionsAndTypeAreTheHelpersNotThoseOfTheText) {
  OpenHelper ofAServer{wide(own)};
  EXPECT_EQ(
      ofAServer.CreateSiteListFromBuffer(wide(document(
          httpElement("a"), "", R"(GlobalVersion="textG" LocalVersion="textL" Type="Client")"))),
      0);
  std::wstring global, local, type;
  ASSERT_EQ(helper.GetSitelistVersions(wide(scratch), global, local, type), 0);
  EXPECT_EQ(global, L"ownG");
  EXPECT_THAT(narrow(local), MatchesRegex("[0-9]{14}"));
  EXPECT_EQ(type, L"Server");
}

TEST_F(BufferList, ATextWithoutSiteListGivesAnEmptyList) {
  EXPECT_EQ(create("<ns:SiteLists xmlns:ns=\"wxSiteList\"/>"), 0);
  EXPECT_THAT(names(), IsEmpty());
  EXPECT_THAT(readFile(scratch), HasSubstr("<SiteList "));
}

// Shows: CreateSiteListFromBuffer=-1
TEST_F(BufferList, AnUnknownLastSiteKeepsTheFileFromBeingWritten) {
  EXPECT_EQ(create(document(httpElement("a") + "<Unheard/>")), c_errorGeneral);
  expectNothingWritten();
  EXPECT_EQ(create(document("<Unheard/>" + httpElement("a"))), 0);
  EXPECT_THAT(names(), ElementsAre(L"", L"a"));
}

// Shows: CreateSiteListFromBuffer=-5
TEST_F(BufferList, ATextThatIsNoDocumentIsRefused) {
  for (const char* text : {"<ns:SiteLists>", "no markup", "  \n ", "<a/><b/>"}) {
    EXPECT_EQ(create(text), c_errorParse) << text;
  }
  expectNothingWritten();
}

// Shows: CreateSiteListFromBuffer=-104
TEST_F(BufferList, ADocumentOverALimitGivesTheCodeOfTheParser) {
  std::string deep;
  for (int i = 0; i < 100000; ++i) deep += "<a>";
  for (int i = 0; i < 100000; ++i) deep += "</a>";
  EXPECT_EQ(create(deep), c_limitExceeded);
  expectNothingWritten();
}

// Shows: CreateSiteListFromBuffer=-11
TEST_F(BufferList, AMissingScratchAreaIsAFailedWrite) {
  std::filesystem::remove(scratchDir.file("etc"));
  EXPECT_EQ(create(document(httpElement("a"))), c_errorWrite);
  EXPECT_THAT(snapshot(scratchDir.path()), IsEmpty());
}

TEST_F(BufferList, PasswordsKeepTheirValue) {
  std::wstring sealed;
  ASSERT_NE(helper.EncryptPassword(L"open sesame", sealed), 0);
  EXPECT_EQ(create(document("<FTPSite Name=\"a\" Server=\"a:21\"><Password Encrypted=\"1\">" +
                            narrow(sealed) + "</Password></FTPSite>")),
            0);
  SiteChain list;
  ASSERT_EQ(helper.ReadSiteList(wide(scratch), list.address(), true), 0);
  EXPECT_EQ(std::wstring(list.head()->ftp.szPassword), L"open sesame");
  EXPECT_THAT(readFile(scratch), Not(HasSubstr("open sesame")));
}

TEST_F(BufferList, TheFileReadLastStaysTheSame) {
  helper.m_strCurrentFile = L"/the/last/one";
  EXPECT_EQ(create(document(httpElement("a"), "<CaBundle/>")), 0);
  EXPECT_EQ(helper.m_strCurrentFile, L"/the/last/one");
}

TEST_F(BufferList, TakesNoLockToReadTheText) {
  korvel_com::orb::lock::InterProcessWriteLock lock(c_siteListLock);
  ASSERT_TRUE(lock.lock(0x7FFFFFFF));
  // An operation that takes the lock would wait without end.
  EXPECT_EQ(create(document(httpElement("a") + "<Unheard/>", "<CaBundle/>")), c_errorGeneral);
  lock.unlock();
}

}  // namespace
