#include "tests/probe/probe_fixture.h"

// Sites over HTTP, on a real web server.
namespace test {
namespace {

using testing::HasSubstr;
using testing::Not;

class ProbeHttp : public ProbeTest {
 protected:
  Entry entry(const std::string& path) {
    Entry made;
    made.server = local(web.port());
    made.path = path;
    return made;
  }
  Entry withLogin(const std::string& path) {
    Entry made = entry(path);
    made.user = c_siteUser;
    made.password = c_sitePassword;
    return made;
  }

  WebServer web{file("")};
};

TEST_F(ProbeHttp, ADirectoryThatCanBeListedIsOk) {
  JsonReport::Record site = probeSite(entry("Current"));
  EXPECT_EQ(site["state"], "ok") << output.out;
  EXPECT_EQ(site["answer"], "200 OK");
  EXPECT_EQ(site["addresses"], "127.0.0.1");
  EXPECT_EQ(site.count("milliseconds"), 1U);
  EXPECT_EQ(site.count("proxy") + site.count("login") + site.count("error"), 0U);
  EXPECT_EQ(output.status, 0);
}

TEST_F(ProbeHttp, EveryKindThatUsesHttpIsTried) {
  for (const char* element : {"HttpSite", "KeystoneSite", "VestaSite"}) {
    Entry made = entry("Current");
    made.element = element;
    EXPECT_EQ(probeSite(made)["state"], "ok") << element;
  }
}

TEST_F(ProbeHttp, ADirectoryThatCannotBeListedIsOkWithANote) {
  JsonReport::Record site = probeSite(entry("Hidden"));
  EXPECT_EQ(site["state"], "ok");
  EXPECT_EQ(site["answer"], "403 Forbidden");
  EXPECT_THAT(site["note"], HasSubstr("does not list the directory"));
}

TEST_F(ProbeHttp, AMissingDirectoryFails) {
  JsonReport::Record site = probeSite(entry("No such/place"));
  EXPECT_EQ(site["state"], "failed");
  EXPECT_EQ(site["answer"], "404 Not Found");
  EXPECT_EQ(site["error"], "the server has no such directory");
  EXPECT_THAT(web.accesses(), HasSubstr("/No such/place/ "));
  EXPECT_EQ(output.status, 1);
}

TEST_F(ProbeHttp, ARedirectIsReportedAndNotFollowed) {
  JsonReport::Record site = probeSite(entry("Moved"));
  EXPECT_EQ(site["state"], "failed");
  EXPECT_EQ(site["answer"], "302 Found");
  EXPECT_EQ(site["redirect"], "http://elsewhere.example/new/");
}

TEST_F(ProbeHttp, AnErrorOfTheServerFails) {
  JsonReport::Record site = probeSite(entry("Broken"));
  EXPECT_EQ(site["state"], "failed");
  EXPECT_EQ(site["answer"], "503 Service Unavailable");
}

TEST_F(ProbeHttp, ALoginIsAcceptedWithBasicAndWithDigest) {
  for (const char* path : {"Basic", "Digest"}) {
    JsonReport::Record site = probeSite(withLogin(path));
    EXPECT_EQ(site["state"], "ok") << path << output.out;
    EXPECT_EQ(site["login"], "accepted") << path;
  }
}

TEST_F(ProbeHttp, AWrongPasswordIsRefused) {
  for (const char* path : {"Basic", "Digest"}) {
    Entry wrong = withLogin(path);
    wrong.password = "wrong";
    JsonReport::Record site = probeSite(wrong);
    EXPECT_EQ(site["state"], "failed") << path;
    EXPECT_EQ(site["login"], "refused") << path;
    EXPECT_EQ(site["error"], "the server refused the login") << path;
  }
}

TEST_F(ProbeHttp, AMissingLoginIsReported) {
  JsonReport::Record site = probeSite(entry("Basic"));
  EXPECT_EQ(site["login"], "required");
  EXPECT_EQ(site["error"], "the server requires a login that the list lacks");
}

TEST_F(ProbeHttp, ALoginIsNotSentUnlessTheServerAsksForIt) {
  JsonReport::Record site = probeSite(withLogin("Current"));
  EXPECT_EQ(site["state"], "ok");
  EXPECT_EQ(site["login"], "not-asked");
  EXPECT_THAT(web.accesses(), Not(HasSubstr("Basic")));
}

TEST_F(ProbeHttp, ALoginThatTheSiteDoesNotUseIsNotSent) {
  const std::string used = text(withLogin("Basic"));
  std::string unused = used;
  unused.replace(unused.find("<UseAuth>1"), 10, "<UseAuth>0");
  const JsonReport report = probe(list(unused));
  EXPECT_EQ(report.column("login"), (std::vector<std::string>{"required"}));
  EXPECT_THAT(web.accesses(), Not(HasSubstr("Basic Y2")));
}

TEST_F(ProbeHttp, APasswordThatCannotBeDecryptedIsNotTried) {
  std::string site = text(withLogin("Basic"));
  const std::size_t at = site.find("Encrypted=\"1\">") + 14;
  site.replace(at, 6, "AQAAAA");
  JsonReport report = probe(list(site));
  ASSERT_EQ(report.rows.size(), 1U);
  EXPECT_EQ(report.rows[0]["state"], "not-tried");
  EXPECT_EQ(report.rows[0]["error"], "the password of the site cannot be decrypted");
  EXPECT_EQ(web.accesses(), "");
}

TEST_F(ProbeHttp, APasswordThatCannotBeDecryptedStopsOnlyItsOwnSite) {
  Entry nameless = withLogin("Basic");
  nameless.name.clear();
  std::string lost = text(nameless);
  lost.replace(lost.find("Encrypted=\"1\">") + 14, 6, "AQAAAA");
  // The name of this site is the text that stands for a site without a name.
  Entry other = entry("Current");
  other.name = "HttpSite";
  JsonReport report = probe(list(lost + text(other)));
  ASSERT_EQ(report.rows.size(), 2U);
  EXPECT_EQ(report.rows[0]["state"], "not-tried") << output.out;
  EXPECT_EQ(report.rows[0]["error"], "the password of the site cannot be decrypted");
  EXPECT_EQ(report.rows[1]["state"], "ok") << output.out;
  EXPECT_EQ(web.accesses().find("Basic"), std::string::npos);
}

TEST_F(ProbeHttp, TheIpv6LoopbackAddressIsReached) {
  if (web.port6() == 0) {
    std::cout << "Not tried: this machine has no IPv6 loopback address.\n";
    return;
  }
  Entry made = entry("Current");
  made.server = "[::1]:" + std::to_string(web.port6());
  JsonReport::Record site = probeSite(made);
  EXPECT_EQ(site["state"], "ok") << output.out;
  EXPECT_EQ(site["addresses"], "::1");
}

TEST_F(ProbeHttp, ANameIsResolved) {
  Entry made = entry("Current");
  made.server = "localhost:" + std::to_string(web.port());
  JsonReport::Record site = probeSite(made);
  EXPECT_EQ(site["state"], "ok") << output.out;
  EXPECT_THAT(site["addresses"], HasSubstr("127.0.0.1"));
}

TEST_F(ProbeHttp, AClosedPortIsReportedWithTheReason) {
  Entry made = entry("Current");
  made.server = local(freePorts(1)[0]);
  JsonReport::Record site = probeSite(made);
  EXPECT_EQ(site["state"], "failed");
  EXPECT_THAT(site["error"], HasSubstr("Connection refused"));
}

}  // namespace
}  // namespace test
