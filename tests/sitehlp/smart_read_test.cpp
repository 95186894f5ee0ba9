#include <gmock/gmock.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>
#include <string>

#include "tests/sitehlp/sites_helper_fixture.h"
#include "tests/support/faulty_file_system.h"

// The cached list, and when the file is read again.
namespace {

using sitehlp::CSitesHelper;
using sitehlp::tag_Site;
using testing::ElementsAre;
using testing::IsEmpty;

class SmartRead : public test::SitesHelperTest {
 protected:
  static std::string named(const std::string& name) {
    return test::documentWithSites("<UNCSite Name=\"" + name + "\"/>");
  }
  // A smart read and the messages that it logged.
  int smartRead(const std::wstring& file, tag_Site** list) {
    agent.clearLog();
    return helper.SmartReadSiteList(file, list);
  }
};

// Shows: SmartReadSiteList=0
TEST_F(SmartRead, FirstReadGoesToTheFile) {
  const std::wstring file = store(named("one"));
  tag_Site* list = nullptr;
  EXPECT_EQ(smartRead(file, &list), 0);
  ASSERT_NE(list, nullptr);
  EXPECT_STREQ(list->unc.szName, L"one");
  EXPECT_EQ(list, CSitesHelper::m_pSiteList);
  EXPECT_EQ(CSitesHelper::m_iChange, 1);
  EXPECT_THAT(messages(), ElementsAre(detail(L"Reading from FILE0")));
}

TEST_F(SmartRead, OpensItsScopesInOrder) {
  const std::wstring file = store(named("one"));
  tag_Site* list = nullptr;
  smartRead(file, &list);
  EXPECT_THAT(
      agent.log(),
      ElementsAre(detail(L"Enter: Smart read of Site List"), detail(L"Reading from FILE0"),
                  detail(L"Enter: Reading Sitelist"), detail(L"Enter: Reading site from SiteList"),
                  detail(L"Leave: Reading site from SiteList"), detail(L"Leave: Reading Sitelist"),
                  detail(L"Leave: Smart read of Site List")));
  smartRead(file, &list);
  EXPECT_THAT(agent.log(), ElementsAre(detail(L"Enter: Smart read of Site List"),
                                       detail(L"Reading from memory1"),
                                       detail(L"Leave: Smart read of Site List")));
}

TEST_F(SmartRead, SecondReadIsServedFromMemory) {
  const std::wstring file = store(named("one"));
  tag_Site* first = nullptr;
  tag_Site* second = nullptr;
  ASSERT_EQ(smartRead(file, &first), 0);
  store(named("two"));
  EXPECT_EQ(smartRead(file, &second), 0);
  EXPECT_EQ(second, first);
  EXPECT_STREQ(second->unc.szName, L"one");
  EXPECT_EQ(CSitesHelper::m_iChange, 1);
  EXPECT_THAT(messages(), ElementsAre(detail(L"Reading from memory1")));
}

TEST_F(SmartRead, CacheIsSharedByEveryInstance) {
  const std::wstring file = store(named("one"));
  tag_Site* first = nullptr;
  ASSERT_EQ(smartRead(file, &first), 0);
  tag_Site* second = nullptr;
  EXPECT_EQ(test::Probe(true).SmartReadSiteList(file, &second), 0);
  EXPECT_EQ(second, first);
}

TEST_F(SmartRead, OneChangeNoticeIsNotEnough) {
  const std::wstring file = store(named("one"));
  tag_Site* first = nullptr;
  ASSERT_EQ(smartRead(file, &first), 0);
  store(named("two"));
  helper.needToUpdateInMemSiteList();
  tag_Site* second = nullptr;
  EXPECT_EQ(smartRead(file, &second), 0);
  EXPECT_EQ(second, first);
  EXPECT_THAT(messages(), ElementsAre(detail(L"Reading from memory2")));
  EXPECT_EQ(CSitesHelper::m_iChange, 2);
}

TEST_F(SmartRead, SecondChangeNoticeSendsTheNextReadToTheFile) {
  const std::wstring file = store(named("one"));
  tag_Site* list = nullptr;
  ASSERT_EQ(smartRead(file, &list), 0);
  store(named("two"));
  helper.needToUpdateInMemSiteList();
  helper.needToUpdateInMemSiteList();
  EXPECT_EQ(smartRead(file, &list), 0);
  EXPECT_THAT(
      agent.log(),
      ElementsAre(detail(L"Enter: Smart read of Site List"), detail(L"Reading from FILE3"),
                  detail(L"Enter: Free memory for Sitelist"),
                  detail(L"Leave: Free memory for Sitelist"), detail(L"Enter: Reading Sitelist"),
                  detail(L"Enter: Reading site from SiteList"),
                  detail(L"Leave: Reading site from SiteList"), detail(L"Leave: Reading Sitelist"),
                  detail(L"Leave: Smart read of Site List")));
  EXPECT_STREQ(list->unc.szName, L"two");
  EXPECT_EQ(list, CSitesHelper::m_pSiteList);
  EXPECT_EQ(CSitesHelper::m_iChange, 1);
  EXPECT_EQ(smartRead(file, &list), 0);
  EXPECT_THAT(messages(), ElementsAre(detail(L"Reading from memory1")));
}

TEST_F(SmartRead, ReloadHappensAboveTwoAlone) {
  const std::wstring file = store(named("one"));
  for (const int counter : {-2147483647 - 1, -5, 0, 1, 2}) {
    tag_Site* list = nullptr;
    forgetCache();
    ASSERT_EQ(smartRead(file, &list), 0);
    CSitesHelper::m_iChange = counter;
    smartRead(file, &list);
    EXPECT_THAT(messages(), ElementsAre(detail(L"Reading from memory" + std::to_wstring(counter))));
    EXPECT_EQ(CSitesHelper::m_iChange, counter);
  }
  for (const int counter : {3, 4, 100, 2147483647}) {
    tag_Site* list = nullptr;
    CSitesHelper::m_iChange = counter;
    smartRead(file, &list);
    EXPECT_THAT(messages(), ElementsAre(detail(L"Reading from FILE" + std::to_wstring(counter))));
    EXPECT_EQ(CSitesHelper::m_iChange, 1);
  }
}

TEST_F(SmartRead, NoticesBeforeTheFirstReadAreForgottenByIt) {
  const std::wstring file = store(named("one"));
  for (int i = 0; i < 2; ++i) helper.needToUpdateInMemSiteList();
  tag_Site* list = nullptr;
  EXPECT_EQ(smartRead(file, &list), 0);
  EXPECT_THAT(messages(), ElementsAre(detail(L"Reading from FILE2")));
  EXPECT_EQ(CSitesHelper::m_iChange, 1);
}

TEST_F(SmartRead, CachedListServesEveryPath) {
  tag_Site* first = nullptr;
  ASSERT_EQ(smartRead(store(named("one"), "one.xml"), &first), 0);
  tag_Site* second = nullptr;
  EXPECT_EQ(smartRead(store(named("two"), "two.xml"), &second), 0);
  EXPECT_EQ(second, first);
  EXPECT_EQ(smartRead(path("missing.xml"), &second), 0);
  EXPECT_EQ(second, first);
  EXPECT_EQ(smartRead(L"", &second), 0);
  EXPECT_EQ(second, first);
}

TEST_F(SmartRead, MissingFileLeavesTheCacheEmptyAndIsTriedAgain) {
  tag_Site* list = test::untouched();
  EXPECT_EQ(smartRead(path("list.xml"), &list), -4);
  EXPECT_EQ(list, test::untouched());
  EXPECT_EQ(CSitesHelper::m_pSiteList, nullptr);
  EXPECT_EQ(CSitesHelper::m_iChange, 0);
  EXPECT_THAT(messages(), ElementsAre(detail(L"Reading from FILE0"),
                                      error(L"Unable to read from SiteList file, error hr=-4")));
  EXPECT_EQ(smartRead(store(named("one")), &list), 0);
  EXPECT_THAT(messages(), ElementsAre(detail(L"Reading from FILE0")));
  EXPECT_EQ(list, CSitesHelper::m_pSiteList);
  EXPECT_EQ(CSitesHelper::m_iChange, 1);
}

// Shows: SmartReadSiteList=-2, SmartReadSiteList=-4, SmartReadSiteList=-5, SmartReadSiteList=-10
TEST_F(SmartRead, EachFailureIsLoggedWithItsResult) {
  const auto logged = [this](const std::wstring& file) {
    tag_Site* list = nullptr;
    const int code = smartRead(file, &list);
    EXPECT_EQ(list, nullptr);
    EXPECT_EQ(CSitesHelper::m_pSiteList, nullptr);
    EXPECT_THAT(messages(), ElementsAre(detail(L"Reading from FILE0"),
                                        error(L"Unable to read from SiteList file, error hr=" +
                                              std::to_wstring(code))));
    return code;
  };
  EXPECT_EQ(logged(L""), -2);
  EXPECT_EQ(logged(path("missing.xml")), -4);
  EXPECT_EQ(logged(store("no document")), -5);
  EXPECT_EQ(logged(test::wide(agent.dataDirectory())), -10);
  EXPECT_EQ(logged(store(test::documentWithSites(""))), 0);
}

// Shows: SmartReadSiteList=-1
TEST_F(SmartRead, ListWithAnUnknownLastSiteIsNotKept) {
  const std::wstring file = store(test::documentWithSites("<UNCSite/><Other/>"));
  tag_Site* list = nullptr;
  EXPECT_EQ(smartRead(file, &list), -1);
  const test::ListPtr owner(list);
  EXPECT_EQ(test::lengthOf(list), 2);
  EXPECT_EQ(CSitesHelper::m_pSiteList, nullptr);
  EXPECT_THAT(messages(), ElementsAre(detail(L"Reading from FILE0"),
                                      error(L"Unable to read from SiteList file, error hr=-1")));
}

TEST_F(SmartRead, ReloadThatFailsHasLostTheOldList) {
  const std::wstring file = store(named("one"));
  tag_Site* list = nullptr;
  ASSERT_EQ(smartRead(file, &list), 0);
  CSitesHelper::m_iChange = 3;
  std::filesystem::remove(test::narrow(file));
  EXPECT_EQ(smartRead(file, &list), -4);
  EXPECT_EQ(CSitesHelper::m_pSiteList, nullptr);
  EXPECT_EQ(CSitesHelper::m_iChange, 3);
  EXPECT_THAT(messages(), ElementsAre(detail(L"Reading from FILE3"),
                                      error(L"Unable to read from SiteList file, error hr=-4")));
  EXPECT_EQ(smartRead(store(named("two")), &list), 0);
  EXPECT_STREQ(list->unc.szName, L"two");
  EXPECT_EQ(CSitesHelper::m_iChange, 1);
}

TEST_F(SmartRead, EmptyPathReadsTheOwnFile) {
  test::Probe own(store(named("own")));
  tag_Site* list = nullptr;
  EXPECT_EQ(own.SmartReadSiteList(L"", &list), 0);
  ASSERT_NE(list, nullptr);
  EXPECT_STREQ(list->unc.szName, L"own");
}

TEST_F(SmartRead, LoadsThePoliciesOfTheFile) {
  const std::wstring file = store(test::documentWithRoot(
      R"(<Policies><Setting name="a">1</Setting></Policies><SiteList><UNCSite/></SiteList>)"));
  tag_Site* list = nullptr;
  ASSERT_EQ(smartRead(file, &list), 0);
  EXPECT_THAT(helper.m_policySettings, ElementsAre(testing::Pair(L"a", L"1")));
}

// The reading thread forks during a read, and the child continues the read.
class ForkWhenOpened : public test::FaultyFileSystem {
 public:
  int open(int directory, const std::string& name, int flags, mode_t mode) override {
    const std::string list = "list.xml";
    const bool isList = name.size() > list.size() &&
                        name.compare(name.size() - list.size(), list.size(), list) == 0;
    if (isList && child < 0) child = ::fork();
    return FaultyFileSystem::open(directory, name, flags, mode);
  }
  pid_t child = -1;  // 0 in the child
};

TEST_F(SmartRead, IsFinishedByAChildOfForkThatItsOwnThreadMakesMeanwhile) {
  const std::wstring file = store(named("one"));
  tag_Site* list = nullptr;
  pid_t child = -1;
  int code = -1;
  {
    ForkWhenOpened files;
    code = smartRead(file, &list);
    child = files.child;
  }
  tag_Site* again = nullptr;
  const bool isKept = code == 0 && list && helper.SmartReadSiteList(file, &again) == 0 &&
                      again == list && std::wstring(list->unc.szName) == L"one";
  if (child == 0) ::_exit(isKept ? 0 : 1);
  EXPECT_TRUE(isKept);
  ASSERT_GT(child, 0);
  int status = -1;
  EXPECT_EQ(::waitpid(child, &status, 0), child);
  EXPECT_EQ(status, 0);
}

}  // namespace
