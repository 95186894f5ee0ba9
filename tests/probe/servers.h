#ifndef TESTS_PROBE_SERVERS_H
#define TESTS_PROBE_SERVERS_H

#include <memory>
#include <string>

#include "tests/probe/certificates.h"
#include "tests/probe/server_process.h"

// Real servers on the loopback address. All their files are in the directory of the test.
namespace test {

// The login of servers and the login of proxies. No output may have these texts.
constexpr const char* c_siteUser = "canary-reader";
constexpr const char* c_sitePassword = "fair weather canary";
constexpr const char* c_proxyUser = "canary-surfer";
constexpr const char* c_proxyPassword = "canary-proxy-pass";

// A web server. It has these directories:
//   Current   can be listed
//   Hidden    cannot be listed (status 403)
//   Basic     needs the login of a site, with the method Basic
//   Digest    the same, with Digest
//   Moved     redirects to http://elsewhere.example/new/
//   Broken    answers with status 503
// The paths and logins of all requests are in
// accesses().
class WebServer {
 public:
  // Everybody must be able to search the directory.
  explicit WebServer(const std::string& directory);

  int port() const { return m_port; }
  int port6() const { return m_port6; }      // on the IPv6 loopback address; 0 if there is none
  int validPort() const { return m_valid; }  // the certificate is good
  int expiredPort() const { return m_expired; }
  int wrongNamePort() const { return m_wrongName; }
  int selfSignedPort() const { return m_selfSigned; }
  int strangerPort() const { return m_stranger; }  // of another authority
  // The authority of the first three certificates, in PEM form.
  std::string authority() const { return m_authority.certificatePem(); }
  // Each line has the path, the user and the header Authorization, or "-".
  std::string accesses();

 private:
  bool start(const std::vector<int>& ports);
  std::string configuration() const;
  std::string secureHost(int port, const std::string& name) const;
  void store(const std::string& name, const NewCertificate& about,
             const KeyAndCertificate* issuer) const;

  std::string m_directory;
  KeyAndCertificate m_authority;
  int m_port = 0, m_port6 = 0;
  int m_valid = 0, m_expired = 0, m_wrongName = 0, m_selfSigned = 0, m_stranger = 0;
  std::unique_ptr<ServerProcess> m_process;
};

// An FTP server. The directory "pub" has three files. Only a user may log in, or only anonymous.
class FtpServer {
 public:
  enum class Admits { Anonymous, User };
  FtpServer(const std::string& directory, Admits admits);
  int port() const { return m_port; }

 private:
  std::unique_ptr<ServerProcess> m_process;
  int m_port = 0;
};

// A proxy for HTTP, with or without the login of proxies.
class HttpProxy {
 public:
  enum class Login { None, Required };
  HttpProxy(const std::string& directory, Login login);
  int port() const { return m_port; }
  // The requests that it has received.
  std::string log() const;

 private:
  std::string m_directory;
  std::unique_ptr<ServerProcess> m_process;
  int m_port = 0;
};

}  // namespace test

#endif
