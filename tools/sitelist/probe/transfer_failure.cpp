#include "tools/sitelist/probe/transfer_failure.h"

#include <curl/curl.h>

#include <system_error>

namespace tool {
namespace {

std::string systemReason(int systemError) {
  return systemError == 0 ? "" : ": " + std::generic_category().message(systemError);
}

void setFailure(Reply& reply, const std::string& error, const std::string& next) {
  reply.error = error;
  reply.next = next;
}

void explainTunnel(const Request& request, int status, Reply& reply) {
  const std::string text = "the proxy " + textOf(*request.proxy) + " ";
  if (status == 407 && request.proxyLogin.user) {
    setFailure(reply, text + "did not accept the login",
               "check the login of the proxy in the list");
    return;
  }
  if (status == 407) {
    setFailure(reply, text + "requires a login, but the list has none",
               "add the login of the proxy to the list");
    return;
  }
  setFailure(reply, text + "refused the connection with status " + std::to_string(status),
             "check whether the proxy permits this host and port");
}

void explainTimeout(const std::string& whom, Reply& reply) {
  if (reply.milliseconds) {
    setFailure(reply, whom + " accepted the connection, but did not answer in time",
               "check the server, or wait longer with --timeout");
  } else {
    setFailure(reply, whom + " did not answer in time",
               "check the address, the network and the firewalls, or wait longer with --timeout");
  }
}

void explainCertificate(const Request& request, Reply& reply) {
  std::string reasons;
  if (reply.certificate) {
    for (const std::string& fault : reply.certificate->faults) {
      reasons += (reasons.empty() ? ": " : "; ") + fault;
    }
  }
  setFailure(
      reply,
      "the certificate of the server " + textOf(request.server) + " is not trusted" + reasons,
      "renew the certificate of the server, or the CA certificates of the list");
}

}  // namespace

void explainFailure(const Request& request, const TransferEnd& end, Reply& reply) {
  const std::string whom =
      (request.proxy ? "the proxy " : "the server ") + textOf(firstHop(request));
  const std::string checkKind = "check the port and the kind of the site";
  const std::string checkPath = "check the path of the site and the rights of its user";
  if (request.proxy && (end.connectStatus < 0 || end.connectStatus >= 300)) {
    return explainTunnel(request, end.connectStatus, reply);
  }
  if (end.isOverLimit) {
    return setFailure(reply, "the answer of " + whom + " is too long", checkKind);
  }
  switch (end.code) {
    case CURLE_COULDNT_CONNECT:
      return setFailure(reply, "cannot connect to " + whom + systemReason(end.systemError),
                        "check the address, and that the server is running");
    case CURLE_OPERATION_TIMEDOUT:
      return explainTimeout(whom, reply);
    case CURLE_GOT_NOTHING:
      return setFailure(reply, whom + " closed the connection without an answer", checkKind);
    case CURLE_RECV_ERROR:
    case CURLE_SEND_ERROR:
    case CURLE_PARTIAL_FILE:
      return setFailure(reply,
                        "the connection to " + whom + " was lost" + systemReason(end.systemError),
                        "check the server, and the firewalls on the way to it");
    case CURLE_UNSUPPORTED_PROTOCOL:
    case CURLE_WEIRD_SERVER_REPLY:
    case CURLE_FTP_WEIRD_PASS_REPLY:
      return setFailure(reply,
                        "the answer of " + whom + " is not " +
                            (request.goal == Goal::Ftp && !request.proxy ? "FTP" : "HTTP"),
                        checkKind);
    case CURLE_PEER_FAILED_VERIFICATION:
      return explainCertificate(request, reply);
    case CURLE_SSL_CONNECT_ERROR:
      return setFailure(reply,
                        "the TLS handshake with the server " + textOf(request.server) + " failed" +
                            (end.detail.empty() ? "" : ": " + end.detail),
                        "check that the port is the one for secure connections");
    case CURLE_LOGIN_DENIED:
      return setFailure(reply,
                        request.login.user ? whom + " refused the login"
                                           : whom + " requires a login, and the site has none",
                        "set the user and password of the site with `sitelist edit set`");
    case CURLE_REMOTE_ACCESS_DENIED:
      return setFailure(reply,
                        "the server has no such directory, or the user of the site may not read it",
                        checkPath);
    case CURLE_FTP_COULDNT_RETR_FILE:
    case CURLE_REMOTE_FILE_NOT_FOUND:
      return setFailure(reply, "the server did not list the directory", checkPath);
    case CURLE_FTP_WEIRD_PASV_REPLY:
    case CURLE_FTP_WEIRD_227_FORMAT:
    case CURLE_FTP_CANT_GET_HOST:
    case CURLE_FTP_ACCEPT_FAILED:
    case CURLE_FTP_ACCEPT_TIMEOUT:
    case CURLE_FTP_PORT_FAILED:
      return setFailure(reply, "the server opened no connection for data",
                        "check the passive mode of the server, and the firewalls on the way to it");
    default:
      return setFailure(reply,
                        "the request to " + whom +
                            " failed: " + curl_easy_strerror(static_cast<CURLcode>(end.code)) +
                            systemReason(end.systemError),
                        "check the site with another program");
  }
}

}  // namespace tool
