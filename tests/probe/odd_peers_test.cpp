#include "tests/probe/probe_fixture.h"

// Peers that no real server resembles. A probe must end and say what happened.
namespace test {
namespace {

using testing::AnyOf;
using testing::HasSubstr;
using testing::Not;

class ProbeOddPeers : public ProbeTest {
 protected:
  JsonReport::Record probePeer(const Peer& peer, const std::string& element = "HttpSite",
                               const std::vector<std::string>& options = {}) {
    Entry made;
    made.element = element;
    made.server = local(peer.port());
    made.user = c_siteUser;
    made.password = c_sitePassword;
    const JsonReport report = probe(list(text(made)), options);
    EXPECT_EQ(report.rows.size(), 1U) << output.out << output.err;
    return report.rows.empty() ? JsonReport::Record() : report.rows.front();
  }
  static void loginToFtp(Connection& connection) {
    connection.send("220 ready\r\n");
    connection.line();
    connection.send("331 password\r\n");
    connection.line();
    connection.send("230 done\r\n");
  }
};

TEST_F(ProbeOddPeers, APeerThatHangsIsGivenUp) {
  const Peer peer([](Connection& connection) { connection.awaitClose(); });
  for (const char* element : {"HttpSite", "FTPSite"}) {
    JsonReport::Record site = probePeer(peer, element, {"--timeout", "1"});
    EXPECT_EQ(site["state"], "failed") << element;
    EXPECT_THAT(site["error"], HasSubstr("accepted the connection, but did not answer in time"));
  }
}

TEST_F(ProbeOddPeers, ThePortAfterAHangingOneIsTried) {
  const WebServer web(file(""));
  const Peer peer([](Connection& connection) { connection.awaitClose(); });
  Entry made;
  made.server = local(peer.port());
  made.securePort = std::to_string(web.validPort());
  JsonReport report = probe(list(text(made), web.authority()), {"--timeout", "2"});
  ASSERT_EQ(report.rows.size(), 1U);
  EXPECT_EQ(report.rows[0]["secureOk"], "true") << output.out;
}

TEST_F(ProbeOddPeers, APeerThatResetsTheConnectionIsReported) {
  const Peer peer([](Connection& connection) {
    connection.request();
    connection.reset();
  });
  JsonReport::Record site = probePeer(peer);
  EXPECT_EQ(site["state"], "failed");
  EXPECT_THAT(site["error"],
              AnyOf(HasSubstr("was lost: Connection reset by peer"), HasSubstr("was lost")));
}

TEST_F(ProbeOddPeers, APeerThatClosesTheConnectionIsReported) {
  const Peer peer([](Connection& connection) { connection.request(); });
  EXPECT_THAT(probePeer(peer)["error"], HasSubstr("closed the connection without an answer"));
}

TEST_F(ProbeOddPeers, GarbageIsNotAnAnswer) {
  const std::string garbage("\x1b[31m\0\xff\xfe\x80garbage \n\n\r\n\r\n", 22);
  const Peer http([&](Connection& connection) {
    connection.request();
    connection.send(garbage);
  });
  JsonReport::Record site = probePeer(http);
  EXPECT_EQ(site["state"], "failed");
  EXPECT_THAT(site["error"], HasSubstr("is not HTTP"));
  const Peer ftp([&](Connection& connection) {
    connection.send(garbage);
    connection.send("000 no\r\n");
    connection.awaitClose();
  });
  site = probePeer(ftp, "FTPSite", {"--timeout", "1"});
  EXPECT_EQ(site["state"], "failed") << output.out;
}

TEST_F(ProbeOddPeers, ABodyThatNeverEndsIsNotReceived) {
  const Peer peer([](Connection& connection) {
    connection.request();
    connection.send("HTTP/1.1 200 OK\r\n\r\n");
    while (connection.send(std::string(4096, 'x'))) continue;
  });
  JsonReport::Record site = probePeer(peer);
  EXPECT_EQ(site["state"], "ok") << output.out;
  EXPECT_EQ(site["answer"], "200 OK");
}

TEST_F(ProbeOddPeers, HeaderLinesThatNeverEndAreCut) {
  const Peer peer([](Connection& connection) {
    connection.request();
    connection.send("HTTP/1.1 200 OK\r\n");
    while (connection.send("X-More: " + std::string(1000, 'x') + "\r\n")) continue;
  });
  JsonReport::Record site = probePeer(peer);
  EXPECT_EQ(site["state"], "failed");
  EXPECT_THAT(site["error"], HasSubstr("is too long"));
}

TEST_F(ProbeOddPeers, AnswersOfFtpThatNeverEndAreCut) {
  const Peer peer([](Connection& connection) {
    while (connection.send("220-" + std::string(1000, 'x') + "\r\n")) continue;
  });
  JsonReport::Record site = probePeer(peer, "FTPSite");
  EXPECT_EQ(site["state"], "failed");
  EXPECT_THAT(site["error"], HasSubstr("is too long"));
}

TEST_F(ProbeOddPeers, AnEndlessChallengeIsCut) {
  const Peer peer([](Connection& connection) {
    connection.request();
    connection.send("HTTP/1.1 401 No\r\nWWW-Authenticate: Basic realm=\"x\"\r\n\r\n");
    while (connection.send(std::string(4096, 'x'))) continue;
  });
  JsonReport::Record site = probePeer(peer);
  EXPECT_EQ(site["state"], "failed");
}

TEST_F(ProbeOddPeers, AnFtpServerThatIgnoresTheEndDoesNotHoldTheProbe) {
  const Peer data([](Connection& connection) { connection.send("-rw-r--r-- 1 a\r\n"); });
  const Peer peer([&](Connection& connection) {
    loginToFtp(connection);
    for (std::string line = connection.line(); !line.empty(); line = connection.line()) {
      if (line.rfind("PWD", 0) == 0) connection.send("257 \"/\"\r\n");
      if (line.rfind("CWD", 0) == 0) connection.send("250 done\r\n");
      if (line.rfind("TYPE", 0) == 0) connection.send("200 done\r\n");
      if (line.rfind("EPSV", 0) == 0) {
        connection.send("229 here (|||" + std::to_string(data.port()) + "|)\r\n");
      }
      if (line.rfind("LIST", 0) == 0) connection.send("150 comes\r\n226 done\r\n");
    }
  });
  JsonReport::Record site = probePeer(peer, "FTPSite");
  EXPECT_EQ(site["state"], "ok") << output.out;
  EXPECT_EQ(site["entries"], "1");
}

// A server that names another machine for the data must not make the probe connect to it.
TEST_F(ProbeOddPeers, AnFtpServerCannotSendTheProbeToAnotherAddress) {
  const Peer data([](Connection& connection) { connection.send("a\r\n"); });
  const Peer peer([&](Connection& connection) {
    loginToFtp(connection);
    const std::string port =
        std::to_string(data.port() / 256) + "," + std::to_string(data.port() % 256);
    for (std::string line = connection.line(); !line.empty(); line = connection.line()) {
      if (line.rfind("PWD", 0) == 0) connection.send("257 \"/\"\r\n");
      if (line.rfind("CWD", 0) == 0) connection.send("250 done\r\n");
      if (line.rfind("TYPE", 0) == 0) connection.send("200 done\r\n");
      if (line.rfind("EPSV", 0) == 0) connection.send("500 no\r\n");
      if (line.rfind("PASV", 0) == 0) connection.send("227 here (192,0,2,1," + port + ")\r\n");
      if (line.rfind("LIST", 0) == 0) connection.send("150 comes\r\n226 done\r\n");
    }
  });
  JsonReport::Record site = probePeer(peer, "FTPSite");
  EXPECT_EQ(site["state"], "ok") << output.out;
  EXPECT_EQ(data.connections(), 1);
}

TEST_F(ProbeOddPeers, TextsOfServersAreEscapedAndCut) {
  const Peer peer([](Connection& connection) {
    connection.request();
    connection.send("HTTP/1.1 302 \x1b[31m\xe2\x80\xae" + std::string(600, 'y') +
                    "\r\nLocation: http://\x1b]0;title\x07/" + std::string(600, 'z') + "\r\n\r\n");
  });
  JsonReport::Record site = probePeer(peer);
  EXPECT_LE(site["answer"].size(), 256U);
  EXPECT_LE(site["redirect"].size(), 256U);
  const std::string table = sitelist({"probe", "--file", file("list.xml")}).out;
  EXPECT_THAT(table, HasSubstr("\\u001B[31m\\u202E"));
  EXPECT_THAT(table, Not(HasSubstr("\x1b")));
}

TEST_F(ProbeOddPeers, AServerThatRepeatsTheLoginDoesNotMakeItVisible) {
  const Peer peer([](Connection& connection) {
    connection.request();
    connection.send(std::string("HTTP/1.1 302 hello ") + c_siteUser + "\r\nLocation: http://" +
                    c_siteUser + ":x@elsewhere.example/" + c_sitePassword + "\r\n\r\n");
  });
  JsonReport::Record site = probePeer(peer);
  EXPECT_EQ(site["answer"], "(not shown, because it repeats a login)") << output.out;
  EXPECT_EQ(site["redirect"], "(not shown, because it repeats a login)");
}

TEST_F(ProbeOddPeers, AServerWithAnUnknownMethodOfLoginGetsNone) {
  const Peer peer([](Connection& connection) {
    const std::string request = connection.request();
    EXPECT_THAT(request, Not(HasSubstr("Authorization")));
    connection.send("HTTP/1.1 401 No\r\nWWW-Authenticate: NTLM\r\nContent-Length: 0\r\n\r\n");
  });
  JsonReport::Record site = probePeer(peer);
  EXPECT_EQ(site["login"], "unsupported");
}

}  // namespace
}  // namespace test
