#include "host/crypto/libcrypto.h"

#include <openssl/crypto.h>
#include <openssl/err.h>

#include <new>

namespace host {
namespace {

bool g_isReady = false;  // guarded by Guarded::Libcrypto

// libcrypto frees what it keeps for a thread when that ends, under a lock of its own. Done here,
// that happens under ours as well.
struct ThreadEnd {
  bool isUsed = false;
  ~ThreadEnd() {
    const ForkLock lock(Guarded::Libcrypto);
    OPENSSL_thread_stop();
  }
};
thread_local ThreadEnd t_end;

std::string describe(unsigned long code, const char* data) {
  const char* const reason = ERR_reason_error_string(code);
  std::string text = reason ? reason : "error " + std::to_string(code);
  if (data && *data) text.append(" (").append(data).append(")");
  return text;
}

}  // namespace

LibcryptoUse::LibcryptoUse() noexcept : m_lock(Guarded::Libcrypto) {
  t_end.isUsed = true;
  if (g_isReady) return;
  OPENSSL_init_crypto(OPENSSL_INIT_NO_ATEXIT | OPENSSL_INIT_LOAD_CONFIG, nullptr);
  g_isReady = true;
}

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
