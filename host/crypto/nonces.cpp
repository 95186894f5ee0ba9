#include "host/crypto/nonces.h"

#include <openssl/rand.h>

#include <algorithm>

#include "host/crypto/libcrypto.h"
#include "host/process/fork_generation.h"

namespace host {

bool Nonces::next(unsigned char* nonce) {
  const std::uint64_t generation = forkGeneration();
  if (generation == 0) {
    const LibcryptoUse use;
    return RAND_bytes(nonce, c_nonceSize) == 1;
  }
  if (m_left == 0 || m_generation != generation) {
    m_left = 0;
    const LibcryptoUse use;
    if (RAND_bytes(m_bytes, sizeof m_bytes) != 1) return false;
    m_left = c_count;
    m_generation = generation;
  }
  std::copy_n(m_bytes + --m_left * c_nonceSize, c_nonceSize, nonce);
  return true;
}

}  // namespace host
