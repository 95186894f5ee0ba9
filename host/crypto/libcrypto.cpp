#include "host/crypto/libcrypto.h"

#include <openssl/crypto.h>
#include <openssl/err.h>
#include <pthread.h>

#include <new>

namespace host {
namespace {

bool g_isReady HOST_GUARDED_BY(c_libcryptoMutex) = false;
bool g_hasThreadEnd HOST_GUARDED_BY(c_libcryptoMutex) = false;
pthread_key_t g_threadEnd HOST_GUARDED_BY(c_libcryptoMutex);

thread_local bool t_isKnown = false;

// libcrypto releases its data of a thread at the end of the thread, under a lock of its own. This
// function does it under c_libcryptoMutex as well.
void endThread(void*) {
  const ForkLock lock(c_libcryptoMutex);
  OPENSSL_thread_stop();
}

// g_threadEnd must be created before libcrypto's own key, because the destructors of keys run in
// the order of creation. A thread_local object with a destructor would end the process when there
// is no memory for it.
void prepareProcess() HOST_REQUIRES(c_libcryptoMutex) {
  g_hasThreadEnd = ::pthread_key_create(&g_threadEnd, endThread) == 0;
  OPENSSL_init_crypto(OPENSSL_INIT_NO_ATEXIT | OPENSSL_INIT_LOAD_CONFIG, nullptr);
  g_isReady = true;
}

std::string describe(unsigned long code, const char* data) {
  const char* const reason = ERR_reason_error_string(code);
  std::string text = reason ? reason : "error " + std::to_string(code);
  if (*data) text.append(" (").append(data).append(")");
  return text;
}

}  // namespace

// The analysis of clang does not follow a lock that is a member.
LibcryptoUse::LibcryptoUse() noexcept HOST_NOT_CHECKED : m_lock(c_libcryptoMutex) {
  if (!g_isReady) prepareProcess();
  if (!t_isKnown && g_hasThreadEnd) {
    t_isKnown = ::pthread_setspecific(g_threadEnd, &t_isKnown) == 0;
  }
}

LibcryptoUse::~LibcryptoUse() HOST_NOT_CHECKED = default;

std::string takeLibcryptoError() {
  std::string text = "no reason given";
  bool isMemory = false;
  const char* data = nullptr;
  while (const unsigned long code = ERR_get_error_all(nullptr, nullptr, nullptr, &data, nullptr)) {
    isMemory = isMemory || ERR_GET_REASON(code) == ERR_R_MALLOC_FAILURE;
    text = describe(code, data);
  }
  if (isMemory) throw std::bad_alloc();
  return text;
}

}  // namespace host
