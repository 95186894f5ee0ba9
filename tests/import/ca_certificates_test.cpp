#include <gmock/gmock.h>

#include <filesystem>

#include "tests/edit/lock_watch.h"
#include "tests/import/documents.h"
#include "tests/import/log_lines.h"
#include "tests/import/records.h"
#include "tests/support/test_agent.h"

using namespace sitehlp;
using namespace test;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

using Texts = std::vector<std::wstring>;

class CaCertificates : public testing::Test {
 protected:
  // Returns the certificates of a document with this bundle.
  Texts in(const std::string& bundle, int code = 0) {
    writeFile(file, document(httpElement("a"), bundle));
    return read(code);
  }
  Texts read(int code) {
    Texts certificates;
    agent.clearLog();
    EXPECT_EQ(helper.GetCaCertificates(wide(file), certificates), code);
    return certificates;
  }

  TestAgent agent;
  TempDir dir;
  const std::string file = dir.file("list.xml");
  OpenHelper helper{true};
};

// Shows: GetCaCertificates=0, grammar
TEST_F(CaCertificates, ComeInDocumentOrder) {
  EXPECT_THAT(in("<CaBundle><CaCertificate>b</CaCertificate><CaCertificate>a</CaCertificate>"
                 "<CaCertificate>b</CaCertificate></CaBundle>"),
              ElementsAre(L"b", L"a", L"b"));
  EXPECT_TRUE(tracedScope(agent, L"Getting Certificates"));
  EXPECT_THAT(libraryMessages(agent), IsEmpty());
}

TEST_F(CaCertificates, OtherChildrenOfTheBundleAreSkipped) {
  EXPECT_THAT(in("<CaBundle>text<CaCertificate>1</CaCertificate>text<Other>x</Other>"
                 "<!-- <CaCertificate>no</CaCertificate> --><CaCertificate>2</CaCertificate>"
                 "</CaBundle>"),
              ElementsAre(L"1", L"2"));
}

TEST_F(CaCertificates, NamesAreComparedExactly) {
  EXPECT_THAT(in("<CaBundle><cacertificate>x</cacertificate><CACERTIFICATE>y</CACERTIFICATE>"
                 "<CaCertificates>z</CaCertificates></CaBundle>"),
              IsEmpty());
  EXPECT_THAT(in("<cabundle><CaCertificate>x</CaCertificate></cabundle>"), IsEmpty());
}

TEST_F(CaCertificates, TheTextIsPassedOnAsItStands) {
  EXPECT_THAT(in("<CaBundle><CaCertificate> \n-----BEGIN&amp;\n</CaCertificate>"
                 "<CaCertificate><![CDATA[<x>]]></CaCertificate><CaCertificate/></CaBundle>"),
              ElementsAre(L" \n-----BEGIN&\n", L"<x>", L""));
}

TEST_F(CaCertificates, OnlyTheFirstBundleIsRead) {
  EXPECT_THAT(in("<CaBundle><CaCertificate>1</CaCertificate></CaBundle>"
                 "<CaBundle><CaCertificate>2</CaCertificate></CaBundle>"),
              ElementsAre(L"1"));
  EXPECT_THAT(in("<CaBundle/><CaBundle><CaCertificate>2</CaCertificate></CaBundle>"), IsEmpty());
}

TEST_F(CaCertificates, OnlyChildrenOfRootAndBundleCount) {
  EXPECT_THAT(in("<CaCertificate>loose</CaCertificate><Wrap><CaBundle><CaCertificate>deep"
                 "</CaCertificate></CaBundle></Wrap>"),
              IsEmpty());
  EXPECT_THAT(in("<CaBundle><Wrap><CaCertificate>deep</CaCertificate></Wrap></CaBundle>"),
              IsEmpty());
}

TEST_F(CaCertificates, ABundleBehindTheSiteListIsFoundAndTheRootsNameDoesNotMatter) {
  writeFile(file, "<x><SiteList/><CaBundle><CaCertificate>1</CaCertificate></CaBundle></x>");
  EXPECT_THAT(read(0), ElementsAre(L"1"));
}

TEST_F(CaCertificates, AreAppendedToWhatTheCallerHas) {
  writeFile(file, document("", "<CaBundle><CaCertificate>new</CaCertificate></CaBundle>"));
  Texts certificates = {L"old"};
  EXPECT_EQ(helper.GetCaCertificates(wide(file), certificates), 0);
  EXPECT_THAT(certificates, ElementsAre(L"old", L"new"));
  writeFile(file, document(""));
  EXPECT_EQ(helper.GetCaCertificates(wide(file), certificates), 0);
  EXPECT_THAT(certificates, ElementsAre(L"old", L"new"));
}

TEST_F(CaCertificates, AnEmptyPathMeansTheHelpersOwnFile) {
  writeFile(file, document("", "<CaBundle><CaCertificate>own</CaCertificate></CaBundle>"));
  OpenHelper own{wide(file)};
  Texts certificates;
  EXPECT_EQ(own.GetCaCertificates(L"", certificates), 0);
  EXPECT_THAT(certificates, ElementsAre(L"own"));
  EXPECT_EQ(helper.GetCaCertificates(L"", certificates), c_errorFileMissing) << "it has none";
}

// Shows: GetCaCertificates=-4
TEST_F(CaCertificates, AMissingFileTouchesNothing) {
  Texts certificates = {L"old"};
  EXPECT_EQ(helper.GetCaCertificates(wide(file), certificates), c_errorFileMissing);
  EXPECT_THAT(certificates, ElementsAre(L"old"));
}

TEST_F(CaCertificates, AFileThatIsNoXmlGivesNone) {
  for (const char* text : {"", "no markup", "   \n"}) {
    writeFile(file, text);
    EXPECT_THAT(read(0), IsEmpty()) << text;
  }
}

// Shows: GetCaCertificates=-5
TEST_F(CaCertificates, AnIllFormedDocumentIsAParsingFailure) {
  writeFile(file, "<a><CaBundle><CaCertificate>1</CaCertificate></CaBundle>");
  EXPECT_THAT(read(c_errorParse), IsEmpty());
}

// Shows: GetCaCertificates=-10
TEST_F(CaCertificates, BytesThatCannotBeReadAreAReadFailure) {
  std::filesystem::create_directory(file);
  EXPECT_THAT(read(c_errorRead), IsEmpty());
  std::filesystem::remove(file);
  writeFile(file, "<a>\xff\xfe\xff</a>");
  EXPECT_THAT(read(c_errorRead), IsEmpty());
}

// Shows: GetCaCertificates=-11, limit-read
TEST_F(CaCertificates, ADocumentOverALimitIsAReadWriteFailureOfTheParser) {
  std::string deep;
  for (int i = 0; i < 100000; ++i) deep += "<a>";
  for (int i = 0; i < 100000; ++i) deep += "</a>";
  writeFile(file, deep);
  EXPECT_THAT(read(c_errorWrite), IsEmpty());
}

TEST_F(CaCertificates, EveryEncodingIsRead) {
  const std::string text = document("", "<CaBundle><CaCertificate>1</CaCertificate></CaBundle>");
  std::string utf16 = "\xff\xfe";
  for (const char c : text.substr(text.find("<ns:"))) (utf16 += c) += '\0';
  writeFile(file, utf16);
  EXPECT_THAT(read(0), ElementsAre(L"1"));
}

TEST_F(CaCertificates, TheLockIsHeldWhileTheFileIsRead) {
  LockWatch files({"list.xml"});
  in("<CaBundle/>");
  EXPECT_THAT(files.seen, ElementsAre("read list.xml: reading"));
  korvel_com::orb::lock::InterProcessWriteLock lock(c_siteListLock);
  EXPECT_TRUE(lock.lock(0)) << "and let go afterwards";
}

TEST_F(CaCertificates, TheLockIsLetGoWhereTheReadFails) {
  std::filesystem::create_directory(file);
  read(c_errorRead);
  korvel_com::orb::lock::InterProcessWriteLock lock(c_siteListLock);
  EXPECT_TRUE(lock.lock(0));
}

TEST_F(CaCertificates, TheRecordsAndPoliciesOfTheHelperStay) {
  writeFile(file, document("", policies("p", "v")));
  read(0);
  EXPECT_TRUE(helper.m_policySettings.empty());
  EXPECT_TRUE(helper.m_strCurrentFile.empty());
}

}  // namespace
