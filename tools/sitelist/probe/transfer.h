#ifndef TOOLS_SITELIST_PROBE_TRANSFER_H
#define TOOLS_SITELIST_PROBE_TRANSFER_H

#include <chrono>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "tools/sitelist/probe/outcome.h"
#include "tools/sitelist/probe/site_plan.h"

namespace tool {

class TrustedRoots;

// What a transfer does: it connects, completes a TLS handshake, gets a directory over HTTP, or
// lists one over FTP.
enum class Goal { Connect, Handshake, Http, Ftp };

struct Request {
  Goal goal = Goal::Connect;
  Endpoint server;
  std::string path;
  Login login;
  std::optional<Endpoint> proxy;
  Login proxyLogin;
  std::vector<std::string> addresses;  // of the proxy or, without one, of the server
  std::chrono::milliseconds time{0};
};

// Returns the proxy or, without one, the server.
const Endpoint& firstHop(const Request& request);

// What a request brought. Texts from the network are limited.
struct Reply {
  std::optional<std::int64_t> milliseconds;  // until the connection
  int status = 0;                            // of HTTP
  std::string answer;                        // the status line of HTTP or the greeting of FTP
  std::string redirect;
  bool wasChallenged = false;       // the server has asked for a login
  bool wasProxyChallenged = false;  // the proxy has asked for one
  bool isLoginKnown = true;         // the server offers a method of login that can be used
  bool isProxyLoginKnown = true;
  bool isLoggedIn = false;     // into FTP
  bool isLoginDenied = false;  // by FTP
  std::optional<std::int64_t> entries;
  bool isListingCut = false;
  std::optional<ShownCertificate> certificate;
  std::string error;  // empty: the request has succeeded
  std::string next;
};

// One request through libcurl. Nothing outside the request has an effect: no environment variable,
// no file of the user, no cookie, no redirect and no certificate of the machine.
class Transfer {
 public:
  // `roots` must exist as long as the object.
  Transfer(const Request& request, const TrustedRoots& roots);
  ~Transfer();
  Transfer(const Transfer&) = delete;
  Transfer& operator=(const Transfer&) = delete;

  // The handle of libcurl.
  void* handle() const;
  // Must be called after the end of the transfer, before the handle is removed. Otherwise libcurl
  // waits for the answer to QUIT of an FTP server.
  void closeConnection() const;
  // Takes the result code of libcurl and returns the reply.
  Reply finish(int code);

 private:
  class Exchange;
  std::unique_ptr<Exchange> m_exchange;
};

}  // namespace tool

#endif
