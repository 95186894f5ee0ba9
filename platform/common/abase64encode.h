#ifndef PLATFORM_COMMON_ABASE64ENCODE_H
#define PLATFORM_COMMON_ABASE64ENCODE_H

#include "platform/common/abuffer.h"
#include "platform/common/astring.h"

// Base64 of the standard alphabet.
class PLATFORM_API ABase64Encode {
 public:
  // Decodes base64 text of the standard alphabet. White space between the characters is skipped.
  // Returns an empty buffer for empty text and for text that is not valid base64. Any thread; does
  // not block. May throw std::bad_alloc.
  static ABuffer decode(const AString& text);
};

#endif
