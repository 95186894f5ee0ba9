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

// One key and the encryption objects with it that nobody uses at the moment. Making one costs
// several times what a password costs, so they are kept for as long as the key file stays as it
// was. Any thread.
class KeyPool {
 public:
  // `mutex` is that of this pool alone. With `createsKey`, a missing key is created.
  KeyPool(Encryption::Type type, const ForkMutex& mutex, const char* keyName, bool createsKey);

  // An object with the key of the agent in this directory; null, with an error logged, when the key
  // cannot be had. Throws std::bad_alloc.
  std::unique_ptr<Encryption> take(const std::string& dataDirectory);
  // Takes an object back. Needs no memory.
  void giveBack(std::unique_ptr<Encryption> object);

 private:
  bool refreshKey() HOST_REQUIRES(m_mutex);
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
  std::uint64_t m_span HOST_GUARDED_BY(m_mutex) = 0;  // in which m_key was looked at last
  std::vector<std::unique_ptr<Encryption>> m_idle HOST_GUARDED_BY(m_mutex);
};

}  // namespace host

#endif
