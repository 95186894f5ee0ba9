#ifndef TESTS_PROBE_CERTIFICATES_H
#define TESTS_PROBE_CERTIFICATES_H

#include <memory>
#include <string>

namespace test {

struct NewCertificate {
  std::string commonName;
  std::string alternativeName;  // such as "IP:127.0.0.1"; empty: none
  long firstDay = -1;           // of its validity, counted from today
  long lastDay = 30;
  bool isAuthority = false;
};

// A key with its certificate, new in every run.
class KeyAndCertificate {
 public:
  // `issuer` signs the certificate. With null it is self-signed.
  KeyAndCertificate(const NewCertificate& about, const KeyAndCertificate* issuer);
  ~KeyAndCertificate();
  KeyAndCertificate(const KeyAndCertificate&) = delete;
  KeyAndCertificate& operator=(const KeyAndCertificate&) = delete;

  std::string keyPem() const;
  std::string certificatePem() const;

 private:
  struct Parts;
  std::unique_ptr<Parts> m_parts;
};

// Returns the base64 form of a digest for a password file of a web server.
std::string sha1Base64(const std::string& text);
std::string md5Hex(const std::string& text);

}  // namespace test

#endif
