#include <gmock/gmock.h>

#include <filesystem>
#include <string>
#include <vector>

#include "tests/sitehlp/password_fixture.h"
#include "tests/support/faulty_file_system.h"
#include "tests/support/rerooted_file_system.h"

namespace {

using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

class PasswordInDocument : public test::PasswordTest {
 protected:
  static std::string child(const std::string& name, const std::string& value) {
    return "<" + name + R"( Encrypted="1">)" + value + "</" + name + ">";
  }
  std::string child(const std::string& name, const std::wstring& value) {
    return child(name, test::narrow(value));
  }
};

// Shows: format-password
TEST_F(PasswordInDocument, EveryKindOfSiteComesBackClear) {
  const std::string password = child("Password", sealed(L"secret \u65E5"));
  for (const char* element : {"HttpSite", "VestaSite", "KeystoneSite"}) {
    const auto site = decode(std::string("<") + element + ">" + password + "</" + element + ">");
    EXPECT_STREQ(site->http.szPassword, L"secret \u65E5") << element;
  }
  EXPECT_STREQ(decode("<FTPSite>" + password + "</FTPSite>")->ftp.szPassword, L"secret \u65E5");
  EXPECT_STREQ(decode("<UNCSite>" + password + "</UNCSite>")->unc.szPassword, L"secret \u65E5");
  EXPECT_STREQ(decode("<LocalSite>" + password + "</LocalSite>")->local.szPassword,
               L"secret \u65E5");
}

TEST_F(PasswordInDocument, IsRecoveredWithOneLookAtTheKeyForTheWholeList) {
  const std::string site = "<FTPSite>" + child("Password", sealed(L"secret")) + "</FTPSite>";
  const auto callsToRead = [&](const std::string& sites) {
    const std::wstring file = store(test::documentWithSites(sites));
    const test::FaultyFileSystem files;
    const Read result = readPath(file);
    for (const sitehlp::tag_Site* record = result.list.get(); record; record = record->pNext) {
      EXPECT_STREQ(record->ftp.szPassword, L"secret");
    }
    return files.calls();
  };
  callsToRead(site);  // makes the lock files
  const std::vector<test::FileCall> one = callsToRead(site);
  EXPECT_EQ(callsToRead(site + site + site), one);
}

TEST_F(PasswordInDocument, EveryProxyPasswordComesBackClear) {
  const auto site = decode(
      "<ProxyConfigList><ProxyConfig>" + child("HttpProxyPassword", sealed(L"p1")) +
      child("FtpProxyPassword", sealed(L"p2")) +
      child("AlternateHttpProxyPassword", sealed(L"p3")) +
      child("AlternateFtpProxyPassword", sealed(L"p4")) + "</ProxyConfig></ProxyConfigList>");
  EXPECT_STREQ(site->proxy.szHttpProxyPassword, L"p1");
  EXPECT_STREQ(site->proxy.szFtpProxyPassword, L"p2");
  EXPECT_STREQ(site->proxy.szAlternateHttpProxyPassword, L"p3");
  EXPECT_STREQ(site->proxy.szAlternateFtpProxyPassword, L"p4");
}

TEST_F(PasswordInDocument, IsRecoveredWhateverItsMarkerSays) {
  const std::string value = sealedUtf8(L"secret");
  EXPECT_STREQ(decode("<FTPSite><Password>" + value + "</Password></FTPSite>")->ftp.szPassword,
               L"secret");
  EXPECT_STREQ(decode(R"(<FTPSite><Password Encrypted="0">)" + value + "</Password></FTPSite>")
                   ->ftp.szPassword,
               L"secret");
}

// Shows: format-password, unrecovered-password
TEST_F(PasswordInDocument, ThatCannotBeRecoveredIsEmptyAndEndsNothing) {
  std::string tampered = sealedUtf8(L"secret");
  tampered[20] = tampered[20] == 'A' ? 'B' : 'A';
  const Read result = read(test::documentWithSites(
      R"(<HttpSite Name="first">)" + child("Password", tampered) +
      "<UserName>behind</UserName></HttpSite>" + R"(<UNCSite Name="second">)" +
      child("Password", sealed(L"good")) + "</UNCSite>" + R"(<FTPSite Name="third">)" +
      child("Password", std::string("clear text")) + "</FTPSite>"));
  EXPECT_EQ(result.code, 0);
  ASSERT_EQ(test::lengthOf(result.list.get()), 3);
  EXPECT_STREQ(result.list->http.szPassword, L"");
  EXPECT_STREQ(result.list->http.szUserName, L"behind");
  EXPECT_STREQ(result.list->pNext->unc.szPassword, L"good");
  EXPECT_STREQ(result.list->pNext->pNext->ftp.szPassword, L"");
  EXPECT_STREQ(result.list->pNext->pNext->ftp.szName, L"third");
}

TEST_F(PasswordInDocument, LaterOneThatCannotBeRecoveredReplacesTheEarlier) {
  const auto site = decode("<FTPSite>" + child("Password", sealed(L"good")) +
                           child("Password", std::string("bad")) + "</FTPSite>");
  EXPECT_STREQ(site->ftp.szPassword, L"");
}

TEST_F(PasswordInDocument, OverlongOneIsCutAndLoggedLikeAnyText) {
  const std::wstring clear(300, L'p');
  const auto site = decode("<FTPSite>" + child("Password", sealed(clear)) + "</FTPSite>");
  EXPECT_EQ(std::wstring(site->ftp.szPassword), clear.substr(0, 259));
  // A password that is too long is logged at detail level like every text that is too long.
  EXPECT_THAT(messages(), testing::ElementsAre(detail(L"String " + clear + L" is truncated to " +
                                                      clear.substr(0, 259) + L" in CopyWStr")));
}

TEST_F(PasswordInDocument, WithoutTheServiceReadsAsEmpty) {
  const std::string value = sealedUtf8(L"secret");
  makeKeysUnobtainable();
  const auto site = decode("<FTPSite>" + child("Password", value) + "</FTPSite>");
  EXPECT_STREQ(site->ftp.szPassword, L"");
}

// --- With the flag for the server key
// -------------------------------------------------------------

TEST_F(PasswordInDocument, ServerFlagRecoversServerValuesOfEverySite) {
  storeServerKey();
  helper.m_bUseDecryptData = 1;
  const std::string password = child("Password", serverSealed("secret"));
  for (const char* element : {"HttpSite", "VestaSite", "KeystoneSite"}) {
    const auto site = decode(std::string("<") + element + ">" + password + "</" + element + ">");
    EXPECT_STREQ(site->http.szPassword, L"secret") << element;
  }
  EXPECT_STREQ(decode("<FTPSite>" + password + "</FTPSite>")->ftp.szPassword, L"secret");
  EXPECT_STREQ(decode("<UNCSite>" + password + "</UNCSite>")->unc.szPassword, L"secret");
  EXPECT_STREQ(decode("<LocalSite>" + password + "</LocalSite>")->local.szPassword, L"secret");
  EXPECT_EQ(helper.m_bUseDecryptData, 1);
}

// Shows: http-proxy-password
TEST_F(PasswordInDocument, ServerFlagLeavesTheHttpProxyPasswordToTheAgentsOwnKey) {
  storeServerKey();
  const std::string own = sealedUtf8(L"own");
  const std::string server = test::narrow(serverSealed("server"));
  const auto list = [this](const std::string& value) {
    return decode("<ProxyConfigList><ProxyConfig>" + child("HttpProxyPassword", value) +
                  child("FtpProxyPassword", value) + child("AlternateHttpProxyPassword", value) +
                  child("AlternateFtpProxyPassword", value) + "</ProxyConfig></ProxyConfigList>");
  };
  helper.m_bUseDecryptData = 1;
  const auto withOwn = list(own);
  EXPECT_STREQ(withOwn->proxy.szHttpProxyPassword, L"own");
  EXPECT_STREQ(withOwn->proxy.szFtpProxyPassword, L"");
  EXPECT_STREQ(withOwn->proxy.szAlternateHttpProxyPassword, L"");
  EXPECT_STREQ(withOwn->proxy.szAlternateFtpProxyPassword, L"");
  const auto withServer = list(server);
  EXPECT_STREQ(withServer->proxy.szHttpProxyPassword, L"");
  EXPECT_STREQ(withServer->proxy.szFtpProxyPassword, L"server");
  EXPECT_STREQ(withServer->proxy.szAlternateHttpProxyPassword, L"server");
  EXPECT_STREQ(withServer->proxy.szAlternateFtpProxyPassword, L"server");
  helper.m_bUseDecryptData = 0;
  const auto withoutFlag = list(server);
  EXPECT_STREQ(withoutFlag->proxy.szFtpProxyPassword, L"");
}

TEST_F(PasswordInDocument, OfTheServerThatWasTamperedWithIsEmptyAndEndsNothing) {
  storeServerKey();
  std::string tampered = test::narrow(serverSealed("secret"));
  tampered[20] = tampered[20] == 'A' ? 'Q' : 'A';
  const std::string good = test::narrow(serverSealed("good"));
  helper.m_bUseDecryptData = 1;
  const Read result = read(test::documentWithSites(
      R"(<LocalSite Name="first">)" + child("Password", tampered) + "</LocalSite>" +
      R"(<LocalSite Name="second">)" + child("Password", good) + "</LocalSite>"));
  EXPECT_EQ(result.code, 0);
  ASSERT_EQ(test::lengthOf(result.list.get()), 2);
  EXPECT_STREQ(result.list->local.szPassword, L"");
  EXPECT_STREQ(result.list->pNext->local.szPassword, L"good");
}

// --- Written
// --------------------------------------------------------------------------------------

// Shows: written-password
TEST_F(PasswordInDocument, IsNeverWrittenClearAndComesBackClear) {
  const auto list = [] {
    sitehlp::tag_Site* http = test::newSite(sitehlp::SITE_KIND_HTTP);
    test::put(http->http.szPassword, L"httpsecret");
    sitehlp::tag_Site* proxy = test::newSite(sitehlp::SITE_KIND_PROXY);
    test::put(proxy->proxy.szHttpProxyPassword, L"httpproxysecret");
    test::put(proxy->proxy.szFtpProxyPassword, L"ftpproxysecret");
    test::put(proxy->proxy.szAlternateHttpProxyPassword, L"alternatehttpsecret");
    test::put(proxy->proxy.szAlternateFtpProxyPassword, L"alternateftpsecret");
    return test::chain({http, proxy});
  }();
  ASSERT_EQ(helper.CreateSiteList(list.get(), path("out.xml"), L"1", L"2", L"", {}), 0);
  for (const auto& file : test::snapshot(agent.dataDirectory())) {
    EXPECT_THAT(file.second, Not(HasSubstr("secret"))) << file.first;
  }
  for (const test::LogLine& line : agent.log()) {
    EXPECT_EQ(line.text.find(L"secret"), std::wstring::npos) << line;
  }
  const Read back = readPath(path("out.xml"));
  ASSERT_EQ(test::lengthOf(back.list.get()), 2);
  EXPECT_STREQ(back.list->http.szPassword, L"httpsecret");
  EXPECT_STREQ(back.list->pNext->proxy.szHttpProxyPassword, L"httpproxysecret");
  EXPECT_STREQ(back.list->pNext->proxy.szFtpProxyPassword, L"ftpproxysecret");
  EXPECT_STREQ(back.list->pNext->proxy.szAlternateHttpProxyPassword, L"alternatehttpsecret");
  EXPECT_STREQ(back.list->pNext->proxy.szAlternateFtpProxyPassword, L"alternateftpsecret");
}

// Shows: written-password
TEST_F(PasswordInDocument, EmptyOneIsWrittenProtected) {
  const auto list = test::chain({test::newSite(sitehlp::SITE_KIND_FTP)});
  ASSERT_EQ(helper.CreateSiteList(list.get(), path("out.xml"), L"1", L"2", L"", {}), 0);
  const std::string text = test::readFile(test::narrow(path("out.xml")));
  const std::string start = R"(<Password Encrypted="1">)";
  const std::size_t at = text.find(start);
  ASSERT_NE(at, std::string::npos) << text;
  const std::size_t begin = at + start.size();
  const std::string value = text.substr(begin, text.find('<', begin) - begin);
  EXPECT_THAT(value, Not(IsEmpty()));
  EXPECT_EQ(unsealed(test::wide(value)), L"");
}

TEST_F(PasswordInDocument, OfATextIsRecoveredAsTheFlagSays) {
  storeServerKey();
  test::TempDir scratch;
  std::filesystem::create_directories(scratch.file("etc"));
  const test::RerootedFileSystem files("/Library/Korvel/orb/scratch", scratch.path());
  const std::wstring text = test::wide(test::documentWithSites(
      "<FTPSite Name=\"server\">" + child("Password", serverSealed("of the server")) +
      "</FTPSite><FTPSite Name=\"own\">" + child("Password", sealed(L"of the agent")) +
      "</FTPSite>"));
  for (const std::int32_t flag : {0, 1}) {
    helper.m_bUseDecryptData = flag;
    ASSERT_EQ(helper.CreateSiteListFromBuffer(text), 0);
    helper.m_bUseDecryptData = 0;
    const Read back = readPath(test::wide(scratch.file("etc/SiteList.xml")));
    ASSERT_EQ(test::lengthOf(back.list.get()), 2);
    EXPECT_STREQ(back.list->ftp.szPassword, flag == 1 ? L"of the server" : L"");
    EXPECT_STREQ(back.list->pNext->ftp.szPassword, flag == 1 ? L"" : L"of the agent");
  }
}

}  // namespace
