#include <gmock/gmock.h>

#include <filesystem>

#include "tests/import/documents.h"
#include "tests/import/log_lines.h"
#include "tests/import/records.h"
#include "tests/import/site_cache.h"
#include "tests/support/heap.h"
#include "tests/support/test_agent.h"

using namespace sitehlp;
using namespace test;
using testing::Contains;

namespace {

struct Info {
  int code = 0;
  std::wstring names = L"-";
  std::wstring servers = L"-";
  std::wstring serverIPs = L"-";
  std::wstring netbiosNames = L"-";
  int port = -7;
  std::wstring versions = L"-";
};

// One management server as an element; the port of a server is that of its "Server" attribute.
std::string server(const std::string& name, const std::string& order, const std::string& ip,
                   const std::string& ports, const std::string& version = "1.0") {
  return "<VestaSite Type=\"master\" Enabled=\"1\" Name=\"" + name + "\" Order=\"" + order +
         "\" ServerIP=\"" + ip + "\" ServerName=\"NB" + name + ":80\" Version=\"" + version +
         "\" " + ports + "/>";
}

class ServerInfo : public testing::Test {
 protected:
  ServerInfo() { clearSiteCache(); }
  ~ServerInfo() override { clearSiteCache(); }

  Info ask(const std::string& sites, bool allSites, bool nonSecurePort) {
    writeFile(file, document(sites));
    return askFile(allSites, nonSecurePort);
  }
  Info askFile(bool allSites, bool nonSecurePort) {
    clearSiteCache();
    OpenHelper helper{wide(file)};
    agent.clearLog();
    Info info;
    info.code = helper.GetPYXServerInfo(info.names, info.servers, info.serverIPs, info.netbiosNames,
                                        info.port, info.versions, allSites, nonSecurePort);
    return info;
  }
  static void expectUntouched(const Info& info, int code) {
    EXPECT_EQ(info.code, code);
    EXPECT_EQ(info.names, L"-");
    EXPECT_EQ(info.servers, L"-");
    EXPECT_EQ(info.serverIPs, L"-");
    EXPECT_EQ(info.netbiosNames, L"-");
    EXPECT_EQ(info.port, -7);
    EXPECT_EQ(info.versions, L"-");
  }

  TestAgent agent;
  const std::string file = agent.etc("SiteList.xml");
  const std::string two =
      server("second", "2", "10.0.0.2:80", R"(Server="b.example:81" SecurePort="8444")", "2.0") +
      httpElement("repository") +
      server("first", "1", "10.0.0.1:80", R"(Server="a.example:80" SecurePort="443")");
};

// Shows: GetPYXServerInfo=0
TEST_F(ServerInfo, AllServersComeByAscendingOrderWithThePortOfTheLast) {
  const Info info = ask(two, true, false);
  EXPECT_EQ(info.code, 0);
  EXPECT_EQ(info.names, L"first;second");
  EXPECT_EQ(info.servers, L"a.example;b.example");
  EXPECT_EQ(info.serverIPs, L"10.0.0.1;10.0.0.2");
  EXPECT_EQ(info.netbiosNames, L"NBfirst;NBsecond");
  EXPECT_EQ(info.port, 8444);
  EXPECT_EQ(info.versions, L"1.0;2.0");
  EXPECT_TRUE(tracedScope(agent, L"Get PYX Server IP Address"));
}

TEST_F(ServerInfo, OneServerIsTheFirstByOrderWithItsPort) {
  const Info info = ask(two, false, false);
  EXPECT_EQ(info.code, 0);
  EXPECT_EQ(info.names, L"first");
  EXPECT_EQ(info.servers, L"a.example");
  EXPECT_EQ(info.serverIPs, L"10.0.0.1");
  EXPECT_EQ(info.netbiosNames, L"NBfirst");
  EXPECT_EQ(info.port, 443);
  EXPECT_EQ(info.versions, L"1.0");
}

TEST_F(ServerInfo, OrdersAreNumbers) {
  const Info info = ask(server("ten", "10", "", "") + server("nine", "9", "", "") +
                            server("minus", "-1", "", "") + server("zero", "0", "", ""),
                        true, false);
  EXPECT_EQ(info.names, L"minus;zero;nine;ten");
}

TEST_F(ServerInfo, OfSeveralServersWithOneOrderOnlyTheFirstCounts) {
  const Info info =
      ask(server("a", "2", "", R"(Server="a:81")") + server("b", "1", "", R"(Server="b:82")") +
              server("c", "2", "", R"(Server="c:83")") + server("d", "1", "", R"(Server="d:84")"),
          true, false);
  EXPECT_EQ(info.names, L"b;a");
  EXPECT_EQ(info.servers, L"b;a");
  EXPECT_EQ(info.port, 81);
}

TEST_F(ServerInfo, ThePortIsTheSecureOneUnlessThereIsNoneOrTheOtherIsWanted) {
  const std::string both = server("s", "1", "", R"(Server="s:80" SecurePort="443")");
  EXPECT_EQ(ask(both, false, false).port, 443);
  EXPECT_EQ(ask(both, false, true).port, 80);
  const std::string plain = server("s", "1", "", R"(Server="s:80")");
  EXPECT_EQ(ask(plain, false, false).port, 80);
  EXPECT_EQ(ask(plain, false, true).port, 80);
  EXPECT_EQ(ask(two, true, true).port, 81);
}

TEST_F(ServerInfo, AddressesLoseTheirBrackets) {
  EXPECT_EQ(ask(server("s", "1", "[fe80::1]:80", ""), false, false).serverIPs, L"fe80::1");
  EXPECT_EQ(ask(server("s", "1", "[fe80::1]:80", "") + server("t", "2", "10.0.0.9:80", "") +
                    server("u", "3", "[::1]:80", ""),
                true, false)
                .serverIPs,
            L"fe80::1;10.0.0.9;::1");
}

TEST_F(ServerInfo, AnAddressWithABracketAnywhereLosesItsFirstAndLastCharacter) {
  EXPECT_EQ(ask(server("s", "1", "ab[cd:80", ""), false, false).serverIPs, L"b[c");
  EXPECT_EQ(ask(server("s", "1", "ab]cd:80", ""), false, false).serverIPs, L"ab]cd");
}

TEST_F(ServerInfo, AnAddressOfOneBracketGivesNothing) {
  EXPECT_EQ(ask(server("s", "1", "[:80", ""), false, false).serverIPs, L"");
}

TEST_F(ServerInfo, EmptyFieldsKeepTheirPlaceInTheLists) {
  const Info info =
      ask("<VestaSite Order=\"1\"/><VestaSite Order=\"2\" Name=\"b\"/><VestaSite Order=\"3\"/>",
          true, false);
  EXPECT_EQ(info.code, 0);
  EXPECT_EQ(info.names, L";b;");
  EXPECT_EQ(info.servers, L";;");
  EXPECT_EQ(info.serverIPs, L";;");
  EXPECT_EQ(info.netbiosNames, L";;");
  EXPECT_EQ(info.versions, L";;");
}

TEST_F(ServerInfo, AgentsAsRepositoriesAreNoServers) {
  const Info info = ask("<KeystoneSite Name=\"k\" Order=\"0\"/>" + serverElement("s"), true, false);
  EXPECT_EQ(info.names, L"s");
}

// Shows: GetPYXServerInfo=-8
TEST_F(ServerInfo, AListWithoutServersTouchesNothing) {
  expectUntouched(ask(httpElement("a"), true, false), c_errorNoServerSite);
}

TEST_F(ServerInfo, AnEmptyListTouchesNothing) {
  expectUntouched(ask("", true, false), 0);
  EXPECT_THAT(agent.texts(LogLevel::Error),
              Contains(L"Unable to read from SiteList file, error hr=0"));
}

// Shows: GetPYXServerInfo=-4, GetPYXServerInfo=-5, GetPYXServerInfo=-2
TEST_F(ServerInfo, AListThatCannotBeReadTouchesNothing) {
  expectUntouched(askFile(true, false), c_errorFileMissing);
  writeFile(file, "<ns:SiteLists>");
  expectUntouched(askFile(false, true), c_errorParse);
  OpenHelper none(true);
  Info info;
  info.code = none.GetPYXServerInfo(info.names, info.servers, info.serverIPs, info.netbiosNames,
                                    info.port, info.versions, true, true);
  expectUntouched(info, c_errorNoPath);
}

// Shows: GetPYXServerInfo=-10
TEST_F(ServerInfo, ADirectoryInPlaceOfTheListTouchesNothing) {
  std::filesystem::create_directory(file);
  expectUntouched(askFile(true, false), c_errorRead);
}

TEST_F(ServerInfo, TheCachedListIsServedAndKept) {
  EXPECT_EQ(ask(two, false, false).names, L"first");
  tag_Site* const cached = CSitesHelper::m_pSiteList;
  ASSERT_NE(cached, nullptr);
  writeFile(file, document(serverElement("changed")));
  OpenHelper helper{wide(file)};
  Info info;
  EXPECT_EQ(helper.GetPYXServerInfo(info.names, info.servers, info.serverIPs, info.netbiosNames,
                                    info.port, info.versions, true, false),
            0);
  EXPECT_EQ(info.names, L"first;second");
  EXPECT_EQ(CSitesHelper::m_pSiteList, cached);
  EXPECT_THAT(namesOf(cached), testing::ElementsAre(L"second", L"repository", L"first"));
}

// Shows: GetPYXServerInfo=-1
TEST_F(ServerInfo, AListThatEndsWithAnUnknownElementIsReleasedEachTime) {
  const std::string sites = server("s", "1", "10.0.0.1", R"(Server="s:80")") + "<Odd/>";
  // Creates the objects that are never destroyed.
  expectUntouched(ask(sites, true, false), c_errorGeneral);
  const std::size_t before = heapInUse();
  for (int i = 0; i < 20; ++i) expectUntouched(askFile(true, false), c_errorGeneral);
  EXPECT_LT(heapInUse(), before + sizeof(tag_Site));
  EXPECT_EQ(CSitesHelper::m_pSiteList, nullptr);
}

}  // namespace
