#ifndef TOOLS_SITELIST_MODEL_CERTIFICATE_H
#define TOOLS_SITELIST_MODEL_CERTIFICATE_H

#include <optional>
#include <string>

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

// Reads a certificate in PEM form, or as base64 of its DER form. Returns nothing for any other
// text.
std::optional<Certificate> readCertificate(const std::wstring& text);

}  // namespace tool

#endif
