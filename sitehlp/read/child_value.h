#ifndef SITEHLP_READ_CHILD_VALUE_H
#define SITEHLP_READ_CHILD_VALUE_H

#include <cstddef>
#include <string>

#include "platform/xml/advxmlparser.h"
#include "sitehlp/common/number.h"
#include "sitehlp/common/wipe.h"
#include "sitehlp/read/text_field.h"

// Values that are not plain text.
namespace sitehlp {

inline int readNumber(const AdvXMLParser::Attribute& attribute) {
  return toInt(attribute.GetNarrowValue());
}

int readNumber(const AdvXMLParser::Element& element);

// 0 when there is none that can be read.
unsigned int readUnsignedPort(const AdvXMLParser::Attribute& attribute);

// 0 or 1. A value that does not fit a text field is cut like that of one.
int readFlag(const AdvXMLParser::Element& element);

// The clear form of a protected password; empty when it cannot be recovered.
std::wstring recoverPassword(const AdvXMLParser::Element& element, bool useDecryptData);

template <std::size_t N>
void setPassword(wchar_t (&field)[N], const AdvXMLParser::Element& element, bool useDecryptData) {
  std::wstring clear = recoverPassword(element, useDecryptData);
  const WipeAtExit<std::wstring> wipe(clear);
  // As zero-terminated text: what a password holds behind a zero is not part of it.
  const std::size_t length = std::wcslen(clear.c_str());
  if (length < N) {
    setField(field, clear.c_str(), length);
  } else {
    CSitesHelper::CopyWStr(field, clear.c_str(), N);
  }
}

}  // namespace sitehlp

#endif
