#include <gmock/gmock.h>

#include <string>
#include <vector>

#include "tests/sitehlp/sites_helper_fixture.h"

// The walk over a document: policies, the list, and what every site has in common.
namespace {

using sitehlp::tag_Site;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;

class ReaderList : public test::SitesHelperTest {
 protected:
  static std::vector<int> kinds(const test::ListPtr& list) {
    std::vector<int> result;
    for (const tag_Site* site = list.get(); site; site = site->pNext) {
      result.push_back(site->eSiteKind);
    }
    return result;
  }
  static bool isEmptyData(const tag_Site& site) {
    const auto* data = reinterpret_cast<const unsigned char*>(&site.proxy);
    for (std::size_t i = 0; i < sizeof site.proxy; ++i) {
      if (data[i] != 0) return false;
    }
    return true;
  }
};

// --- The list
// -------------------------------------------------------------------------------------

TEST_F(ReaderList, EmptySiteListGivesNoRecords) {
  const Read result = read(test::documentWithSites(""));
  EXPECT_EQ(result.code, 0);
  EXPECT_EQ(result.list, nullptr);
}

TEST_F(ReaderList, AnOutputThatHeldAListIsMadeNullByAnEmptyOne) {
  for (const char* content :
       {"", " \n text ", "<!-- comment --><?pi x?>", "<![CDATA[<HttpSite/>]]>"}) {
    const std::wstring file = store(test::documentWithSites(content));
    tag_Site* list = test::untouched();
    EXPECT_EQ(helper.ReadSiteList(file, &list, true), 0) << content;
    EXPECT_EQ(list, nullptr) << content;
  }
}

TEST_F(ReaderList, DocumentWithoutSiteListGivesNoRecords) {
  const std::wstring file = store(test::documentWithRoot("<HttpSite/><Other/>"));
  tag_Site* list = test::untouched();
  EXPECT_EQ(helper.ReadSiteList(file, &list, true), 0);
  EXPECT_EQ(list, nullptr);
}

TEST_F(ReaderList, NameOfTheRootIsNotChecked) {
  const Read result = read("<anything><SiteList><UNCSite/></SiteList></anything>");
  EXPECT_EQ(result.code, 0);
  EXPECT_THAT(kinds(result.list), ElementsAre(2));
}

// Shows: exact-names
TEST_F(ReaderList, NamesAreComparedExactly) {
  EXPECT_EQ(read(test::documentWithRoot("<sitelist><HttpSite/></sitelist>")).list, nullptr);
  EXPECT_EQ(read(test::documentWithRoot("<ns:SiteList><HttpSite/></ns:SiteList>")).list, nullptr);
  const Read result = read(test::documentWithSites("<FtpSite/><FTPSite/>"));
  EXPECT_THAT(kinds(result.list), ElementsAre(0, 1));
  EXPECT_TRUE(isEmptyData(*result.list));
}

// Shows: first-site-list
TEST_F(ReaderList, OnlyTheFirstSiteListIsRead) {
  const Read result = read(test::documentWithRoot(
      "<SiteList><HttpSite/><FTPSite/></SiteList><SiteList><UNCSite/></SiteList>"));
  EXPECT_EQ(result.code, 0);
  EXPECT_THAT(kinds(result.list), ElementsAre(0, 1));
}

// Shows: first-site-list
TEST_F(ReaderList, OnlyTheFirstSiteListIsReadEvenWhenItIsEmpty) {
  const Read result = read(test::documentWithRoot("<SiteList/><SiteList><UNCSite/></SiteList>"));
  EXPECT_EQ(result.code, 0);
  EXPECT_EQ(result.list, nullptr);
}

TEST_F(ReaderList, FaultsOfALaterSiteListDoNotShow) {
  EXPECT_EQ(read(test::documentWithRoot(
                     "<SiteList><HttpSite/></SiteList><SiteList><Unknown/></SiteList>"))
                .code,
            0);
}

// Shows: unknown-in-root
TEST_F(ReaderList, RootChildrenBeforeTheListAreSkipped) {
  const Read result = read(test::documentWithRoot(
      "<CaBundle><CaCertificate>c</CaCertificate></CaBundle><Other><SiteList><FTPSite/></SiteList>"
      "</Other>text<SiteList><UNCSite/></SiteList>"));
  EXPECT_THAT(kinds(result.list), ElementsAre(2));
}

// Shows: grammar
TEST_F(ReaderList, RecordsStandInDocumentOrder) {
  const Read result = read(test::documentWithSites(
      "<LocalSite/><UNCSite/><VestaSite/><ProxyConfigList><ProxyConfig/></ProxyConfigList>"
      "<FTPSite/><KeystoneSite/><HttpSite/>"));
  EXPECT_EQ(result.code, 0);
  EXPECT_THAT(kinds(result.list), ElementsAre(3, 2, 0, 4, 1, 0, 0));
}

TEST_F(ReaderList, AThousandSitesAreRead) {
  std::string sites;
  for (int i = 0; i < 1000; ++i) {
    sites += "<HttpSite Order=\"" + std::to_string(i) + "\"/>";
  }
  const Read result = read(test::documentWithSites(sites));
  ASSERT_EQ(test::lengthOf(result.list.get()), 1000);
  int order = 0;
  for (const tag_Site* site = result.list.get(); site; site = site->pNext) {
    EXPECT_EQ(site->iOrder, order++);
  }
}

TEST_F(ReaderList, AgentSitesAreMarked) {
  const Read result =
      read(test::documentWithSites("<HttpSite/><VestaSite/><KeystoneSite/><FTPSite/><UNCSite/>"
                                   "<LocalSite/><ProxyConfigList/>"));
  std::vector<int> marks;
  for (const tag_Site* site = result.list.get(); site; site = site->pNext) {
    marks.push_back(site->bVestaSite);
  }
  EXPECT_THAT(marks, ElementsAre(0, 1, 1, 0, 0, 0, 0));
}

// --- Unknown elements
// -----------------------------------------------------------------------------

// Shows: unknown-site, unknown-last-site, ReadSiteList=-1
TEST_F(ReaderList, UnknownElementYieldsAnEmptyRecordWithTheCommonFields) {
  const Read result = read(test::documentWithSites(
      R"(<Other Type="mirror" Name="n" Server="s:1" Order="7" Enabled="1" Local="1">)"
      "<UserName>u</UserName></Other>"));
  EXPECT_EQ(result.code, -1);
  ASSERT_EQ(test::lengthOf(result.list.get()), 1);
  EXPECT_EQ(result.list->eSiteKind, 0);
  EXPECT_EQ(result.list->bVestaSite, 0);
  EXPECT_EQ(result.list->bMirror, 1);
  EXPECT_EQ(result.list->bEnabled, 1);
  EXPECT_EQ(result.list->bLocal, 1);
  EXPECT_EQ(result.list->iOrder, 7);
  EXPECT_STREQ(result.list->szType, L"mirror");
  EXPECT_TRUE(isEmptyData(*result.list));
}

// Shows: unknown-last-site, ReadSiteList=-1, ReadSiteList=0
TEST_F(ReaderList, TheLastElementDecidesTheResult) {
  const auto code = [this](const std::string& sites) {
    return read(test::documentWithSites(sites)).code;
  };
  EXPECT_EQ(code("<Other/>"), -1);
  EXPECT_EQ(code("<Other/><HttpSite/>"), 0);
  EXPECT_EQ(code("<HttpSite/><Other/>"), -1);
  EXPECT_EQ(code("<HttpSite/><Other/><FTPSite/>"), 0);
  EXPECT_EQ(code("<Other/><ProxyConfigList><ProxyConfig/></ProxyConfigList>"), 0);
  EXPECT_EQ(code("<HttpSite/><ProxyConfigList><Other/></ProxyConfigList>"), -1);
  EXPECT_EQ(code("<ProxyConfigList><Other/><ProxyConfig/></ProxyConfigList>"), 0);
  EXPECT_EQ(code("<ProxyConfigList><ProxyConfig/><Other/></ProxyConfigList>"), -1);
  EXPECT_EQ(code("<ProxyConfigList><Other/></ProxyConfigList><LocalSite/>"), 0);
}

// Shows: empty-proxy-list
TEST_F(ReaderList, EmptyProxyListDecodesNothingAndDecidesNothing) {
  EXPECT_EQ(read(test::documentWithSites("<HttpSite/><ProxyConfigList/>")).code, 0);
  EXPECT_EQ(read(test::documentWithSites("<Other/><ProxyConfigList/>")).code, -1);
  EXPECT_EQ(read(test::documentWithSites("<ProxyConfigList/>")).code, 0);
}

TEST_F(ReaderList, TheListIsCompleteEvenWhenTheResultIsMinusOne) {
  const Read result = read(test::documentWithSites("<FTPSite/><Other/><UNCSite/><Other/>"));
  EXPECT_EQ(result.code, -1);
  EXPECT_THAT(kinds(result.list), ElementsAre(1, 0, 2, 0));
}

// Shows: proxy-as-site
TEST_F(ReaderList, ProxyConfigAsASiteIsOfNoKnownKind) {
  const Read result = read(test::documentWithSites(R"(<ProxyConfig Name="p"/>)"));
  ASSERT_EQ(test::lengthOf(result.list.get()), 1);
  EXPECT_EQ(result.list->eSiteKind, 0);
}

// --- Common fields
// --------------------------------------------------------------------------------

// Shows: exact-names, attribute-type
TEST_F(ReaderList, TypeIsKeptAsWritten) {
  EXPECT_STREQ(decode("<HttpSite Type=\"Some Type\"/>")->szType, L"Some Type");
  EXPECT_STREQ(decode("<HttpSite/>")->szType, L"");
  EXPECT_STREQ(decode("<HttpSite type=\"master\"/>")->szType, L"");
}

TEST_F(ReaderList, MirrorIsToldInAnyCase) {
  for (const char* type : {"mirror", "Mirror", "MIRROR", "mIrRoR"}) {
    EXPECT_EQ(decode(std::string("<FTPSite Type=\"") + type + "\"/>")->bMirror, 1) << type;
  }
  for (const char* type : {"", "mirrors", " mirror", "mirro", "repository"}) {
    EXPECT_EQ(decode(std::string("<FTPSite Type=\"") + type + "\"/>")->bMirror, 0) << type;
  }
}

struct Flag {
  const char* text;
  int value;
};
const Flag c_flags[] = {{"1", 1},    {"0", 0},     {"2", 1},   {"5", 1},    {"-1", 1},
                        {"+3", 1},   {"  1", 1},   {"00", 0},  {"01", 1},   {"0x1", 0},
                        {"true", 0}, {"yes", 0},   {"", 0},    {" ", 0},    {"1abc", 1},
                        {"a1", 0},   {"- 1", 0},   {"0.9", 0}, {"9999", 1}, {"\u0661", 0},
                        {"--1", 0},  {"\uFF11", 0}};

// Shows: format-flag, attribute-enabled, attribute-local
TEST_F(ReaderList, FlagsAreOneWhenTheirNumberIsNotZero) {
  for (const Flag& flag : c_flags) {
    const auto enabled = decode(std::string("<UNCSite Enabled=\"") + flag.text + "\"/>");
    EXPECT_EQ(enabled->bEnabled, flag.value) << flag.text;
    EXPECT_EQ(enabled->bLocal, 0) << flag.text;
    const auto local = decode(std::string("<UNCSite Local=\"") + flag.text + "\"/>");
    EXPECT_EQ(local->bLocal, flag.value) << flag.text;
    EXPECT_EQ(local->bEnabled, 0) << flag.text;
  }
  EXPECT_EQ(decode("<UNCSite/>")->bEnabled, 0);
}

// Shows: format-number, attribute-order
TEST_F(ReaderList, OrderIsTheNumberAsItComes) {
  const std::pair<const char*, int> cases[] = {{"0", 0},
                                               {"7", 7},
                                               {"-3", -3},
                                               {"+12", 12},
                                               {"  42", 42},
                                               {"42 x", 42},
                                               {"x42", 0},
                                               {"", 0},
                                               {"65536", 65536},
                                               {"2147483647", 2147483647},
                                               {"-2147483648", -2147483647 - 1}};
  for (const auto& one : cases) {
    EXPECT_EQ(decode(std::string("<HttpSite Order=\"") + one.first + "\"/>")->iOrder, one.second)
        << one.first;
    EXPECT_EQ(
        decode(std::string("<HttpSite Type=\"fallback\" Order=\"") + one.first + "\"/>")->iOrder,
        one.second)
        << one.first;
  }
}

// Shows: attribute-order
TEST_F(ReaderList, FallbackWithoutOrderComesLast) {
  for (const char* type : {"fallback", "Fallback", "FALLBACK"}) {
    for (const char* element : {"HttpSite", "FTPSite", "UNCSite", "LocalSite", "ProxyConfigList"}) {
      EXPECT_EQ(decode(std::string("<") + element + " Type=\"" + type + "\"/>")->iOrder, 65535)
          << element << " " << type;
    }
  }
  EXPECT_EQ(decode("<HttpSite/>")->iOrder, 0);
  EXPECT_EQ(decode(R"(<HttpSite Type="master"/>)")->iOrder, 0);
  EXPECT_EQ(decode(R"(<HttpSite Type="Fallback" Order="0"/>)")->iOrder, 0);
}

TEST_F(ReaderList, NumbersFarOutOfRangeDoNoHarm) {
  for (const char* number : {"2147483648", "-2147483649", "4294967295", "99999999999999999999",
                             "-99999999999999999999"}) {
    const Read result = read(test::documentWithSites(
        std::string("<HttpSite Order=\"") + number + "\" SecurePort=\"" + number +
        "\" Name=\"n\"><UseAuth>" + number + "</UseAuth><UserName>u</UserName></HttpSite>"));
    EXPECT_EQ(result.code, 0) << number;
    ASSERT_EQ(test::lengthOf(result.list.get()), 1) << number;
    EXPECT_STREQ(result.list->http.szName, L"n") << number;
    EXPECT_STREQ(result.list->http.szUserName, L"u") << number;
  }
}

TEST_F(ReaderList, OverlongTypeIsCutAndLogged) {
  const std::string kept(259, 't');
  EXPECT_EQ(std::wstring(decode("<HttpSite Type=\"" + kept + "\"/>")->szType), test::wide(kept));
  EXPECT_THAT(messages(), IsEmpty());
  EXPECT_EQ(std::wstring(decode("<HttpSite Type=\"" + kept + "t\"/>")->szType), test::wide(kept));
  EXPECT_THAT(messages(), ElementsAre(detail(L"String " + test::wide(kept) + L"t is truncated to " +
                                             test::wide(kept) + L" in CopyWStr")));
}

TEST_F(ReaderList, MirrorIsToldFromTheTypeAsItWasKept) {
  const std::string type = "mirror" + std::string(300, ' ');
  EXPECT_EQ(decode("<HttpSite Type=\"" + type + "\"/>")->bMirror, 0);
}

// --- Policies
// -------------------------------------------------------------------------------------

// Shows: grammar
TEST_F(ReaderList, PoliciesAreLoadedByName) {
  read(test::documentWithRoot(
      R"(<Policies><Setting name="b">2</Setting><Setting name="a"> 1 </Setting>)"
      R"(<Setting name="c"/><Setting name="d"><![CDATA[<4>]]>&amp;</Setting></Policies><SiteList/>)"));
  EXPECT_THAT(helper.m_policySettings, ElementsAre(Pair(L"a", L" 1 "), Pair(L"b", L"2"),
                                                   Pair(L"c", L""), Pair(L"d", L"<4>&")));
}

TEST_F(ReaderList, LaterSettingOfTheSameNameReplacesTheEarlier) {
  read(test::documentWithRoot(R"(<Policies><Setting name="a">1</Setting>)"
                              R"(<Setting name="a">2</Setting></Policies>)"
                              R"(<Policies><Setting name="a">3</Setting></Policies><SiteList/>)"));
  EXPECT_THAT(helper.m_policySettings, ElementsAre(Pair(L"a", L"3")));
}

TEST_F(ReaderList, OtherChildrenOfPoliciesAreIgnored) {
  read(test::documentWithRoot(
      R"(<Policies><setting name="a">1</setting><Other><Setting name="b">2</Setting></Other>)"
      R"(<Setting Name="c">3</Setting></Policies>)"));
  EXPECT_THAT(helper.m_policySettings, ElementsAre(Pair(L"", L"3")));
}

// Shows: policies-first
TEST_F(ReaderList, PoliciesBehindTheSiteListAreNotLoaded) {
  read(test::documentWithRoot(R"(<Policies><Setting name="a">1</Setting></Policies><SiteList/>)"
                              R"(<Policies><Setting name="b">2</Setting></Policies>)"));
  EXPECT_THAT(helper.m_policySettings, ElementsAre(Pair(L"a", L"1")));
}

TEST_F(ReaderList, PoliciesWithoutASiteListAreLoaded) {
  EXPECT_EQ(
      read(test::documentWithRoot(R"(<Policies><Setting name="a">1</Setting></Policies>)")).code,
      0);
  EXPECT_THAT(helper.m_policySettings, ElementsAre(Pair(L"a", L"1")));
}

TEST_F(ReaderList, SettingsOfAnEarlierReadStay) {
  read(test::documentWithRoot(R"(<Policies><Setting name="a">1</Setting></Policies>)"));
  read(test::documentWithRoot(R"(<Policies><Setting name="b">2</Setting></Policies>)"));
  EXPECT_THAT(helper.m_policySettings, ElementsAre(Pair(L"a", L"1"), Pair(L"b", L"2")));
}

}  // namespace
