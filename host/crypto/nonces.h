#ifndef HOST_CRYPTO_NONCES_H
#define HOST_CRYPTO_NONCES_H

#include <cstddef>
#include <cstdint>

namespace host {

constexpr std::size_t c_nonceSize = 12;

// Random nonces. They are drawn in blocks, because each request to the random number generator is
// expensive. One object must not be used by two threads at the same time. A child process must not
// use nonces that its parent drew: both would encrypt with one key and one nonce.
class Nonces {
 public:
  // Writes c_nonceSize bytes that were never returned before. Returns false when the system has no
  // random numbers.
  bool next(unsigned char* nonce);

 private:
  static constexpr std::size_t c_count = 32;

  unsigned char m_bytes[c_count * c_nonceSize];
  std::size_t m_left = 0;
  std::uint64_t m_generation = 0;  // generation of the process that drew the block
};

}  // namespace host

#endif
