#include "host/crypto/key_pool.h"

#include <cerrno>
#include <utility>

#include "host/crypto/key_span.h"
#include "host/detached_agent.h"

namespace host {
namespace {

constexpr std::size_t c_idleLimit = 16;

}  // namespace

KeyPool::KeyPool(Encryption::Type type, const ForkMutex& mutex, const char* keyName,
                 bool createsKey)
    : m_type(type), m_mutex(mutex), m_keyName(keyName), m_createsKey(createsKey) {
  m_idle.reserve(c_idleLimit);  // so that giveBack cannot fail
}

std::unique_ptr<Encryption> KeyPool::take(const std::string& dataDirectory) {
  const ForkLock lock(m_mutex);
  if (dataDirectory != m_dataDirectory) {
    drop();
    m_dataDirectory = dataDirectory;
    m_path = keyFilePath(dataDirectory, m_keyName);
  }
  const std::uint64_t span = currentSpan();
  const bool isKept = span != 0 && span == m_span && !m_key.empty();
  if (!isKept && !refreshKey()) return nullptr;
  m_span = span;
  if (m_idle.empty()) return std::make_unique<Encryption>(m_type, m_key, m_generation);
  std::unique_ptr<Encryption> object = std::move(m_idle.back());
  m_idle.pop_back();
  return object;
}

void KeyPool::giveBack(std::unique_ptr<Encryption> object) {
  const ForkLock lock(m_mutex);
  if (object->generation() == m_generation && m_idle.size() < c_idleLimit) {
    m_idle.push_back(std::move(object));
  }
}

bool KeyPool::refreshKey() {
  KeyFileState state;
  const int error = keyFileState(m_path, state);
  if (error == 0 && !m_key.empty() && m_state.settled && m_state.sameFile(state)) return true;
  if (error != 0 && m_createsKey && isDetached()) return useRandomKey();
  SecretBytes key;
  if ((error == ENOENT && m_createsKey && !createKeyFile(m_path)) ||
      !readKeyFile(m_path, key, m_state)) {
    drop();
    return false;
  }
  if (key != m_key) {
    drop();
    m_key = std::move(key);
    // A key is created only once. If its creator was killed, no later creation removes the
    // temporary file.
    if (m_createsKey) cleanBesideKeyFile(m_path);
  }
  return true;
}

// Draws a random key once and keeps it, so that values encrypted with it can be decrypted.
bool KeyPool::useRandomKey() {
  if (!m_key.empty()) return true;
  drop();
  SecretBytes key(c_keySize);
  if (!drawKey(key)) return false;
  m_key = std::move(key);
  m_state = KeyFileState();
  return true;
}

void KeyPool::drop() {
  m_idle.clear();
  m_key = SecretBytes();
  ++m_generation;
}

}  // namespace host
