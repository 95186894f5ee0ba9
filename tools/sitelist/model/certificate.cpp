#include "tools/sitelist/model/certificate.h"

#include <openssl/bio.h>
#include <openssl/err.h>
#include <openssl/evp.h>
#include <openssl/pem.h>
#include <openssl/x509.h>

#include <cstdio>
#include <ctime>
#include <memory>
#include <unordered_map>

#include "platform/common/abase64encode.h"
#include "tools/sitelist/cli/text.h"

namespace tool {
namespace {

struct Free {
  void operator()(BIO* bio) const { BIO_free_all(bio); }
};
using Bio = std::unique_ptr<BIO, Free>;

int noPassphrase(char*, int, int, void*) { return -1; }

std::string nameText(const X509_NAME* name) {
  const Bio memory(BIO_new(BIO_s_mem()));
  X509_NAME_print_ex(memory.get(), name, 0, XN_FLAG_ONELINE & ~ASN1_STRFLGS_ESC_MSB);
  char* text = nullptr;
  const long size = BIO_get_mem_data(memory.get(), &text);
  return narrow(wide(std::string(text, static_cast<std::size_t>(size))));
}

std::string timeText(const ASN1_TIME* time) {
  std::tm parts = {};
  char text[32];
  if (ASN1_TIME_to_tm(time, &parts) != 1 ||
      std::strftime(text, sizeof(text), "%Y-%m-%d %H:%M:%S UTC", &parts) == 0) {
    return "unknown";
  }
  return text;
}

std::string fingerprintOf(const X509* certificate) {
  unsigned char digest[EVP_MAX_MD_SIZE];
  unsigned int size = 0;
  std::string text;
  if (X509_digest(certificate, EVP_sha256(), digest, &size) != 1) return "unknown";
  for (unsigned int i = 0; i < size; ++i) {
    char pair[4];
    std::snprintf(pair, sizeof(pair), "%s%02X", i == 0 ? "" : ":", digest[i]);
    text += pair;
  }
  return text;
}

}  // namespace

void FreeX509::operator()(x509_st* certificate) const { X509_free(certificate); }

X509Handle parseCertificate(const std::wstring& text) {
  const std::string narrowed = narrow(text);
  const Bio pem(BIO_new_mem_buf(narrowed.data(), static_cast<int>(narrowed.size())));
  X509Handle certificate(PEM_read_bio_X509(pem.get(), nullptr, noPassphrase, nullptr));
  if (!certificate) {
    const ABuffer der = ABase64Encode::decode(text);
    const unsigned char* position = der.data();
    certificate.reset(d2i_X509(nullptr, &position, static_cast<long>(der.size())));
    if (certificate && position != der.data() + der.size()) certificate.reset();
  }
  ERR_clear_error();
  return certificate;
}

Certificate describeCertificate(const x509_st& x509) {
  Certificate certificate;
  certificate.subject = nameText(X509_get_subject_name(&x509));
  certificate.issuer = nameText(X509_get_issuer_name(&x509));
  certificate.fingerprint = fingerprintOf(&x509);
  certificate.notBefore = timeText(X509_get0_notBefore(&x509));
  certificate.notAfter = timeText(X509_get0_notAfter(&x509));
  int seconds = 0;
  ASN1_TIME_diff(&certificate.daysLeft, &seconds, nullptr, X509_get0_notAfter(&x509));
  certificate.isExpired = certificate.daysLeft < 0 || seconds < 0;
  return certificate;
}

// Remembers a limited number of certificates, because many lists have the same ones. Parsing one
// takes longer than reading a list.
std::optional<Certificate> readCertificate(const std::wstring& text) {
  const auto read = [&text]() -> std::optional<Certificate> {
    const X509Handle handle = parseCertificate(text);
    if (!handle) return std::nullopt;
    return describeCertificate(*handle);
  };
  constexpr std::size_t c_most = 64;
  constexpr std::size_t c_longest = 16384;
  if (text.size() > c_longest) return read();
  thread_local std::unordered_map<std::wstring, std::optional<Certificate>> known;
  const auto found = known.find(text);
  if (found != known.end()) return found->second;
  if (known.size() == c_most) known.clear();
  return known.emplace(text, read()).first->second;
}

}  // namespace tool
