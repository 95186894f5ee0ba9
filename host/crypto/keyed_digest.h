#ifndef HOST_CRYPTO_KEYED_DIGEST_H
#define HOST_CRYPTO_KEYED_DIGEST_H

#include <array>
#include <cstddef>
#include <optional>

namespace host {

// A digest of bytes under a random key that only this process has. Two different texts have the
// same digest with a probability below 2^-100, whoever wrote them, as long as nobody outside the
// process sees the key or a digest.
using KeyedDigest = std::array<unsigned char, 16>;

// Returns the digest of a short head followed by bytes, of which there is at least one and at most
// INT_MAX. Returns nothing if libcrypto does not offer
// AES-256-GCM or the system has no random numbers. Throws std::bad_alloc. Any thread.
std::optional<KeyedDigest> keyedDigest(const std::array<unsigned char, 2>& head, const char* bytes,
                                       std::size_t size);

}  // namespace host

#endif
