#include "host/process/secret.h"

#include <openssl/crypto.h>

namespace host {

void wipe(void* memory, std::size_t size) noexcept {
  if (size > 0) OPENSSL_cleanse(memory, size);
}

}  // namespace host
