#include "tests/import/import_fixture.h"

using namespace sitehlp;
using namespace test;
using testing::Contains;
using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::Not;

namespace {

class Import : public ImportFixture {
 protected:
  Import() { writeFile(keyDir.file("srpubkey.bin"), "key"); }
  void manage() {
    agent.settings.managed = true;
    agent.apply();
  }
  LogLine warning() const {
    return infoLine(L"WARNING: imported site list \"" + wide(src) +
                    L"\" will be overwritten by Pyx site list");
  }
  // Imports a list with this policy setting. Returns whether the warning was logged.
  bool warnsOn(const std::string& value) {
    incomingList(document(httpElement("a"), policies("OverwriteClientSites", value)));
    EXPECT_EQ(import(), 0);
    EXPECT_THAT(installedNames(), ElementsAre(L"a"));
    const auto messages = libraryMessages(agent);
    if (messages.empty() || !(messages.front() == warning())) return false;
    EXPECT_THAT(messages, ElementsAreArray(joined(joined({warning()}, beginning()), {meshLine})));
    return true;
  }
};

// Shows: ImportSiteList=0
TEST_F(Import, AnUnmanagedAgentTakesAListWithoutServerSite) {
  incomingList(document(httpElement("a")));
  EXPECT_EQ(import(), 0);
  EXPECT_TRUE(tracedScope(agent, L"ImportSiteList," + wide(src)));
  EXPECT_THAT(libraryTraces(agent), Not(Contains(L"VESTA site checks")));
  EXPECT_THAT(libraryMessages(agent), ElementsAreArray(joined(beginning(), {meshLine})));
  EXPECT_THAT(installedNames(), ElementsAre(L"a"));
}

// Shows: ImportSiteList=-8, import-rules
TEST_F(Import, AManagedAgentRefusesAListWithoutServerSite) {
  manage();
  incomingList(document(httpElement("a")));
  const auto before = onDisk();
  EXPECT_EQ(import(), c_errorNoServerSite);
  EXPECT_THAT(libraryMessages(agent), ElementsAre(errorLine(L"Failed to get VESTA site hr=-8")));
  EXPECT_EQ(onDisk(), before);
}

TEST_F(Import, AManagedAgentTakesACompleteServerSiteWithItsKeys) {
  manage();
  incomingKeys();
  incomingList(document(serverElement("s", "5.1")));
  EXPECT_EQ(import(), 0);
  EXPECT_THAT(libraryMessages(agent), ElementsAreArray(joined(beginning(), {meshLine})));
  EXPECT_THAT(installedNames(), ElementsAre(L"s"));
  EXPECT_EQ(readFile(agent.etc("srpubkey.bin")), "srpubkey.bin");
}

// Shows: ImportSiteList=-9, import-rules, server-rules, server-keys
TEST_F(Import, AManagedAgentRefusesAListWhoseRulesFail) {
  manage();
  incomingList(document(serverElement("s", "5.1", "1", "repository")));
  const auto before = onDisk();
  EXPECT_EQ(import(), c_errorValidation);
  const auto missing = [this](const std::string& first, const std::string& second) {
    return infoLine(wide(incoming.file(first) + " or " + incoming.file(second) + " is invalid"));
  };
  EXPECT_THAT(libraryMessages(agent),
              ElementsAre(infoLine(L"site type must be master not repository"),
                          missing("reqseckey.bin", "req2048seckey.bin"),
                          missing("srpubkey.bin", "sr2048pubkey.bin")));
  EXPECT_EQ(onDisk(), before);
}

TEST_F(Import, TheOverrideDecidesWhetherTheServerIsChecked) {
  incomingList(document(httpElement("a")));
  helper->SetManagedOverride(c_overrideManaged);
  EXPECT_EQ(import(), c_errorNoServerSite);
  manage();
  helper->SetManagedOverride(c_overrideNotManaged);
  EXPECT_EQ(import(), 0);
}

// Shows: ImportSiteList=-9, ImportSiteList=-2, import-rules
TEST_F(Import, AnEmptyListIsRefused) {
  incomingList(document(""));
  const auto before = onDisk();
  EXPECT_EQ(import(), c_errorValidation);
  EXPECT_THAT(libraryMessages(agent),
              ElementsAre(errorLine(L"Failed hr=0"), infoLine(L"no sites in site list")));
  manage();
  EXPECT_EQ(import(), c_errorNoPath);
  EXPECT_THAT(libraryMessages(agent),
              ElementsAre(errorLine(L"Failed hr=0"), infoLine(L"no sites in site list"),
                          errorLine(L"Failed to get VESTA site hr=-2")));
  EXPECT_EQ(onDisk(), before);
}

TEST_F(Import, WarnsThatTheServerWillOverwriteTheList) {
  EXPECT_TRUE(warnsOn("1"));
  EXPECT_TRUE(warnsOn("yes"));
  EXPECT_TRUE(warnsOn(""));
  EXPECT_TRUE(warnsOn("00"));
  EXPECT_FALSE(warnsOn("0"));
}

TEST_F(Import, DoesNotWarnWithoutThePolicySetting) {
  incomingList(document(httpElement("a"), policies("overwriteclientsites", "1")));
  EXPECT_EQ(import(), 0);
  EXPECT_THAT(libraryMessages(agent), ElementsAreArray(joined(beginning(), {meshLine})));
}

TEST_F(Import, ASettingKnownBeforeCountsUnlessTheListHoldsItsOwn) {
  helper->SetPolicySetting(L"OverwriteClientSites", L"1");
  incomingList(document(httpElement("a")));
  EXPECT_EQ(import(), 0);
  EXPECT_THAT(libraryMessages(agent), Contains(warning()));
  EXPECT_FALSE(warnsOn("0"));
}

TEST_F(Import, TheWarningComesBeforeTheChecks) {
  manage();
  incomingList(document(httpElement("a"), policies("OverwriteClientSites", "1")));
  EXPECT_EQ(import(), c_errorNoServerSite);
  EXPECT_THAT(libraryMessages(agent),
              ElementsAre(warning(), errorLine(L"Failed to get VESTA site hr=-8")));
}

}  // namespace
