#ifndef TOOLS_SITELIST_MODEL_CERTIFICATE_H
#define TOOLS_SITELIST_MODEL_CERTIFICATE_H

#include <memory>
#include <optional>
#include <string>

struct x509_st;  // X509 of OpenSSL

namespace tool {

// The content of a certificate, as printable text.
struct Certificate {
  std::string subject;
  std::string issuer;
  std::string fingerprint;  // SHA-256: pairs of hexadecimal digits, separated by ":"
  std::string notBefore;
  std::string notAfter;
  int daysLeft = 0;  // whole days; negative from one day after the expiry
  bool isExpired = false;
};

struct FreeX509 {
  void operator()(x509_st* certificate) const;
};
using X509Handle = std::unique_ptr<x509_st, FreeX509>;

// Parses a certificate in PEM form, or as base64 of its DER form. Returns null for any other text.
X509Handle parseCertificate(const std::wstring& text);
Certificate describeCertificate(const x509_st& certificate);

// Does both. Returns nothing for a text that is not a certificate.
std::optional<Certificate> readCertificate(const std::wstring& text);

}  // namespace tool

#endif
