#ifndef PLATFORM_COMMON_ABASE64ENCODE_H
#define PLATFORM_COMMON_ABASE64ENCODE_H

#include "platform/common/abuffer.h"
#include "platform/common/astring.h"

// Base64 of the standard alphabet.
class PLATFORM_API ABase64Encode {
 public:
  // The bytes that base64 text of the standard alphabet stands for. White space between the
  // characters is skipped. Text that is not valid base64 gives an empty buffer; so does empty text.
  // Any thread; does not block. May throw std::bad_alloc.
  static ABuffer decode(const AString& text);
};

#endif
