#ifndef SITEHLP_READ_CHILD_VALUE_H
#define SITEHLP_READ_CHILD_VALUE_H

#include <cstddef>
#include <string>

#include "platform/xml/advxmlparser.h"
#include "sitehlp/common/number.h"
#include "sitehlp/common/wipe.h"
#include "sitehlp/read/text_field.h"

// Functions that read values other than plain text.
namespace sitehlp {

inline int readNumber(const AdvXMLParser::Attribute& attribute) {
  return toInt(attribute.GetNarrowValue());
}

int readNumber(const AdvXMLParser::Element& element);

// Returns 0 when there is no readable port.
unsigned int readUnsignedPort(const AdvXMLParser::Attribute& attribute);

// Returns 0 or 1. A value is first cut to the length of a text field.
int readFlag(const AdvXMLParser::Element& element);

// Returns the clear form of an encrypted password. Returns an empty text when the password cannot
// be decrypted.
std::wstring recoverPassword(const AdvXMLParser::Element& element, bool useDecryptData);

template <std::size_t N>
void setPassword(wchar_t (&field)[N], const AdvXMLParser::Element& element, bool useDecryptData) {
  std::wstring clear = recoverPassword(element, useDecryptData);
  const WipeAtExit<std::wstring> wipe(clear);
  // The password ends at the first zero.
  const std::size_t length = std::wcslen(clear.c_str());
  if (length < N) {
    setField(field, clear.c_str(), length);
  } else {
    CSitesHelper::CopyWStr(field, clear.c_str(), N);
  }
}

}  // namespace sitehlp

#endif
