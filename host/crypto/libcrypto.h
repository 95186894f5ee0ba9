#ifndef HOST_CRYPTO_LIBCRYPTO_H
#define HOST_CRYPTO_LIBCRYPTO_H

#include <string>

#include "host/process/fork_lock.h"

namespace host {

// Must be held around every call into libcrypto that may take a lock of libcrypto. No other thread
// is then in such a call at a fork. The first object of a process also prevents libcrypto from
// releasing its data when the process ends, because other threads may still use it then.
class HOST_SCOPED_LOCK LibcryptoUse {
 public:
  LibcryptoUse() noexcept HOST_ACQUIRES(c_libcryptoMutex);
  ~LibcryptoUse() HOST_RELEASES();
  LibcryptoUse(const LibcryptoUse&) = delete;
  LibcryptoUse& operator=(const LibcryptoUse&) = delete;

 private:
  ForkLock m_lock;
};

// Returns libcrypto's last reason for the failed calls of this thread, in one line that is never
// empty. Clears all reasons. Throws std::bad_alloc if memory was one of them. The caller must hold
// a LibcryptoUse.
std::string takeLibcryptoError() HOST_REQUIRES(c_libcryptoMutex);

}  // namespace host

#endif
