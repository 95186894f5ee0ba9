#include <filesystem>

#include "tests/probe/probe_fixture.h"

// Logins, and settings of the user that must have no effect.
namespace test {
namespace {

using testing::HasSubstr;
using testing::Not;

class ProbeSecrets : public ProbeTest {
 protected:
  Entry entry(int port) {
    Entry made;
    made.server = local(port);
    made.path = "Basic";
    made.user = c_siteUser;
    made.password = c_sitePassword;
    return made;
  }

  WebServer web{file("")};
};

TEST_F(ProbeSecrets, NoLoginIsInAnyOutput) {
  const HttpProxy proxy(file(""), HttpProxy::Login::Required);
  const std::string path = list(text(entry(web.port())), "");
  const std::string proxied = write(
      "proxied.xml", document(text(entry(web.port())) +
                              httpProxy(proxy.port(), proxyLogin(c_proxyUser, c_proxyPassword))));
  for (const std::string& each : {path, proxied}) {
    for (const char* form : {"table", "json", "csv", "xml"}) {
      const Output said = sitelist({"probe", "--verbose", "--format", form, "--file", each});
      EXPECT_EQ(said.status, 0) << said.out << said.err;
      expectNoLogin(said.out + said.err);
    }
  }
}

// While the tool waits for the peer, its arguments and its environment are those of the command
// line.
TEST_F(ProbeSecrets, NoLoginIsAnArgumentOfAProcess) {
  std::string seen;
  const Peer peer([&](Connection& connection) {
    connection.request();
    for (const auto& each : std::filesystem::directory_iterator("/proc")) {
      const std::string name = each.path().filename();
      if (name.find_first_not_of("0123456789") != std::string::npos) continue;
      try {
        seen += readFile(each.path() / "cmdline") + "\n";
      } catch (const std::exception&) {
        // The process has ended.
      }
    }
  });
  sitelist({"probe", "--file", list(text(entry(peer.port())))});
#ifdef __linux__
  EXPECT_THAT(seen, HasSubstr("probe"));
#endif
  expectNoLogin(seen);
}

TEST_F(ProbeSecrets, ProxiesInTheEnvironmentHaveNoEffect) {
  const Peer trap([](Connection& connection) { connection.request(); });
  const std::string url = "http://" + local(trap.port());
  const std::string path = list(text(entry(web.port())));
  const Output said = shell("http_proxy=" + url + " HTTP_PROXY=" + url + " https_proxy=" + url +
                                " ALL_PROXY=" + url + " all_proxy=" + url +
                                " no_proxy= NO_PROXY= \"$0\" --agent-dir agent probe --file \"$1\"",
                            {path});
  EXPECT_EQ(said.status, 0) << said.out;
  EXPECT_EQ(trap.connections(), 0);
}

TEST_F(ProbeSecrets, ExclusionsInTheEnvironmentHaveNoEffect) {
  const HttpProxy proxy(file(""), HttpProxy::Login::None);
  const std::string path = list(text(entry(web.port())) + httpProxy(proxy.port()));
  const Output said =
      shell("no_proxy='*' NO_PROXY='*' \"$0\" --agent-dir agent probe --file \"$1\"", {path});
  EXPECT_EQ(said.status, 0) << said.out;
  EXPECT_THAT(proxy.log(), HasSubstr("GET http://"));
}

TEST_F(ProbeSecrets, FilesOfTheUserHaveNoEffect) {
  write("home/.netrc", "default login stranger password stranger\n");
  write("home/.curlrc", "proxy = http://127.0.0.1:1\nuser = stranger:stranger\n");
  Entry made = entry(web.port());
  made.user = "";
  const std::string path = list(text(made));
  const Output said = shell(
      "chmod 600 home/.netrc && HOME=\"$PWD/home\" CURL_HOME=\"$PWD/home\" "
      "NETRC=\"$PWD/home/.netrc\" \"$0\" --agent-dir agent probe --json --file \"$1\"",
      {path});
  JsonReport report = readReport(said.out);
  ASSERT_EQ(report.rows.size(), 1U) << said.err;
  EXPECT_EQ(report.rows[0]["login"], "required");
  EXPECT_THAT(web.accesses(), Not(HasSubstr("Basic c3Ry")));
}

TEST_F(ProbeSecrets, CertificatesAndKeyLogsInTheEnvironmentHaveNoEffect) {
  Entry made = entry(web.port());
  made.securePort = std::to_string(web.validPort());
  write("authority.pem", web.authority());
  const std::string path = list(text(made));
  const Output said = shell(
      "SSL_CERT_FILE=\"$PWD/authority.pem\" SSL_CERT_DIR=\"$PWD\" CURL_CA_BUNDLE=\"$PWD/"
      "authority.pem\" SSLKEYLOGFILE=\"$PWD/keys.log\" \"$0\" --agent-dir agent probe --json "
      "--file \"$1\"",
      {path});
  JsonReport report = readReport(said.out);
  ASSERT_EQ(report.rows.size(), 1U) << said.err;
  EXPECT_EQ(report.rows[0]["certificateTrusted"], "false");
  EXPECT_FALSE(exists(file("keys.log")));
}

TEST_F(ProbeSecrets, ALoginWithALineEndIsNotSent) {
  Entry made = entry(web.port());
  made.user = "a&#13;&#10;b";
  JsonReport::Record site = probeSite(made);
  EXPECT_EQ(site["state"], "not-tried");
  EXPECT_THAT(site["error"], HasSubstr("control character"));
  EXPECT_EQ(web.accesses(), "");
}

}  // namespace
}  // namespace test
