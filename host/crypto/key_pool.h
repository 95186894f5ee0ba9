#ifndef HOST_CRYPTO_KEY_POOL_H
#define HOST_CRYPTO_KEY_POOL_H

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "host/crypto/encryption.h"
#include "host/crypto/key_file.h"
#include "host/process/fork_lock.h"

namespace host {

// One key and the idle encryption objects with this key. Creating an object takes several times as
// long as processing one password. The objects are therefore kept until the key file changes. Any
// thread.
class KeyPool {
 public:
  // `mutex` must be used by this pool only. If `createsKey` is set, a missing key is created. A
  // detached agent gets a random key without a file if the key file is missing or cannot be
  // examined.
  KeyPool(Encryption::Type type, const ForkMutex& mutex, const char* keyName, bool createsKey);

  // Returns an object with the key of the agent that has this data directory. Returns null when the
  // key cannot be read or created. The reason is logged as an error, except when a detached agent
  // gets no random numbers. Throws std::bad_alloc.
  std::unique_ptr<Encryption> take(const std::string& dataDirectory);
  // Takes an object back. Allocates nothing.
  void giveBack(std::unique_ptr<Encryption> object);

 private:
  bool refreshKey() HOST_REQUIRES(m_mutex);
  bool useRandomKey() HOST_REQUIRES(m_mutex);
  void drop() HOST_REQUIRES(m_mutex);

  const Encryption::Type m_type;
  const ForkMutex& m_mutex;
  const char* const m_keyName;
  const bool m_createsKey;
  std::string m_dataDirectory HOST_GUARDED_BY(m_mutex);
  std::string m_path HOST_GUARDED_BY(m_mutex);
  SecretBytes m_key HOST_GUARDED_BY(m_mutex);     // empty: not loaded
  KeyFileState m_state HOST_GUARDED_BY(m_mutex);  // of the file that m_key was read from
  std::uint64_t m_generation HOST_GUARDED_BY(m_mutex) = 0;
  std::uint64_t m_span HOST_GUARDED_BY(m_mutex) = 0;  // the last span in which m_key was checked
  std::vector<std::unique_ptr<Encryption>> m_idle HOST_GUARDED_BY(m_mutex);
};

}  // namespace host

#endif
