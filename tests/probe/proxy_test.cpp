#include "tests/probe/probe_fixture.h"

// Sites through a real HTTP proxy.
namespace test {
namespace {

using testing::HasSubstr;
using testing::Not;

class ProbeProxy : public ProbeTest {
 protected:
  Entry entry() {
    Entry made;
    made.server = local(web.port());
    return made;
  }
  JsonReport::Record probeThrough(const HttpProxy& proxy, const std::string& more = "") {
    return probeSite(entry(), web.authority(), httpProxy(proxy.port(), more));
  }

  WebServer web{file("")};
};

TEST_F(ProbeProxy, ASiteIsReachedThroughTheProxyOfTheList) {
  const HttpProxy proxy(file(""), HttpProxy::Login::None);
  JsonReport::Record site = probeThrough(proxy);
  EXPECT_EQ(site["state"], "ok") << output.out;
  EXPECT_EQ(site["proxy"], local(proxy.port()));
  EXPECT_EQ(site["answer"], "200 OK");
  EXPECT_EQ(site.count("proxyLogin"), 0U);
  EXPECT_THAT(proxy.log(), HasSubstr("GET http://" + local(web.port()) + "/Current/"));
}

TEST_F(ProbeProxy, TheLoginOfTheProxyIsAccepted) {
  const HttpProxy proxy(file(""), HttpProxy::Login::Required);
  JsonReport::Record site = probeThrough(proxy, proxyLogin(c_proxyUser, c_proxyPassword));
  EXPECT_EQ(site["state"], "ok") << output.out;
  EXPECT_EQ(site["proxyLogin"], "accepted");
}

TEST_F(ProbeProxy, AWrongLoginOfTheProxyIsRefused) {
  const HttpProxy proxy(file(""), HttpProxy::Login::Required);
  JsonReport::Record site = probeThrough(proxy, proxyLogin(c_proxyUser, "wrong"));
  EXPECT_EQ(site["state"], "failed") << output.out;
  // This proxy answers as a server would.
  EXPECT_EQ(site["answer"], "401 Unauthorized");
  EXPECT_EQ(site["proxyLogin"], "unclear");
  EXPECT_EQ(site["error"], "the proxy or the server refused the login");
  EXPECT_EQ(web.accesses(), "");
}

TEST_F(ProbeProxy, ALoginThatTheProxyRefusesAgainIsRefused) {
  const Peer refusing([](Connection& connection) {
    while (!connection.request().empty()) {
      connection.send(
          "HTTP/1.1 407 No\r\nProxy-Authenticate: Basic realm=\"x\"\r\nContent-Length: 0\r\n\r\n");
    }
  });
  JsonReport::Record site =
      probeSite(entry(), "", httpProxy(refusing.port(), proxyLogin(c_proxyUser, c_proxyPassword)));
  EXPECT_EQ(site["state"], "failed");
  EXPECT_EQ(site["proxyLogin"], "refused");
  EXPECT_EQ(site["error"], "the proxy refused the login");
}

TEST_F(ProbeProxy, AMissingLoginOfTheProxyIsReported) {
  const HttpProxy proxy(file(""), HttpProxy::Login::Required);
  JsonReport::Record site = probeThrough(proxy);
  EXPECT_EQ(site["proxyLogin"], "required");
}

TEST_F(ProbeProxy, TheSecondUserIsTriedAfterTheFirst) {
  const HttpProxy proxy(file(""), HttpProxy::Login::Required);
  JsonReport::Record site =
      probeThrough(proxy, proxyLogin(c_proxyUser, "wrong") +
                              proxyLogin(c_proxyUser, c_proxyPassword, "Alternate"));
  EXPECT_EQ(site["state"], "ok") << output.out;
  EXPECT_EQ(site["proxyLogin"], "accepted");
}

TEST_F(ProbeProxy, TheSecurePortIsReachedThroughTheProxy) {
  const HttpProxy proxy(file(""), HttpProxy::Login::Required);
  Entry made = entry();
  made.securePort = std::to_string(web.validPort());
  JsonReport::Record site = probeSite(
      made, web.authority(), httpProxy(proxy.port(), proxyLogin(c_proxyUser, c_proxyPassword)));
  EXPECT_EQ(site["state"], "ok") << output.out;
  EXPECT_EQ(site["certificateTrusted"], "true");
  EXPECT_THAT(proxy.log(), HasSubstr("CONNECT " + local(web.validPort())));
}

TEST_F(ProbeProxy, AnUntrustedCertificateIsThatOfTheServer) {
  const HttpProxy proxy(file(""), HttpProxy::Login::Required);
  Entry made = entry();
  made.securePort = std::to_string(web.strangerPort());
  JsonReport::Record site = probeSite(
      made, web.authority(), httpProxy(proxy.port(), proxyLogin(c_proxyUser, c_proxyPassword)));
  EXPECT_EQ(site["state"], "failed") << output.out;
  EXPECT_EQ(site["error"], "the certificate of the server " + local(web.strangerPort()) +
                               " is not trusted: no CA certificate of the list has issued it");
}

TEST_F(ProbeProxy, AProxyMayRequireALoginForTheSecurePortOnly) {
  const Peer proxy([](Connection& connection) {
    for (std::string request = connection.request(); !request.empty();
         request = connection.request()) {
      connection.send(request.rfind("CONNECT", 0) == 0
                          ? "HTTP/1.1 407 No\r\nProxy-Authenticate: Basic realm=\"x\"\r\n"
                            "Content-Length: 0\r\n\r\n"
                          : "HTTP/1.1 200 OK\r\nContent-Length: 0\r\n\r\n");
    }
  });
  Entry made = entry();
  made.securePort = std::to_string(web.validPort());
  JsonReport::Record site = probeSite(made, web.authority(), httpProxy(proxy.port(), ""));
  EXPECT_EQ(site["state"], "failed") << output.out;
  EXPECT_EQ(site["error"],
            "the proxy " + local(proxy.port()) + " requires a login, but the list has none");
  EXPECT_EQ(site["next"], "add the login of the proxy to the list");
}

TEST_F(ProbeProxy, AnExcludedHostIsReachedDirectly) {
  const HttpProxy proxy(file(""), HttpProxy::Login::None);
  JsonReport::Record site = probeThrough(
      proxy, "<ExclusionList><ExclusionHost>127.0.0.1</ExclusionHost></ExclusionList>");
  EXPECT_EQ(site["state"], "ok");
  EXPECT_EQ(site.count("proxy"), 0U);
  EXPECT_THAT(proxy.log(), Not(HasSubstr("GET ")));
}

TEST_F(ProbeProxy, AProxyThatDoesNotRunIsReported) {
  JsonReport::Record site = probeSite(entry(), "", httpProxy(freePorts(1)[0]));
  EXPECT_EQ(site["state"], "failed");
  EXPECT_THAT(site["error"], HasSubstr("cannot connect to the proxy 127.0.0.1"));
}

TEST_F(ProbeProxy, TheProxySettingsOfTheSystemAreNotTried) {
  JsonReport::Record site = probeSite(entry(), "", proxy("UseIEConfig=\"1\""));
  EXPECT_EQ(site["state"], "not-tried");
  EXPECT_THAT(site["error"], HasSubstr("the proxy settings of the system"));
  EXPECT_EQ(web.accesses(), "");
  EXPECT_EQ(output.status, 1);
}

TEST_F(ProbeProxy, FtpIsReachedThroughTheProxyForFtp) {
  std::string asked;
  const Peer ftpProxy([&](Connection& connection) {
    asked = connection.request();
    connection.send("HTTP/1.1 200 Listed\r\nContent-Length: 0\r\n\r\n");
  });
  Entry made;
  made.element = "FTPSite";
  made.server = "ftp.example:2121";
  made.path = "pub";
  made.user = c_siteUser;
  made.password = c_sitePassword;
  JsonReport::Record site = probeSite(made, "",
                                      proxy("FtpProxyServer=\"127.0.0.1\" FtpProxyPort=\"" +
                                            std::to_string(ftpProxy.port()) + "\""));
  // The proxy logs in, so it gets the login as a part of the URL.
  EXPECT_THAT(asked, testing::StartsWith("GET ftp://canary-reader:fair%20weather%20canary@"
                                         "ftp.example:2121/pub/ HTTP/1.1\r\n"));
  EXPECT_EQ(site["state"], "ok") << output.out;
  EXPECT_EQ(site["proxy"], local(ftpProxy.port()));
  EXPECT_EQ(site["answer"], "200 Listed");
  EXPECT_EQ(site["login"], "accepted");
}

TEST_F(ProbeProxy, ALoginInTheNameOfTheProxyIsNotShown) {
  JsonReport::Record site = probeSite(
      entry(), "",
      proxy(std::string("HttpProxyServer=\"http://") + c_proxyUser + ":" + c_proxyPassword +
            "@127.0.0.1\" HttpProxyPort=\"" + std::to_string(freePorts(1)[0]) + "\""));
  EXPECT_THAT(site["proxy"], testing::StartsWith("127.0.0.1:"));
  expectNoLogin(sitelist({"probe", "--file", file("list.xml")}).out);
}

}  // namespace
}  // namespace test
