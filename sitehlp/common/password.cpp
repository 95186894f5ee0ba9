#include "sitehlp/common/password.h"

#include "platform/common/abase64encode.h"
#include "platform/common/astring.h"
#include "platform/crypto/crypt_shim.h"
#include "sitehlp/common/wipe.h"
#include "sitehlp/sites_helper.h"

namespace sitehlp {
namespace {

using korvel_com::ZQ::crypto::AnObjectBuffer;
using korvel_com::ZQ::crypto::CryptShim;
using korvel_com::ZQ::crypto::EncryptionType;
using korvel_com::ZQ::crypto::IEncryption;

// Owns an encryption object and returns it to the service at the end of the scope.
class EncryptionObject {
 public:
  explicit EncryptionObject(EncryptionType type)
      : m_object(CryptShim::instance()->create_encryption_object(type)) {}
  ~EncryptionObject() {
    if (m_object) CryptShim::instance()->destroy_encryption_object(m_object);
  }
  EncryptionObject(const EncryptionObject&) = delete;
  EncryptionObject& operator=(const EncryptionObject&) = delete;

  explicit operator bool() const { return m_object != nullptr; }
  IEncryption* operator->() const { return m_object; }

 private:
  IEncryption* m_object;
};

}  // namespace

int EncryptDecryptPassword(const std::wstring& in, std::wstring& out, bool encrypt) {
  const EncryptionObject object(korvel_com::ZQ::crypto::ENCRYPTION_TYPE_PASSWORD);
  if (!object) return 0;
  return encrypt ? object->encrypt_string(in, out) : object->decrypt_string(in, out);
}

int decrypt_data(const std::wstring& in, std::wstring& out) {
  const EncryptionObject object(korvel_com::ZQ::crypto::ENCRYPTION_TYPE_SERVER_BUFFER);
  if (!object) return 0;
  const ABuffer decoded = ABase64Encode::decode(AString(in));
  const AnObjectBuffer<unsigned char> input(static_cast<unsigned int>(decoded.size()),
                                            decoded.data());
  AnObjectBuffer<unsigned char> output(0, nullptr);
  const int result = object->decrypt_buffer(input, output);
  if (result != 0) {
    std::string clear = output.cpp_str();
    const WipeAtExit<std::string> wipe(clear);
    AString text(clear.c_str());
    const WipeAtExit<std::wstring> wipeText(const_cast<std::wstring&>(text.str()));
    out = text.str();
  }
  return result;
}

int CSitesHelper::EncryptPassword(const std::wstring& in, std::wstring& out) {
  return EncryptDecryptPassword(in, out, true);
}

}  // namespace sitehlp
