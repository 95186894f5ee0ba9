#ifndef HOST_CRYPTO_KEY_SPAN_H
#define HOST_CRYPTO_KEY_SPAN_H

#include <cstdint>

#include "platform/common/astring.h"
#include "platform/crypto/crypt_shim.h"

// A span is the work of one thread on one document, from the first KeptKeys to the last. In a span,
// keys are taken as unchanged and each error is logged once. Without a span every call is
// independent.
namespace host {

// The component that messages about passwords and keys name.
constexpr const wchar_t* c_cryptoComponent = L"Crypto";

// The number of this thread's span; no two spans have one number. 0: none.
std::uint64_t currentSpan();

// Logs an error, but each text only once in a span.
void logErrorOnce(const AString& text);

// Counts a password that is not empty and cannot be decrypted. One error at the end of the span
// says how many there were and what to do.
void reportUnopened(korvel_com::ZQ::crypto::EncryptionType type);

}  // namespace host

#endif
