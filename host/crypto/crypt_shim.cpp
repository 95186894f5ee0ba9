#include "platform/crypto/crypt_shim.h"

#include "host/agent.h"
#include "host/crypto/key_pool.h"
#include "host/crypto/key_span.h"
#include "host/process/lasting.h"
#include "platform/common/log.h"

namespace host {
namespace {

using korvel_com::ZQ::crypto::ENCRYPTION_TYPE_PASSWORD;
using korvel_com::ZQ::crypto::ENCRYPTION_TYPE_SERVER_BUFFER;

struct PasswordPool : KeyPool {
  PasswordPool() : KeyPool(ENCRYPTION_TYPE_PASSWORD, c_passwordKeyMutex, c_passwordKeyName, true) {}
};
struct ServerPool : KeyPool {
  ServerPool() : KeyPool(ENCRYPTION_TYPE_SERVER_BUFFER, c_serverKeyMutex, c_serverKeyName, false) {}
};

// Never destroyed, because other objects may need passwords while the process ends
Lasting<PasswordPool> g_passwords;
Lasting<ServerPool> g_server;

KeyPool* poolFor(Encryption::Type type) {
  switch (type) {
    case ENCRYPTION_TYPE_PASSWORD:
      return &g_passwords.get();
    case ENCRYPTION_TYPE_SERVER_BUFFER:
      return &g_server.get();
  }
  return nullptr;
}

}  // namespace
}  // namespace host

namespace korvel_com {
namespace ZQ {
namespace crypto {
namespace {

CryptShim g_shim;  // the class has no members, so the object needs no constructor or destructor

}  // namespace

CryptShim* CryptShim::instance() { return &g_shim; }

IEncryption* CryptShim::create_encryption_object(EncryptionType type) {
  host::KeyPool* const pool = host::poolFor(type);
  if (!pool) {
    logInternalError(host::c_cryptoComponent,
                     AString(L"There is no encryption object of type ").append(type));
    return nullptr;
  }
  return pool->take(host::agent().dataDirectory).release();
}

void CryptShim::destroy_encryption_object(IEncryption* object) {
  if (!object) return;
  std::unique_ptr<host::Encryption> owned(static_cast<host::Encryption*>(object));
  host::KeyPool* const pool = host::poolFor(owned->type());
  pool->giveBack(std::move(owned));
}

}  // namespace crypto
}  // namespace ZQ
}  // namespace korvel_com
