#ifndef HOST_CRYPTO_KEYED_DIGEST_H
#define HOST_CRYPTO_KEYED_DIGEST_H

#include <array>
#include <cstddef>
#include <optional>

namespace host {

// The mutex of libcrypto is held while a digest is made.
constexpr std::size_t c_longestDigested = std::size_t{4} << 20;

// A digest of bytes under a random key that only this process and its forked children have. Two
// different texts have the same digest with a probability below 2^-100, whoever wrote them, as long
// as nobody else sees the key or a digest.
using KeyedDigest = std::array<unsigned char, 16>;

// Returns the digest of a short head followed by at least one byte. Returns nothing for more than
// c_longestDigested bytes, if libcrypto does not offer AES-256-GCM or fails, or if the system has
// no random numbers. Throws std::bad_alloc. Any thread.
std::optional<KeyedDigest> keyedDigest(const std::array<unsigned char, 2>& head, const char* bytes,
                                       std::size_t size);

}  // namespace host

#endif
