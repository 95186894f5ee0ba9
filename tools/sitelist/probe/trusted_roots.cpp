#include "tools/sitelist/probe/trusted_roots.h"

#include <openssl/err.h>
#include <openssl/x509.h>
#include <openssl/x509_vfy.h>
#include <openssl/x509v3.h>

#include <algorithm>
#include <memory>
#include <new>

#include "tools/sitelist/probe/site_plan.h"

namespace tool {
namespace {

struct FreeCertificateStack {
  void operator()(STACK_OF(X509) * stack) const { sk_X509_free(stack); }
};
using CertificateStack = std::unique_ptr<STACK_OF(X509), FreeCertificateStack>;

struct VerifyFault {
  int error;
  int depth;
};
using VerifyFaults = std::vector<VerifyFault>;

// Collects every fault. The check continues after each, so that all are found. No exception may
// pass through the frames of libcrypto.
int onVerifyFault(int isOk, X509_STORE_CTX* handshake) {
  auto* const faults = static_cast<VerifyFaults*>(X509_STORE_CTX_get_app_data(handshake));
  if (isOk == 1) return 1;
  if (faults->size() == faults->capacity()) return 0;
  faults->push_back(
      {X509_STORE_CTX_get_error(handshake), X509_STORE_CTX_get_error_depth(handshake)});
  return 1;
}

std::string textOf(const VerifyFault& fault, const std::string& host, bool hasRoots) {
  const std::string whose = fault.depth == 0 ? "it" : "the certificate of its issuer";
  switch (fault.error) {
    case X509_V_ERR_CERT_HAS_EXPIRED:
      return whose + " has expired";
    case X509_V_ERR_CERT_NOT_YET_VALID:
      return whose + " is not valid yet";
    case X509_V_ERR_HOSTNAME_MISMATCH:
      return "it is not for the name " + host;
    case X509_V_ERR_IP_ADDRESS_MISMATCH:
      return "it is not for the address " + host;
    case X509_V_ERR_DEPTH_ZERO_SELF_SIGNED_CERT:
      return "it is self-signed and not in the list";
    case X509_V_ERR_SELF_SIGNED_CERT_IN_CHAIN:
    case X509_V_ERR_UNABLE_TO_GET_ISSUER_CERT:
    case X509_V_ERR_UNABLE_TO_GET_ISSUER_CERT_LOCALLY:
    case X509_V_ERR_UNABLE_TO_VERIFY_LEAF_SIGNATURE:
      return hasRoots ? "no CA certificate of the list has issued it"
                      : "the list has no CA certificate";
    default:
      return X509_verify_cert_error_string(fault.error);
  }
}

std::vector<std::string> textsOf(const VerifyFaults& faults, const std::string& host,
                                 bool hasRoots) {
  std::vector<std::string> texts;
  for (const VerifyFault& fault : faults) {
    const std::string text = textOf(fault, host, hasRoots);
    if (std::find(texts.begin(), texts.end(), text) == texts.end()) texts.push_back(text);
  }
  return texts;
}

}  // namespace

TrustedRoots::TrustedRoots(const std::vector<std::wstring>& texts) {
  for (const std::wstring& text : texts) {
    if (X509Handle certificate = parseCertificate(text)) {
      m_certificates.push_back(std::move(certificate));
    }
  }
}

ShownCertificate TrustedRoots::check(X509_STORE_CTX& handshake, const std::string& host) const {
  const CertificateStack roots(sk_X509_new_null());
  for (const X509Handle& certificate : m_certificates) {
    if (!roots || sk_X509_push(roots.get(), certificate.get()) == 0) throw std::bad_alloc();
  }
  constexpr std::size_t c_mostFaults = 64;
  VerifyFaults faults;
  faults.reserve(c_mostFaults);
  X509_STORE_CTX_set0_trusted_stack(&handshake, roots.get());
  X509_STORE_CTX_set_app_data(&handshake, &faults);
  X509_STORE_CTX_set_verify_cb(&handshake, onVerifyFault);
  X509_VERIFY_PARAM* const parameters = X509_STORE_CTX_get0_param(&handshake);
  // A list may have the certificate of an issuer that is not a root.
  X509_VERIFY_PARAM_set_flags(parameters, X509_V_FLAG_PARTIAL_CHAIN);
  const int isSet = isAddress(host)
                        ? X509_VERIFY_PARAM_set1_ip_asc(parameters, host.c_str())
                        : X509_VERIFY_PARAM_set1_host(parameters, host.data(), host.size());
  if (isSet != 1) throw std::bad_alloc();
  const int isVerified = X509_verify_cert(&handshake);
  if (isVerified != 1 && faults.empty()) {
    faults.push_back({X509_STORE_CTX_get_error(&handshake), 0});
  }
  ERR_clear_error();
  ShownCertificate shown;
  if (const X509* const certificate = X509_STORE_CTX_get0_cert(&handshake)) {
    shown.certificate = describeCertificate(*certificate);
    shown.certificate.subject = limitedText(shown.certificate.subject);
    shown.certificate.issuer = limitedText(shown.certificate.issuer);
  }
  shown.faults = textsOf(faults, host, !m_certificates.empty());
  return shown;
}

}  // namespace tool
