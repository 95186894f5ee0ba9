#ifndef HOST_CRYPTO_KEY_SPAN_H
#define HOST_CRYPTO_KEY_SPAN_H

#include <cstdint>

#include "platform/common/astring.h"
#include "platform/crypto/crypt_shim.h"

// A span is the time from the first KeptKeys of a thread to the destruction of its last one. In a
// span, keys are assumed to be unchanged and each error is logged once. Calls outside of a span are
// independent.
namespace host {

// The component of messages about passwords and keys.
constexpr const wchar_t* c_cryptoComponent = L"Crypto";

// Returns the number of this thread's span, or 0 outside of a span. Each span has a different
// number.
std::uint64_t currentSpan();

// Logs an error, but the same text only once in a span.
void logErrorOnce(const AString& text);

// Counts a password that is not empty and cannot be decrypted. At the end of the span, one error
// reports the number and gives advice.
void reportUnopened(korvel_com::ZQ::crypto::EncryptionType type);

}  // namespace host

#endif
