#include <gmock/gmock.h>

#include <cstring>
#include <string>

#include "tests/sitehlp/password_fixture.h"
#include "tests/sitehlp/site_generator.h"

namespace {

using sitehlp::tag_Site;
using testing::IsEmpty;

class RoundTrip : public test::PasswordTest {
 protected:
  std::wstring file() const { return path("out.xml"); }

  // Writes a list, reads it and expects the same records.
  void expectBack(const test::ListPtr& list, const std::string& where) {
    const test::ListPtr before = test::copyOf(list.get());
    ASSERT_EQ(helper.CreateSiteList(list.get(), file(), L"G", L"L", L"T", {}), 0) << where;
    const Read back = readPath(file());
    ASSERT_EQ(back.code, 0) << where;
    expectSame(before.get(), back.list.get(), where);
  }
  static void expectSame(const tag_Site* expected, const tag_Site* actual,
                         const std::string& where) {
    ASSERT_EQ(test::lengthOf(expected), test::lengthOf(actual)) << where;
    for (; expected; expected = expected->pNext, actual = actual->pNext) {
      ASSERT_EQ(test::fieldsOf(*expected), test::fieldsOf(*actual)) << where;
      // The bytes after the texts are also equal.
      ASSERT_EQ(std::memcmp(&expected->proxy, &actual->proxy, sizeof expected->proxy), 0) << where;
      ASSERT_EQ(std::memcmp(expected->szType, actual->szType, sizeof expected->szType), 0) << where;
    }
  }
};

TEST_F(RoundTrip, EveryGeneratedListComesBack) {
  agent.settings.meshLoadCommand.clear();
  agent.settings.logLevel = LogLevel::Info;
  agent.apply();
  int records = 0;
  for (unsigned int seed = 1; seed <= 300; ++seed) {
    const test::ListPtr list = test::SiteGenerator(seed).list();
    records += test::lengthOf(list.get());
    expectBack(list, "list " + std::to_string(seed));
    if (HasFatalFailure()) return;
  }
  EXPECT_GT(records, 900);
}

TEST_F(RoundTrip, FullFieldsComeBackWithoutBeingCut) {
  agent.clearLog();
  for (const wchar_t character : {L'x', L'&', L'\u65E5', L'\U0001F600'}) {
    const auto full = [character](auto& field) {
      test::put(field, std::wstring(sizeof field / sizeof(wchar_t) - 1, character));
    };
    tag_Site* vesta = test::newSite(sitehlp::SITE_KIND_HTTP);
    vesta->bVestaSite = 1;
    full(vesta->szType);
    test::put(vesta->http.szElement, L"VestaSite");
    full(vesta->http.szName);
    full(vesta->http.szServer);
    full(vesta->http.szServerIP);
    full(vesta->http.szRelativePath);
    full(vesta->http.szServerName);
    full(vesta->http.szUserName);
    full(vesta->http.szPassword);
    full(vesta->http.szVersion);
    vesta->http.uServerPort = vesta->http.uServerIPPort = vesta->http.uServerNamePort = 4294967295u;
    vesta->http.uSecurePort = 4294967295u;
    tag_Site* unc = test::newSite(sitehlp::SITE_KIND_UNC);
    test::put(unc->szType, L"t");
    full(unc->unc.szName);
    full(unc->unc.szServer);
    full(unc->unc.szRelativePath);
    full(unc->unc.szDomainName);
    full(unc->unc.szUserName);
    full(unc->unc.szPassword);
    full(unc->unc.szShareName);
    expectBack(test::chain({vesta, unc}), "full");
  }
  for (const std::wstring& line : messageTexts()) {
    EXPECT_EQ(line.find(L"truncated"), std::wstring::npos) << test::narrow(line);
  }
}

TEST_F(RoundTrip, SecondWritingComesBackToo) {
  agent.settings.meshLoadCommand.clear();
  agent.apply();
  for (unsigned int seed = 1000; seed < 1040; ++seed) {
    expectBack(test::SiteGenerator(seed).list(), "first");
    const Read first = readPath(file());
    expectBack(test::copyOf(first.list.get()), "second of " + std::to_string(seed));
    if (HasFatalFailure()) return;
  }
}

TEST_F(RoundTrip, GeneratedListsAreWrittenTheSameWayTwice) {
  makeKeysUnobtainable();
  agent.settings.meshLoadCommand.clear();
  agent.settings.logLevel = LogLevel::Off;
  agent.apply();
  for (unsigned int seed = 1; seed <= 50; ++seed) {
    const test::ListPtr list = test::SiteGenerator(seed).list();
    const test::ListPtr copy = test::copyOf(list.get());
    ASSERT_EQ(helper.CreateSiteList(list.get(), path("a.xml"), L"G", L"L", L"T", {}), 0);
    ASSERT_EQ(helper.CreateSiteList(copy.get(), path("b.xml"), L"G", L"L", L"T", {}), 0);
    ASSERT_EQ(test::readFile(test::narrow(path("a.xml"))),
              test::readFile(test::narrow(path("b.xml"))))
        << seed;
  }
}

TEST_F(RoundTrip, PoliciesCertificatesAndVersionsComeBack) {
  const std::wstring odd = L" <&>\"'\t\n\u65E5\U0001F600 ";
  helper.m_policySettings = {{odd, odd}, {L"", L""}, {L"a", L"1"}};
  ASSERT_EQ(helper.CreateSiteList(nullptr, file(), odd, odd, odd, {odd}), 0);
  test::Probe back(file());
  EXPECT_EQ(back.m_strGlobalVersion, odd);
  EXPECT_EQ(back.m_strLocalVersion, odd);
  EXPECT_EQ(back.m_strSiteListType, odd);
  tag_Site* list = nullptr;
  EXPECT_EQ(back.ReadSiteList(L"", &list, true), 0);
  EXPECT_EQ(back.m_policySettings, helper.m_policySettings);
}

}  // namespace
