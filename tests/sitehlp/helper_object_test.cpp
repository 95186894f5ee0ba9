#include <gmock/gmock.h>

#include <atomic>
#include <string>
#include <thread>
#include <type_traits>
#include <vector>

#include "platform/lock/interprocess_lock.h"
#include "tests/sitehlp/sites_helper_fixture.h"

namespace {

using korvel_com::orb::lock::InterProcessReadLock;
using sitehlp::CSitesHelper;
using test::Probe;
using testing::ElementsAre;
using testing::IsEmpty;

const std::string c_versionedDocument = test::documentWithRoot(
    "<SiteList/>", R"(GlobalVersion="G 1" LocalVersion="L 2" Type="Server")");

class HelperObject : public test::SitesHelperTest {
 protected:
  std::wstring etc(const std::string& name) const { return test::wide(agent.etc(name)); }

  static void expectNothingRemembered(const Probe& object) {
    EXPECT_EQ(object.m_strCurrentFile, L"");
    EXPECT_EQ(object.m_strLocalVersion, L"");
    EXPECT_EQ(object.m_strGlobalVersion, L"");
    EXPECT_EQ(object.m_strSiteListType, L"Client");
    EXPECT_EQ(object.m_strReserved, L"");
    EXPECT_EQ(object.m_pSiteListElement, nullptr);
    EXPECT_TRUE(object.m_policySettings.empty());
    EXPECT_EQ(object.m_iManagedOverride, 0);
    EXPECT_EQ(object.m_iReserved, 0);
    EXPECT_EQ(object.m_bUseDecryptData, 0);
  }
  static void expectVersionsRemembered(const Probe& object) {
    EXPECT_EQ(object.m_strGlobalVersion, L"G 1");
    EXPECT_EQ(object.m_strLocalVersion, L"L 2");
    EXPECT_EQ(object.m_strSiteListType, L"Server");
    EXPECT_EQ(object.m_strCurrentFile, L"");
    EXPECT_EQ(object.m_strReserved, L"");
    EXPECT_EQ(object.m_pSiteListElement, nullptr);
  }
};

// --- Construction
// ---------------------------------------------------------------------------------

TEST_F(HelperObject, WithoutDefaultFileHasNoFileAndTheTypeClient) {
  test::writeFile(agent.etc("SiteList.xml"), c_versionedDocument);
  agent.clearLog();
  const Probe object(true);
  EXPECT_EQ(object.m_strSiteListFile, L"");
  expectNothingRemembered(object);
  EXPECT_THAT(agent.log(), ElementsAre(detail(L"Enter: Constructing sites helper object"),
                                       detail(L"Leave: Constructing sites helper object")));
}

TEST_F(HelperObject, WithDefaultFileServesTheAgentsSiteList) {
  test::writeFile(agent.etc("SiteList.xml"), c_versionedDocument);
  const Probe object(false);
  EXPECT_EQ(object.m_strSiteListFile, etc("SiteList.xml"));
  expectVersionsRemembered(object);
}

TEST_F(HelperObject, ConstructionWithDefaultFileOpensItsScopesInOrder) {
  const Probe object(false);
  EXPECT_THAT(scopes(), ElementsAre(detail(L"Enter: Constructing sites helper object"),
                                    detail(L"Enter: Getting Sitelist file name"),
                                    detail(L"Leave: Getting Sitelist file name"),
                                    detail(L"Enter: Getting Sitelist versions"),
                                    detail(L"Leave: Getting Sitelist versions"),
                                    detail(L"Leave: Constructing sites helper object")));
  EXPECT_THAT(messages(), IsEmpty());
}

TEST_F(HelperObject, MissingDefaultFileLeavesVersionsEmptyAndTheTypeClient) {
  const Probe object(false);
  EXPECT_EQ(object.m_strSiteListFile, etc("SiteList.xml"));
  expectNothingRemembered(object);
}

TEST_F(HelperObject, UnreadableDefaultFileLeavesVersionsEmptyAndTheTypeClient) {
  test::writeFile(agent.etc("SiteList.xml"), "this is no site list");
  expectNothingRemembered(Probe(false));
  test::writeFile(agent.etc("SiteList.xml"), "<ns:SiteLists");
  expectNothingRemembered(Probe(false));
  test::writeFile(agent.etc("SiteList.xml"), "<a>\xFF\xFE</a>");
  expectNothingRemembered(Probe(false));
  ASSERT_EQ(std::remove(agent.etc("SiteList.xml").c_str()), 0);
  test::writeFile(agent.etc("SiteList.xml/occupied"), "");
  expectNothingRemembered(Probe(false));
}

TEST_F(HelperObject, DefaultFileWithoutTypeIsOfTypeClient) {
  test::writeFile(agent.etc("SiteList.xml"),
                  test::documentWithRoot("<SiteList/>", R"(GlobalVersion="7")"));
  const Probe object(false);
  EXPECT_EQ(object.m_strSiteListType, L"Client");
  EXPECT_EQ(object.m_strGlobalVersion, L"7");
  EXPECT_EQ(object.m_strLocalVersion, L"");
}

TEST_F(HelperObject, DefaultDirectoryThatFillsTheBufferIsWholeAndALongerOneIsNone) {
  while (agent.settings.dataDirectory.size() < 220) {
    agent.settings.dataDirectory += "/" + std::string(20, 'd');
  }
  agent.settings.dataDirectory += std::string(255 - agent.settings.dataDirectory.size(), 'e');
  agent.apply();
  const std::wstring directory = test::wide(agent.settings.dataDirectory + "/etc");
  ASSERT_EQ(directory.size(), 259u);
  agent.settings.dataDirectory += "e";
  EXPECT_THROW(agent.apply(), host::SettingsError);
  const Probe object(false);
  EXPECT_EQ(object.m_strSiteListFile, directory + L"/SiteList.xml");
  expectNothingRemembered(object);
  EXPECT_THAT(messages(), IsEmpty());
}

TEST_F(HelperObject, FullPathIsServedFromEveryFormOfWideText) {
  const std::wstring file = store(c_versionedDocument, "other.xml");
  const Probe fromString(file);
  EXPECT_EQ(fromString.m_strSiteListFile, file);
  expectVersionsRemembered(fromString);
  const Probe fromPointer(file.c_str());
  EXPECT_EQ(fromPointer.m_strSiteListFile, file);
  expectVersionsRemembered(fromPointer);
  const Probe fromLiteral(L"/no/such/file.xml");
  EXPECT_EQ(fromLiteral.m_strSiteListFile, L"/no/such/file.xml");
  expectNothingRemembered(fromLiteral);
}

TEST_F(HelperObject, FullPathOpensItsOwnScope) {
  const Probe object(store(c_versionedDocument));
  EXPECT_THAT(agent.log(),
              ElementsAre(detail(L"Enter: Constructing sites helper object with full path"),
                          detail(L"Enter: Getting Sitelist versions"),
                          detail(L"Leave: Getting Sitelist versions"),
                          detail(L"Leave: Constructing sites helper object with full path")));
}

TEST_F(HelperObject, EmptyFullPathReadsNothing) {
  test::writeFile(agent.etc("SiteList.xml"), c_versionedDocument);
  const Probe object{std::wstring()};
  EXPECT_EQ(object.m_strSiteListFile, L"");
  expectNothingRemembered(object);
  const Probe fromNull(static_cast<const wchar_t*>(nullptr));
  EXPECT_EQ(fromNull.m_strSiteListFile, L"");
  expectNothingRemembered(fromNull);
}

TEST_F(HelperObject, FullPathIsNotTheAgentsSiteList) {
  test::writeFile(agent.etc("SiteList.xml"), c_versionedDocument);
  const Probe object(path("missing.xml"));
  EXPECT_EQ(object.m_strSiteListFile, path("missing.xml"));
  expectNothingRemembered(object);
}

template <typename Argument>
constexpr bool c_takes = std::is_constructible_v<CSitesHelper, Argument>;

enum Plain { PLAIN };

TEST_F(HelperObject, IsMadeOfABoolOrWideTextAndOfNothingThatBecomesABool) {
  static_assert(c_takes<bool> && c_takes<const bool&>);
  static_assert(c_takes<std::wstring> && c_takes<const std::wstring&>);
  static_assert(c_takes<const wchar_t*> && c_takes<wchar_t*>);
  static_assert(c_takes<const wchar_t(&)[2]> && c_takes<wchar_t(&)[2]>);
  static_assert(c_takes<const CSitesHelper&> && c_takes<const Probe&>);

  static_assert(!c_takes<int> && !c_takes<unsigned int> && !c_takes<long> && !c_takes<double>);
  static_assert(!c_takes<char> && !c_takes<wchar_t> && !c_takes<Plain>);
  static_assert(!c_takes<const char*> && !c_takes<char*> && !c_takes<const char(&)[2]>);
  static_assert(!c_takes<const char16_t*> && !c_takes<const char32_t*>);
  static_assert(!c_takes<AString*> && !c_takes<const AString*> && !c_takes<void*>);
  static_assert(!c_takes<std::wstring*> && !c_takes<int CSitesHelper::*>);
  static_assert(!c_takes<AString> && !c_takes<std::string>);

  static_assert(!std::is_convertible_v<bool, CSitesHelper>);
  wchar_t buffer[] = L"/no/such/file.xml";
  EXPECT_EQ(Probe(buffer).m_strSiteListFile, L"/no/such/file.xml");
}

TEST_F(HelperObject, DestructionLeavesTheCachedListAlone) {
  sitehlp::tag_Site* cached = test::newSite(sitehlp::SITE_KIND_UNC);
  CSitesHelper::m_pSiteList = cached;
  CSitesHelper::m_iChange = 2;
  { const Probe object(true); }
  EXPECT_EQ(CSitesHelper::m_pSiteList, cached);
  EXPECT_EQ(CSitesHelper::m_pSiteList->eSiteKind, sitehlp::SITE_KIND_UNC);
  EXPECT_EQ(CSitesHelper::m_iChange, 2);
}

// --- The default directory
// ------------------------------------------------------------------------

TEST_F(HelperObject, SiteListFilenameIsTheDirectory) {
  const std::wstring directory = test::wide(agent.dataDirectory() + "/etc");
  wchar_t buffer[260] = {};
  EXPECT_EQ(helper.GetSiteListFilename(buffer, 260), 0);
  EXPECT_EQ(std::wstring(buffer), directory);
  EXPECT_THAT(scopes(), ElementsAre(detail(L"Enter: Getting Sitelist file name"),
                                    detail(L"Leave: Getting Sitelist file name")));
}

TEST_F(HelperObject, SiteListFilenameIsCutSilentlyToTheCapacity) {
  const std::wstring directory = test::wide(agent.dataDirectory() + "/etc");
  for (unsigned long capacity = 1; capacity < directory.size() + 5; ++capacity) {
    std::vector<wchar_t> buffer(capacity + 1, L'?');
    EXPECT_EQ(helper.GetSiteListFilename(buffer.data(), capacity), 0);
    EXPECT_EQ(std::wstring(buffer.data()), directory.substr(0, capacity - 1)) << capacity;
    EXPECT_EQ(buffer[capacity - 1], L'\0') << capacity;
    EXPECT_EQ(buffer[capacity], L'?') << "wrote past the end of the buffer";
  }
  EXPECT_THAT(messages(), IsEmpty());
}

TEST_F(HelperObject, SiteListFilenameFollowsTheAgent) {
  agent.settings.dataDirectory = agent.dataDirectory() + "/\u65E5\u672C";
  agent.apply();
  wchar_t buffer[260] = {};
  EXPECT_EQ(helper.GetSiteListFilename(buffer, 260), 0);
  EXPECT_EQ(std::wstring(buffer), test::wide(agent.settings.dataDirectory) + L"/etc");
}

// --- Managed state
// --------------------------------------------------------------------------------

TEST_F(HelperObject, IsManagedAsTheConfigurationSays) {
  EXPECT_EQ(helper.IsOrbManaged(), 0);
  agent.settings.managed = true;
  agent.apply();
  EXPECT_EQ(helper.IsOrbManaged(), 1);
}

TEST_F(HelperObject, IsManagedOpensItsScope) {
  agent.clearLog();
  helper.IsOrbManaged();
  EXPECT_THAT(agent.log(),
              ElementsAre(detail(L"Enter: IsOrbManaged"), detail(L"Leave: IsOrbManaged")));
}

TEST_F(HelperObject, ManagedOverridesHaveNames) {
  EXPECT_EQ(sitehlp::c_overrideNone, 0);
  EXPECT_EQ(sitehlp::c_overrideManaged, -1);
  EXPECT_EQ(sitehlp::c_overrideNotManaged, -2);
}

TEST_F(HelperObject, ManagedOverrideGoesBeforeTheConfiguration) {
  for (const bool managed : {false, true}) {
    agent.settings.managed = managed;
    agent.apply();
    helper.SetManagedOverride(-2);
    EXPECT_EQ(helper.IsOrbManaged(), 0);
    EXPECT_EQ(helper.m_iManagedOverride, -2);
    helper.SetManagedOverride(-1);
    EXPECT_EQ(helper.IsOrbManaged(), 1);
    EXPECT_EQ(helper.m_iManagedOverride, -1);
    helper.SetManagedOverride(0);
    EXPECT_EQ(helper.IsOrbManaged(), managed ? 1 : 0);
  }
}

TEST_F(HelperObject, OtherManagedOverridesAskTheConfiguration) {
  for (const bool managed : {false, true}) {
    agent.settings.managed = managed;
    agent.apply();
    for (const int value : {1, 2, -3, 2147483647, -2147483647 - 1}) {
      helper.SetManagedOverride(value);
      EXPECT_EQ(helper.IsOrbManaged(), managed ? 1 : 0) << value;
    }
  }
}

TEST_F(HelperObject, ManagedOverrideBelongsToOneInstance) {
  helper.SetManagedOverride(-1);
  EXPECT_EQ(Probe(true).IsOrbManaged(), 0);
}

// --- The change counter
// ---------------------------------------------------------------------------

TEST_F(HelperObject, EachChangeNoticeRaisesTheCounterByOne) {
  agent.clearLog();
  for (int i = 1; i <= 5; ++i) {
    Probe(true).needToUpdateInMemSiteList();
    EXPECT_EQ(CSitesHelper::m_iChange, i);
  }
  EXPECT_EQ(CSitesHelper::m_pSiteList, nullptr);
}

TEST_F(HelperObject, ChangeNoticeOpensNoScopeAndLogsNothing) {
  agent.clearLog();
  helper.needToUpdateInMemSiteList();
  EXPECT_THAT(agent.log(), IsEmpty());
}

TEST_F(HelperObject, ChangeNoticeReleasesItsLock) {
  helper.needToUpdateInMemSiteList();
  korvel_com::orb::lock::InterProcessWriteLock lock(sitehlp::smartSiteListLock);
  EXPECT_TRUE(lock.lock(0));
}

TEST_F(HelperObject, ChangeNoticeWaitsForReadersOfTheCachedList) {
  InterProcessReadLock reader(sitehlp::smartSiteListLock);
  ASSERT_TRUE(reader.lock(0));
  std::atomic<bool> done{false};
  std::thread notifier([&] {
    helper.needToUpdateInMemSiteList();
    done = true;
  });
  // A waiting writer blocks new readers, so a failed read lock shows that the writer waits.
  bool writerWaits = false;
  while (!writerWaits && !done) {
    InterProcessReadLock another(sitehlp::smartSiteListLock);
    writerWaits = !another.lock(0);
  }
  EXPECT_TRUE(writerWaits);
  EXPECT_FALSE(done);
  EXPECT_EQ(CSitesHelper::m_iChange, 0);
  reader.unlock();
  notifier.join();
  EXPECT_EQ(CSitesHelper::m_iChange, 1);
}

TEST_F(HelperObject, ChangeNoticesOfManyThreadsAreAllCounted) {
  std::vector<std::thread> threads;
  for (int i = 0; i < 8; ++i) {
    threads.emplace_back([] {
      Probe object(true);
      for (int j = 0; j < 25; ++j) object.needToUpdateInMemSiteList();
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(CSitesHelper::m_iChange, 200);
}

}  // namespace
