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
  // `guard` is the mutex of this pool alone. With `createsKey`, a missing key is made anew.
  KeyPool(Encryption::Type type, Guarded guard, const char* keyName, bool createsKey);

  // An object with the key of the agent in this directory; null, with an error logged, when the key
  // cannot be had. Throws std::bad_alloc.
  std::unique_ptr<Encryption> take(const std::string& dataDirectory);
  // Takes an object back. Needs no memory.
  void giveBack(std::unique_ptr<Encryption> object);

 private:
  bool refreshKey();
  void drop();

  const Encryption::Type m_type;
  const Guarded m_guard;
  const char* const m_keyName;
  const bool m_createsKey;
  std::string m_dataDirectory;
  std::string m_path;
  SecretBytes m_key;     // empty: not loaded
  KeyFileState m_state;  // of the file that m_key was read from
  std::uint64_t m_generation = 0;
  std::uint64_t m_span = 0;  // in which m_key was looked at last
  std::vector<std::unique_ptr<Encryption>> m_idle;
};

}  // namespace host

#endif
