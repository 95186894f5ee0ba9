#ifndef TOOLS_SITELIST_MODEL_CERTIFICATE_H
#define TOOLS_SITELIST_MODEL_CERTIFICATE_H

#include <optional>
#include <string>

namespace tool {

// What a certificate says, as printable text.
struct Certificate {
  std::string subject;
  std::string issuer;
  std::string fingerprint;  // SHA-256 in pairs of hexadecimal digits with ":" between them
  std::string notBefore;
  std::string notAfter;
  int daysLeft = 0;  // whole days; negative when it expired a day ago or earlier
  bool isExpired = false;
};

// Reads a certificate in PEM form, or as bare base64 of its DER form. Nothing when it is neither.
std::optional<Certificate> readCertificate(const std::wstring& text);

}  // namespace tool

#endif
