#include "tools/sitelist/probe/transfer.h"

#include <curl/curl.h>
#include <openssl/ssl.h>
#include <sys/socket.h>

#include <algorithm>
#include <new>
#include <stdexcept>

#include "tools/sitelist/probe/response.h"
#include "tools/sitelist/probe/secret_utf8.h"
#include "tools/sitelist/probe/transfer_failure.h"
#include "tools/sitelist/probe/trusted_roots.h"

namespace tool {
namespace {

constexpr long c_knownLogins = CURLAUTH_BASIC | CURLAUTH_DIGEST;

std::string urlOfRequest(const Request& request) {
  const std::string scheme = request.goal == Goal::Ftp         ? "ftp://"
                             : request.goal == Goal::Handshake ? "https://"
                                                               : "http://";
  return scheme + textOf(request.server) + (request.path.empty() ? "/" : request.path);
}

// "error:0A00010B:SSL routines::wrong version number"
std::string lastPartOfError(const std::string& text) {
  const std::size_t mark = text.rfind("::");
  return mark == std::string::npos ? "" : limitedText(text.substr(mark + 2));
}

}  // namespace

class Transfer::Exchange {
 public:
  Exchange(const Request& request, const TrustedRoots& roots);
  CURL* handle() const { return m_handle.get(); }
  Reply finish(CURLcode code);

 private:
  struct FreeEasy {
    void operator()(CURL* handle) const { curl_easy_cleanup(handle); }
  };
  struct FreeCurlList {
    void operator()(curl_slist* list) const { curl_slist_free_all(list); }
  };

  template <typename Value>
  void set(CURLoption option, Value value) {
    const CURLcode code = curl_easy_setopt(m_handle.get(), option, value);
    if (code == CURLE_OUT_OF_MEMORY) throw std::bad_alloc();
    if (code != CURLE_OK) throw std::logic_error("libcurl lacks an option that a probe needs");
  }
  // libcurl wipes its copy of the text; see curl_session.h.
  void setSecret(CURLoption option, const wchar_t* text) { set(option, SecretUtf8(text).c_str()); }
  void setCommon();
  void setRoute();
  void setLogins();
  void setTls();
  long number(CURLINFO info) const {
    long value = 0;
    curl_easy_getinfo(m_handle.get(), info, &value);
    return value;
  }

  static std::size_t onHeader(char* bytes, std::size_t one, std::size_t size, void* self) {
    return static_cast<Exchange*>(self)->m_response.addLine(bytes, one * size) ? size : 0;
  }
  static std::size_t onBody(char* bytes, std::size_t one, std::size_t size, void* self) {
    return static_cast<Exchange*>(self)->m_response.addBody(bytes, one * size) ? size : 0;
  }
  static int onProgress(void* self, curl_off_t, curl_off_t received, curl_off_t, curl_off_t) {
    return static_cast<Exchange*>(self)->m_response.isWithinLimit(received) ? 0 : 1;
  }
  static CURLcode onTls(CURL*, void* context, void* self) {
    SSL_CTX_set_cert_verify_callback(static_cast<SSL_CTX*>(context), onCertificate, self);
    return CURLE_OK;
  }
  static int onCertificate(X509_STORE_CTX* handshake, void* self);

  Request m_request;
  const TrustedRoots& m_roots;
  Response m_response;
  std::optional<ShownCertificate> m_certificate;
  char m_errorText[CURL_ERROR_SIZE] = {};
  std::unique_ptr<curl_slist, FreeCurlList> m_addresses;
  std::unique_ptr<CURL, FreeEasy> m_handle;  // last, because it uses the others
};

Transfer::Exchange::Exchange(const Request& request, const TrustedRoots& roots)
    : m_request(request),
      m_roots(roots),
      m_response(request.goal == Goal::Ftp && !request.proxy),
      m_handle(curl_easy_init()) {
  if (!m_handle) throw std::bad_alloc();
  setCommon();
  setRoute();
  setLogins();
  setTls();
}

void Transfer::Exchange::setCommon() {
  set(CURLOPT_URL, urlOfRequest(m_request).c_str());
#if LIBCURL_VERSION_NUM >= 0x075500
  set(CURLOPT_PROTOCOLS_STR, "http,https,ftp");
#else
  set(CURLOPT_PROTOCOLS, CURLPROTO_HTTP | CURLPROTO_HTTPS | CURLPROTO_FTP);
#endif
  set(CURLOPT_FOLLOWLOCATION, 0L);
  set(CURLOPT_NETRC, static_cast<long>(CURL_NETRC_IGNORED));
  set(CURLOPT_HTTP_VERSION, static_cast<long>(CURL_HTTP_VERSION_1_1));
  set(CURLOPT_SSL_ENABLE_ALPN, 0L);
  set(CURLOPT_FRESH_CONNECT, 1L);
  set(CURLOPT_FTP_SKIP_PASV_IP, 1L);
  set(CURLOPT_FTP_FILEMETHOD, static_cast<long>(CURLFTPMETHOD_SINGLECWD));
  set(CURLOPT_TIMEOUT_MS, static_cast<long>(std::max<std::int64_t>(1, m_request.time.count())));
  set(CURLOPT_ERRORBUFFER, m_errorText);
  set(CURLOPT_HEADERFUNCTION, onHeader);
  set(CURLOPT_HEADERDATA, this);
  set(CURLOPT_WRITEFUNCTION, onBody);
  set(CURLOPT_WRITEDATA, this);
  set(CURLOPT_NOPROGRESS, 0L);
  set(CURLOPT_XFERINFOFUNCTION, onProgress);
  set(CURLOPT_XFERINFODATA, this);
  set(CURLOPT_USERAGENT, "sitelist/" SITELIST_VERSION);
  const bool onlyConnects = m_request.goal == Goal::Connect || m_request.goal == Goal::Handshake;
  set(CURLOPT_CONNECT_ONLY, onlyConnects ? 1L : 0L);
}

// An empty proxy and an empty exclusion are set, because libcurl would otherwise take those of the
// environment.
void Transfer::Exchange::setRoute() {
  const Endpoint& hop = firstHop(m_request);
  set(CURLOPT_PROXY, m_request.proxy ? ("http://" + textOf(hop)).c_str() : "");
  set(CURLOPT_NOPROXY, "");
  if (m_request.addresses.empty() || isAddress(hop.host)) return;
  std::string entry = hop.host + ":" + std::to_string(hop.port) + ":";
  for (const std::string& address : m_request.addresses) {
    if (entry.back() != ':' || &address != &m_request.addresses.front()) entry += ',';
    entry += hostForUrl(address);
  }
  m_addresses.reset(curl_slist_append(nullptr, entry.c_str()));
  if (!m_addresses) throw std::bad_alloc();
  set(CURLOPT_RESOLVE, m_addresses.get());
}

void Transfer::Exchange::setLogins() {
  set(CURLOPT_HTTPAUTH, c_knownLogins);
  set(CURLOPT_PROXYAUTH, c_knownLogins);
  const bool isAnswered = m_request.goal == Goal::Http || m_request.goal == Goal::Ftp;
  if (m_request.login.user && isAnswered) {
    setSecret(CURLOPT_USERNAME, m_request.login.user);
    setSecret(CURLOPT_PASSWORD, m_request.login.password);
  }
  if (m_request.proxy && m_request.proxyLogin.user) {
    setSecret(CURLOPT_PROXYUSERNAME, m_request.proxyLogin.user);
    setSecret(CURLOPT_PROXYPASSWORD, m_request.proxyLogin.password);
  }
}

void Transfer::Exchange::setTls() {
  if (m_request.goal != Goal::Handshake) return;
  set(CURLOPT_SSL_VERIFYPEER, 1L);
  set(CURLOPT_SSL_VERIFYHOST, 2L);
  set(CURLOPT_CAINFO, static_cast<const char*>(nullptr));
  set(CURLOPT_CAPATH, static_cast<const char*>(nullptr));
  set(CURLOPT_SSL_CTX_FUNCTION, onTls);
  set(CURLOPT_SSL_CTX_DATA, this);
}

// No exception may pass through the frames of libcurl.
int Transfer::Exchange::onCertificate(X509_STORE_CTX* handshake, void* self) {
  Exchange& exchange = *static_cast<Exchange*>(self);
  try {
    exchange.m_certificate = exchange.m_roots.check(*handshake, exchange.m_request.server.host);
  } catch (const std::bad_alloc&) {
    X509_STORE_CTX_set_error(handshake, X509_V_ERR_OUT_OF_MEM);
    return 0;
  }
  return exchange.m_certificate->faults.empty() ? 1 : 0;
}

Reply Transfer::Exchange::finish(CURLcode code) {
  Reply reply;
  m_response.describe(reply);
  curl_off_t microseconds = 0;
  curl_easy_getinfo(m_handle.get(), CURLINFO_CONNECT_TIME_T, &microseconds);
  if (microseconds > 0) reply.milliseconds = (microseconds + 999) / 1000;
  reply.isLoginKnown = (number(CURLINFO_HTTPAUTH_AVAIL) & c_knownLogins) != 0;
  reply.isProxyLoginKnown = (number(CURLINFO_PROXYAUTH_AVAIL) & c_knownLogins) != 0;
  reply.certificate = m_certificate;
  reply.isLoginDenied = code == CURLE_LOGIN_DENIED;
  if (code == CURLE_OK || m_response.isEnough()) return reply;
  TransferEnd end;
  end.code = code;
  end.systemError = static_cast<int>(number(CURLINFO_OS_ERRNO));
  end.connectStatus = m_request.goal == Goal::Handshake && m_request.proxy
                          ? static_cast<int>(number(CURLINFO_HTTP_CONNECTCODE))
                          : 0;
  end.isOverLimit = m_response.isOverLimit();
  if (code == CURLE_SSL_CONNECT_ERROR) end.detail = lastPartOfError(m_errorText);
  explainFailure(m_request, end, reply);
  return reply;
}

const Endpoint& firstHop(const Request& request) {
  return request.proxy ? *request.proxy : request.server;
}

Transfer::Transfer(const Request& request, const TrustedRoots& roots)
    : m_exchange(std::make_unique<Exchange>(request, roots)) {}
Transfer::~Transfer() = default;
void Transfer::closeConnection() const {
  curl_socket_t socket = CURL_SOCKET_BAD;
  if (curl_easy_getinfo(m_exchange->handle(), CURLINFO_ACTIVESOCKET, &socket) == CURLE_OK &&
      socket != CURL_SOCKET_BAD) {
    ::shutdown(socket, SHUT_RDWR);
  }
}
void* Transfer::handle() const { return m_exchange->handle(); }
Reply Transfer::finish(int code) { return m_exchange->finish(static_cast<CURLcode>(code)); }

}  // namespace tool
