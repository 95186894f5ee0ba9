#ifndef HOST_CRYPTO_NONCES_H
#define HOST_CRYPTO_NONCES_H

#include <cstddef>
#include <cstdint>

namespace host {

constexpr std::size_t c_nonceSize = 12;

// Random nonces. They are drawn several at a time, because the random number generator costs far
// more by the request than by the byte. One object is used by one thread at a time; a child process
// does not use what its parent drew, or the two would seal under one key with one nonce.
class Nonces {
 public:
  // Writes c_nonceSize bytes that were never given out before. False when the system has no random
  // numbers to give.
  bool next(unsigned char* nonce);

 private:
  static constexpr std::size_t c_count = 32;

  unsigned char m_bytes[c_count * c_nonceSize];
  std::size_t m_left = 0;
  std::uint64_t m_generation = 0;  // of the process that drew them
};

}  // namespace host

#endif
