#include "tests/probe/servers.h"

#include <netinet/in.h>
#include <sched.h>
#include <sys/socket.h>
#include <unistd.h>

#include <filesystem>
#include <stdexcept>

#include "tests/probe/loopback.h"
#include "tests/support/test_agent.h"

namespace fs = std::filesystem;

namespace test {
namespace {

constexpr const char* c_apache = "/usr/sbin/apache2";
constexpr const char* c_nobody = "65534";

bool hasIpv6Loopback() {
  const int socket = ::socket(AF_INET6, SOCK_STREAM, 0);
  sockaddr_in6 address = {};
  address.sin6_family = AF_INET6;
  address.sin6_addr = in6addr_loopback;
  const bool has = socket >= 0 &&
                   ::bind(socket, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0;
  if (socket >= 0) ::close(socket);
  return has;
}

std::string modules() {
  std::string text;
  for (const char* name : {"mpm_event", "authn_core", "authn_file", "authz_core", "authz_user",
                           "auth_basic", "auth_digest", "alias", "autoindex", "dir", "ssl"}) {
    text += std::string("LoadModule ") + name + "_module /usr/lib/apache2/modules/mod_" + name +
            ".so\n";
  }
  return text;
}

}  // namespace

WebServer::WebServer(const std::string& directory)
    : m_directory(directory), m_authority({"Probe authority", "", -1, 30, true}, nullptr) {
  for (const char* name : {"Current", "Hidden", "Basic", "Digest"}) {
    fs::create_directories(directory + "/www/" + name);
  }
  const std::string here = "IP:127.0.0.1,IP:::1,DNS:localhost";
  const KeyAndCertificate stranger({"Other authority", "", -1, 30, true}, nullptr);
  store("valid", {"depot.example", here}, &m_authority);
  store("expired", {"old.example", here, -60, -3}, &m_authority);
  store("wrongName", {"other.example", "DNS:other.example"}, &m_authority);
  store("selfSigned", {"self.example", here}, nullptr);
  store("stranger", {"stranger.example", here}, &stranger);
  const std::string user = c_siteUser;
  const std::string password = c_sitePassword;
  writeFile(directory + "/basic", user + ":{SHA}" + sha1Base64(password) + "\n");
  writeFile(directory + "/digest", user + ":depot:" + md5Hex(user + ":depot:" + password) + "\n");
  startOnFreePorts(7, [this](const std::vector<int>& ports) { return start(ports); });
}

void WebServer::store(const std::string& name, const NewCertificate& about,
                      const KeyAndCertificate* issuer) const {
  const KeyAndCertificate made(about, issuer);
  writeFile(m_directory + "/" + name + ".pem", made.certificatePem() + made.keyPem());
}

bool WebServer::start(const std::vector<int>& ports) {
  m_port = ports[0];
  m_port6 = hasIpv6Loopback() ? ports[1] : 0;
  m_valid = ports[2];
  m_expired = ports[3];
  m_wrongName = ports[4];
  m_selfSigned = ports[5];
  m_stranger = ports[6];
  writeFile(m_directory + "/apache.conf", configuration());
  m_process = std::make_unique<ServerProcess>(
      std::vector<std::string>{c_apache, "-X", "-d", m_directory, "-f", "apache.conf"},
      m_directory + "/apache.out");
  return m_process->awaitPort(m_port);
}

std::string WebServer::secureHost(int port, const std::string& name) const {
  const std::string place = "127.0.0.1:" + std::to_string(port);
  return "Listen " + place + " https\n<VirtualHost " + place + ">\n  SSLEngine on\n" +
         "  SSLCertificateFile " + name + ".pem\n</VirtualHost>\n";
}

std::string WebServer::configuration() const {
  std::string text = modules();
  if (::geteuid() == 0) text += std::string("User #") + c_nobody + "\nGroup #" + c_nobody + "\n";
  text +=
      "ServerName localhost\nDefaultRuntimeDir .\nPidFile apache.pid\nErrorLog error.log\n"
      "LogFormat \"%U %u %{Authorization}i\" all\nCustomLog access.log all\n"
      "DocumentRoot www\nSSLSessionCache none\n"
      "StartServers 1\nServerLimit 1\nThreadLimit 1\nThreadsPerChild 1\n"
      "MaxRequestWorkers 1\nMinSpareThreads 1\nMaxSpareThreads 1\n"
      "Listen 127.0.0.1:" +
      std::to_string(m_port) + "\n";
  if (m_port6 != 0) text += "Listen [::1]:" + std::to_string(m_port6) + "\n";
  text += "<Directory \"" + m_directory +
          "/www\">\n  Options -Indexes\n</Directory>\n"
          "<Location /Current>\n  Options +Indexes\n</Location>\n"
          "<Location /Basic>\n  Options +Indexes\n  AuthType Basic\n  AuthName depot\n"
          "  AuthUserFile basic\n  Require valid-user\n</Location>\n"
          "<Location /Digest>\n  Options +Indexes\n  AuthType Digest\n  AuthName depot\n"
          "  AuthUserFile digest\n  Require valid-user\n</Location>\n"
          "Redirect 302 /Moved http://elsewhere.example/new\nRedirect 503 /Broken\n";
  return text + secureHost(m_valid, "valid") + secureHost(m_expired, "expired") +
         secureHost(m_wrongName, "wrongName") + secureHost(m_selfSigned, "selfSigned") +
         secureHost(m_stranger, "stranger");
}

// The server has one thread, so all earlier requests are in the log when a further one is.
std::string WebServer::accesses() {
  const int socket = ::socket(AF_INET, SOCK_STREAM, 0);
  const sockaddr_in address = loopback(m_port);
  const std::string request = "GET /marker HTTP/1.0\r\n\r\n";
  if (::connect(socket, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0 ||
      ::send(socket, request.data(), request.size(), 0) < 0) {
    throw std::runtime_error("the web server has ended");
  }
  for (;;) {
    const std::string log = readFile(m_directory + "/access.log");
    const std::size_t end = log.find("/marker");
    if (end == std::string::npos) {
      ::sched_yield();
      continue;
    }
    ::close(socket);
    return log.substr(0, end);
  }
}

FtpServer::FtpServer(const std::string& directory, Admits admits) {
  fs::create_directories(directory + "/ftp/pub");
  for (const char* name : {"one", "two", "three"}) {
    writeFile(directory + "/ftp/pub/" + name, "content");
  }
  const std::string login = std::string(c_siteUser) + "\n" + c_sitePassword + "\n";
  m_process = std::make_unique<ServerProcess>(
      std::vector<std::string>{PYTHON, "-B", TEST_SOURCE_DIR "/tests/probe/ftp_server.py",
                               directory + "/ftp"},
      directory + "/ftp.out", admits == Admits::User ? login : "");
  m_port = std::stoi(m_process->awaitLine());
}

HttpProxy::HttpProxy(const std::string& directory, Login login) : m_directory(directory) {
  startOnFreePorts(1, [&](const std::vector<int>& ports) {
    m_port = ports[0];
    std::string text = "Port " + std::to_string(m_port) +
                       "\nListen 127.0.0.1\nTimeout 30\nMaxClients 20\nLogLevel Info\nLogFile \"" +
                       directory + "/proxy.log\"\n";
    if (login == Login::Required) {
      text += std::string("BasicAuth ") + c_proxyUser + " " + c_proxyPassword + "\n";
    }
    writeFile(directory + "/proxy.conf", text);
    m_process = std::make_unique<ServerProcess>(
        std::vector<std::string>{"tinyproxy", "-d", "-c", directory + "/proxy.conf"},
        directory + "/proxy.out");
    return m_process->awaitPort(m_port);
  });
}

std::string HttpProxy::log() const { return readFile(m_directory + "/proxy.log"); }

}  // namespace test
