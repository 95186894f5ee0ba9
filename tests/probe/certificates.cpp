#include "tests/probe/certificates.h"

#include <openssl/bio.h>
#include <openssl/ec.h>
#include <openssl/evp.h>
#include <openssl/pem.h>
#include <openssl/rand.h>
#include <openssl/x509.h>
#include <openssl/x509v3.h>

#include <stdexcept>

namespace test {
namespace {

void require(bool isOk) {
  if (!isOk) throw std::runtime_error("libcrypto failed");
}

void addExtension(X509* certificate, int name, const std::string& value) {
  X509V3_CTX context;
  X509V3_set_ctx(&context, certificate, certificate, nullptr, nullptr, 0);
  X509_EXTENSION* const extension = X509V3_EXT_conf_nid(nullptr, &context, name, value.c_str());
  require(extension != nullptr);
  X509_add_ext(certificate, extension, -1);
  X509_EXTENSION_free(extension);
}

std::string textOf(BIO* memory) {
  char* bytes = nullptr;
  const long size = BIO_get_mem_data(memory, &bytes);
  const std::string text(bytes, static_cast<std::size_t>(size));
  BIO_free(memory);
  return text;
}

std::string digestOf(const EVP_MD* method, const std::string& text) {
  unsigned char digest[EVP_MAX_MD_SIZE];
  unsigned size = 0;
  require(EVP_Digest(text.data(), text.size(), digest, &size, method, nullptr) == 1);
  return {reinterpret_cast<const char*>(digest), size};
}

}  // namespace

struct KeyAndCertificate::Parts {
  EVP_PKEY* key = EVP_EC_gen("P-256");
  X509* certificate = X509_new();
  ~Parts() {
    EVP_PKEY_free(key);
    X509_free(certificate);
  }
};

KeyAndCertificate::KeyAndCertificate(const NewCertificate& about, const KeyAndCertificate* issuer)
    : m_parts(std::make_unique<Parts>()) {
  X509* const made = m_parts->certificate;
  require(m_parts->key && made);
  unsigned char serial[8];
  require(RAND_bytes(serial, sizeof serial) == 1);
  serial[0] = 1;
  BIGNUM* const number = BN_bin2bn(serial, sizeof serial, nullptr);
  BN_to_ASN1_INTEGER(number, X509_get_serialNumber(made));
  BN_free(number);
  X509_set_version(made, X509_VERSION_3);
  constexpr long c_hour = 3600;  // so that the number of days does not change during a test
  X509_time_adj_ex(X509_getm_notBefore(made), static_cast<int>(about.firstDay), 0, nullptr);
  X509_time_adj_ex(X509_getm_notAfter(made), static_cast<int>(about.lastDay), c_hour, nullptr);
  X509_NAME_add_entry_by_txt(X509_get_subject_name(made), "CN", MBSTRING_UTF8,
                             reinterpret_cast<const unsigned char*>(about.commonName.c_str()), -1,
                             -1, 0);
  const KeyAndCertificate& signer = issuer ? *issuer : *this;
  X509_set_issuer_name(made, X509_get_subject_name(signer.m_parts->certificate));
  X509_set_pubkey(made, m_parts->key);
  addExtension(made, NID_basic_constraints, about.isAuthority ? "critical,CA:TRUE" : "CA:FALSE");
  if (!about.alternativeName.empty()) {
    addExtension(made, NID_subject_alt_name, about.alternativeName);
  }
  require(X509_sign(made, signer.m_parts->key, EVP_sha256()) > 0);
}

KeyAndCertificate::~KeyAndCertificate() = default;

std::string KeyAndCertificate::keyPem() const {
  BIO* const memory = BIO_new(BIO_s_mem());
  require(PEM_write_bio_PrivateKey(memory, m_parts->key, nullptr, nullptr, 0, nullptr, nullptr) ==
          1);
  return textOf(memory);
}

std::string KeyAndCertificate::certificatePem() const {
  BIO* const memory = BIO_new(BIO_s_mem());
  require(PEM_write_bio_X509(memory, m_parts->certificate) == 1);
  return textOf(memory);
}

std::string sha1Base64(const std::string& text) {
  const std::string digest = digestOf(EVP_sha1(), text);
  unsigned char encoded[64];
  const int size = EVP_EncodeBlock(encoded, reinterpret_cast<const unsigned char*>(digest.data()),
                                   static_cast<int>(digest.size()));
  return {reinterpret_cast<const char*>(encoded), static_cast<std::size_t>(size)};
}

std::string md5Hex(const std::string& text) {
  std::string hex;
  for (const char c : digestOf(EVP_md5(), text)) {
    char pair[3];
    std::snprintf(pair, sizeof pair, "%02x", static_cast<unsigned char>(c));
    hex += pair;
  }
  return hex;
}

}  // namespace test
