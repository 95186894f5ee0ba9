#include "platform/crypto/crypt_shim.h"

#include <atomic>
#include <cerrno>
#include <memory>
#include <mutex>
#include <utility>
#include <vector>

#include "host/agent.h"
#include "host/crypto/encryption.h"
#include "host/crypto/key_file.h"
#include "platform/common/log.h"

namespace host {
namespace {

using korvel_com::ZQ::crypto::ENCRYPTION_TYPE_PASSWORD;
using korvel_com::ZQ::crypto::ENCRYPTION_TYPE_SERVER_BUFFER;

// The span of time over which this thread takes keys as unchanged; no two have one number. 0: none.
thread_local std::uint64_t t_span = 0;
thread_local unsigned int t_spanDepth = 0;

// The encryption objects of one type that nobody uses at the moment. Making one costs several times
// what a password costs, so they are kept for as long as the key file stays as it was.
class Pool {
 public:
  Pool(Encryption::Type type, const char* keyName, bool createsKey)
      : m_type(type), m_keyName(keyName), m_createsKey(createsKey) {
    m_idle.reserve(c_idleLimit);  // giving back must not fail
  }

  std::unique_ptr<Encryption> take(const std::string& dataDirectory) {
    const std::lock_guard<std::mutex> lock(m_mutex);
    if (dataDirectory != m_dataDirectory) {
      drop();
      m_dataDirectory = dataDirectory;
      m_path = keyFilePath(dataDirectory, m_keyName);
    }
    const bool isKept = t_span != 0 && t_span == m_span && !m_key.empty();
    if (!isKept && !refreshKey()) return nullptr;
    m_span = t_span;
    if (m_idle.empty()) return std::make_unique<Encryption>(m_type, m_key, m_generation);
    std::unique_ptr<Encryption> object = std::move(m_idle.back());
    m_idle.pop_back();
    return object;
  }

  void giveBack(std::unique_ptr<Encryption> object) {
    const std::lock_guard<std::mutex> lock(m_mutex);
    if (object->generation() == m_generation && m_idle.size() < c_idleLimit) {
      m_idle.push_back(std::move(object));
    }
  }

 private:
  static constexpr std::size_t c_idleLimit = 16;

  bool refreshKey() {
    KeyFileState state;
    const int error = keyFileState(m_path, state);
    if (error == 0 && !m_key.empty() && m_state.settled && m_state.sameFile(state)) return true;
    SecretBytes key;
    if ((error == ENOENT && m_createsKey && !createKeyFile(m_path)) ||
        !readKeyFile(m_path, key, m_state)) {
      drop();
      return false;
    }
    if (key != m_key) {
      drop();
      m_key = std::move(key);
      // A key is made once, so its maker's death is followed by no other making that would clean.
      if (m_createsKey) cleanBesideKeyFile(m_path);
    }
    return true;
  }

  void drop() {
    m_idle.clear();
    m_key = SecretBytes();
    ++m_generation;
  }

  const Encryption::Type m_type;
  const char* const m_keyName;
  const bool m_createsKey;
  std::mutex m_mutex;
  std::string m_dataDirectory;
  std::string m_path;
  SecretBytes m_key;     // empty: not loaded
  KeyFileState m_state;  // of the file that m_key was read from
  std::uint64_t m_generation = 0;
  std::uint64_t m_span = 0;  // in which m_key was looked at last
  std::vector<std::unique_ptr<Encryption>> m_idle;
};

// Never destroyed: other objects may still need passwords while the process ends.
Pool* poolFor(Encryption::Type type) {
  static Pool* const passwords = new Pool(ENCRYPTION_TYPE_PASSWORD, c_passwordKeyName, true);
  static Pool* const server = new Pool(ENCRYPTION_TYPE_SERVER_BUFFER, c_serverKeyName, false);
  switch (type) {
    case ENCRYPTION_TYPE_PASSWORD:
      return passwords;
    case ENCRYPTION_TYPE_SERVER_BUFFER:
      return server;
  }
  return nullptr;
}

}  // namespace
}  // namespace host

namespace korvel_com {
namespace ZQ {
namespace crypto {

CryptShim* CryptShim::instance() {
  static CryptShim shim;
  return &shim;
}

IEncryption* CryptShim::create_encryption_object(EncryptionType type) {
  host::Pool* const pool = host::poolFor(type);
  if (!pool) {
    logInternalError(L"Crypto", AString(L"There is no encryption object of type ").append(type));
    return nullptr;
  }
  return pool->take(host::agent().dataDirectory).release();
}

void CryptShim::destroy_encryption_object(IEncryption* object) {
  if (!object) return;
  std::unique_ptr<host::Encryption> owned(static_cast<host::Encryption*>(object));
  host::Pool* const pool = host::poolFor(owned->type());
  pool->giveBack(std::move(owned));
}

KeptKeys::KeptKeys() noexcept {
  static std::atomic<std::uint64_t> last{0};
  if (host::t_spanDepth++ == 0) host::t_span = ++last;
}

KeptKeys::~KeptKeys() {
  if (--host::t_spanDepth == 0) host::t_span = 0;
}

}  // namespace crypto
}  // namespace ZQ
}  // namespace korvel_com
