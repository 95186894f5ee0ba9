#include <gmock/gmock.h>

#include "tests/import/documents.h"
#include "tests/import/log_lines.h"
#include "tests/import/records.h"
#include "tests/support/test_agent.h"

using namespace sitehlp;
using namespace test;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;

namespace {

class Validation : public testing::Test {
 protected:
  int check(const SiteChain& list, bool checkServer) {
    agent.clearLog();
    return helper.SourceSiteListCheck(list.head(), checkServer);
  }

  // The lines for a list whose only server site is `site`.
  std::vector<LogLine> faults(const tag_Site& site) {
    const SiteChain list{httpSite(L"a"), site};
    EXPECT_EQ(check(list, true), c_errorValidation);
    return libraryMessages(agent);
  }

  TestAgent agent;
  OpenHelper helper{true};
};

TEST_F(Validation, AListWithSitesPassesWithoutServerCheck) {
  const SiteChain list{httpSite(L"a")};
  EXPECT_EQ(check(list, false), 0);
  EXPECT_THAT(agent.messages(), IsEmpty());
  EXPECT_THAT(agent.traces(), Not(Contains(L"VESTA site checks")));
}

// Shows: SourceSiteListCheck=-9
TEST_F(Validation, AnEmptyListFails) {
  EXPECT_EQ(check(SiteChain(), false), c_errorValidation);
  EXPECT_THAT(libraryMessages(agent), ElementsAre(infoLine(L"no sites in site list")));
}

// Shows: SourceSiteListCheck=-2
TEST_F(Validation, AnEmptyListFailsTheServerCheckWithTheCodeOfTheSearch) {
  EXPECT_EQ(check(SiteChain(), true), c_errorNoPath);
  EXPECT_THAT(libraryMessages(agent), ElementsAre(infoLine(L"no sites in site list"),
                                                  errorLine(L"Failed to get VESTA site hr=-2")));
}

// Shows: SourceSiteListCheck=-8
TEST_F(Validation, AListWithoutServerSiteFailsTheServerCheck) {
  const SiteChain list{httpSite(L"a"), ftpSite(L"b")};
  EXPECT_EQ(check(list, true), c_errorNoServerSite);
  EXPECT_THAT(libraryMessages(agent), ElementsAre(errorLine(L"Failed to get VESTA site hr=-8")));
}

// Shows: SourceSiteListCheck=0
TEST_F(Validation, ACompleteServerSiteWithoutVersionPasses) {
  const SiteChain list{httpSite(L"a"), serverSite(L"s")};
  EXPECT_EQ(check(list, true), 0);
  EXPECT_THAT(agent.messages(), IsEmpty());
  EXPECT_TRUE(tracedScope(agent, L"VESTA site checks"));
  EXPECT_THAT(libraryTraces(agent), Contains(L"Getting Vesta site"));
  EXPECT_THAT(namesOf(list.head()), ElementsAre(L"a", L"s"));
}

// Shows: server-rules, SourceSiteListCheck=-9
TEST_F(Validation, TheServerMustNotBeLocal) {
  tag_Site site = serverSite(L"s");
  site.bLocal = 1;
  EXPECT_THAT(faults(site), ElementsAre(infoLine(L"must not be local")));
}

// Shows: server-rules, SourceSiteListCheck=-9
TEST_F(Validation, TheServerMustBeAMaster) {
  EXPECT_THAT(faults(typed(serverSite(L"s"), L"mirror")),
              ElementsAre(infoLine(L"site type must be master not mirror")));
  EXPECT_THAT(faults(typed(serverSite(L"s"), L"")),
              ElementsAre(infoLine(L"site type must be master not ")));
  const SiteChain upper{typed(serverSite(L"s"), L"MASTER")};
  EXPECT_EQ(check(upper, true), 0);
}

// Shows: server-rules, SourceSiteListCheck=-9
TEST_F(Validation, TheServerMustHaveItsNamesAddressesAndPath) {
  tag_Site site = serverSite(L"s");
  setText(site.http.szName, L"");
  EXPECT_THAT(faults(site), ElementsAre(infoLine(L"name cannot be empty")));

  site = serverSite(L"s");
  setText(site.http.szServer, L"");
  EXPECT_THAT(faults(site), ElementsAre(infoLine(L"server name cannot be empty")));

  site = serverSite(L"s");
  setText(site.http.szServerIP, L"");
  EXPECT_THAT(faults(site), ElementsAre(infoLine(L"VESTA IP address cannot be empty")));

  site = serverSite(L"s");
  setText(site.http.szServerName, L"");
  EXPECT_THAT(faults(site), ElementsAre(infoLine(L"computer name cannot be empty")));

  site = serverSite(L"s");
  setText(site.http.szRelativePath, L"");
  EXPECT_THAT(faults(site), ElementsAre(infoLine(L"path cannot be empty")));
}

TEST_F(Validation, TheElementIsComparedWithoutRegardToCase) {
  tag_Site site = serverSite(L"s");
  setText(site.http.szElement, L"VESTAsite");
  const SiteChain list{site};
  EXPECT_EQ(check(list, true), 0);
}

TEST_F(Validation, EveryFaultOfOneServerIsReportedAtOnceAndInOrder) {
  tag_Site site = typed(serverSite(L""), L"repository");
  site.bLocal = 1;
  setText(site.http.szName, L"");
  setText(site.http.szServer, L"");
  setText(site.http.szServerIP, L"");
  setText(site.http.szServerName, L"");
  setText(site.http.szRelativePath, L"");
  EXPECT_THAT(
      faults(site),
      ElementsAre(infoLine(L"must not be local"),
                  infoLine(L"site type must be master not repository"),
                  infoLine(L"name cannot be empty"), infoLine(L"server name cannot be empty"),
                  infoLine(L"VESTA IP address cannot be empty"),
                  infoLine(L"computer name cannot be empty"), infoLine(L"path cannot be empty")));
}

TEST_F(Validation, ALocalRepositoryServerWithoutAddressHasThreeFaults) {
  tag_Site site = typed(serverSite(L"s"), L"repository");
  site.bLocal = 1;
  setText(site.http.szServerIP, L"");
  EXPECT_THAT(faults(site), ElementsAre(infoLine(L"must not be local"),
                                        infoLine(L"site type must be master not repository"),
                                        infoLine(L"VESTA IP address cannot be empty")));
}

TEST_F(Validation, OnlyTheFirstServerSiteIsChecked) {
  tag_Site faulty = serverSite(L"faulty");
  faulty.bLocal = 1;
  const SiteChain good{serverSite(L"s"), faulty};
  EXPECT_EQ(check(good, true), 0);
  EXPECT_THAT(agent.messages(), IsEmpty());
  const SiteChain bad{faulty, serverSite(L"s")};
  EXPECT_EQ(check(bad, true), c_errorValidation);
  EXPECT_THAT(libraryMessages(agent), ElementsAre(infoLine(L"must not be local")));
}

class FileValidation : public testing::Test {
 protected:
  bool validate(const std::string& path, bool checkServer) {
    agent.clearLog();
    return helper.ValidateSiteListForInstall(wide(path), checkServer);
  }

  TestAgent agent;
  TempDir incoming;
  const std::string file = incoming.file("SiteList.xml");
  OpenHelper helper{true};
};

TEST_F(FileValidation, AFileWithSitesPassesWithoutServerCheck) {
  writeFile(file, document(httpElement("a")));
  EXPECT_TRUE(validate(file, false));
  EXPECT_TRUE(tracedScope(agent, L"ValidateSiteListForInstall," + wide(file)));
  EXPECT_THAT(libraryMessages(agent), IsEmpty());
  EXPECT_FALSE(validate(file, true));
  EXPECT_THAT(libraryMessages(agent), ElementsAre(errorLine(L"Failed to get VESTA site hr=-8")));
}

TEST_F(FileValidation, AFileWithACompleteServerSitePassesTheServerCheck) {
  writeFile(file, document(httpElement("a") + serverElement("s")));
  EXPECT_TRUE(validate(file, true));
  EXPECT_THAT(libraryMessages(agent), IsEmpty());
}

TEST_F(FileValidation, AFileWithoutSitesFails) {
  writeFile(file, document(""));
  EXPECT_FALSE(validate(file, false));
  EXPECT_THAT(libraryMessages(agent),
              ElementsAre(errorLine(L"Failed hr=0"), infoLine(L"no sites in site list")));
}

TEST_F(FileValidation, AMissingFileFailsWithoutAnyCheck) {
  for (const bool checkServer : {false, true}) {
    EXPECT_FALSE(validate(file, checkServer));
    EXPECT_THAT(libraryMessages(agent), ElementsAre(errorLine(L"Failed hr=-4")));
    EXPECT_TRUE(tracedScope(agent, L"ValidateSiteListForInstall," + wide(file)));
  }
}

TEST_F(FileValidation, AFileThatCannotBeReadFailsWithoutAnyCheck) {
  writeFile(file, "<ns:SiteLists><SiteList>");
  EXPECT_FALSE(validate(file, false));
  EXPECT_THAT(libraryMessages(agent), ElementsAre(errorLine(L"Failed hr=-5")));

  writeFile(file, document(serverElement("s") + "<Unheard/>"));
  EXPECT_FALSE(validate(file, false));
  EXPECT_THAT(libraryMessages(agent), ElementsAre(errorLine(L"Failed hr=-1")));

  EXPECT_FALSE(validate(incoming.path(), false)) << "a directory";
  EXPECT_THAT(libraryMessages(agent), ElementsAre(errorLine(L"Failed hr=-10")));
}

TEST_F(FileValidation, NoPathFailsEvenWhereTheHelperHasAFileOfItsOwn) {
  writeFile(file, document(httpElement("a")));
  OpenHelper own{wide(file)};
  agent.clearLog();
  EXPECT_FALSE(own.ValidateSiteListForInstall(L"", false));
  EXPECT_THAT(libraryMessages(agent), ElementsAre(internalErrorLine(L"path is empty")));
}

TEST_F(FileValidation, FaultsOfTheFileAreLogged) {
  writeFile(file, document("<VestaSite Name=\"s\" Type=\"repository\" Local=\"1\" "
                           "Server=\"s.example:80\" ServerName=\"S\">"
                           "<RelativePath>p</RelativePath></VestaSite>"));
  EXPECT_FALSE(validate(file, true));
  EXPECT_THAT(libraryMessages(agent),
              ElementsAre(infoLine(L"must not be local"),
                          infoLine(L"site type must be master not repository"),
                          infoLine(L"VESTA IP address cannot be empty")));
}

TEST_F(FileValidation, NothingIsWritten) {
  writeFile(file, document(serverElement("s", "5.0")));
  const auto before = snapshot(incoming.path());
  EXPECT_FALSE(validate(file, true));
  EXPECT_EQ(snapshot(incoming.path()), before);
}

}  // namespace
