#ifndef HOST_CRYPTO_LIBCRYPTO_H
#define HOST_CRYPTO_LIBCRYPTO_H

#include <string>

#include "host/process/fork_lock.h"

namespace host {

// Held around every call into libcrypto that may take a lock in there, so that no other thread is
// inside at a fork. The first one of a process also sees to it that libcrypto frees nothing when
// the process ends: other threads may still be at work then.
class HOST_SCOPED_LOCK LibcryptoUse {
 public:
  LibcryptoUse() noexcept HOST_ACQUIRES(c_libcryptoMutex);
  ~LibcryptoUse() HOST_RELEASES();
  LibcryptoUse(const LibcryptoUse&) = delete;
  LibcryptoUse& operator=(const LibcryptoUse&) = delete;

 private:
  ForkLock m_lock;
};

// What libcrypto says about the calls that failed in this thread, in one line; never empty. Forgets
// it. Throws std::bad_alloc when they failed for want of memory. The caller must hold a
// LibcryptoUse.
std::string takeLibcryptoError() HOST_REQUIRES(c_libcryptoMutex);

}  // namespace host

#endif
