#ifndef TOOLS_SITELIST_PROBE_TRUSTED_ROOTS_H
#define TOOLS_SITELIST_PROBE_TRUSTED_ROOTS_H

#include <string>
#include <vector>

#include "tools/sitelist/probe/outcome.h"

struct x509_store_ctx_st;  // X509_STORE_CTX of OpenSSL

namespace tool {

// The CA certificates of a list. A server is trusted only if the chain of its certificate leads to
// one of them, or if its certificate is one of them. The certificates of the machine are not used.
class TrustedRoots {
 public:
  // Omits texts that cannot be read as a certificate.
  explicit TrustedRoots(const std::vector<std::wstring>& texts);

  // Checks the certificate that a server shows in a handshake, and its chain. `host` is a name or
  // an IP address. The result has every reason not to trust the certificate.
  ShownCertificate check(x509_store_ctx_st& handshake, const std::string& host) const;

 private:
  std::vector<X509Handle> m_certificates;
};

}  // namespace tool

#endif
