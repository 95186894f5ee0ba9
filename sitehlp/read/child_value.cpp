#include "sitehlp/read/child_value.h"

#include "sitehlp/common/password.h"
#include "sitehlp/sites_helper.h"

namespace sitehlp {

int readNumber(const AdvXMLParser::Element& element) {
  std::string narrow;
  element.GetNarrowValue(narrow);
  return toInt(narrow.c_str());
}

unsigned int readUnsignedPort(const AdvXMLParser::Attribute& attribute) {
  unsigned int port = 0;
  wchar_t text[64];
  if (attribute.IsNull()) return port;
  if (attribute.CopyValue(text, sizeof text / sizeof text[0])) {
    toUnsigned(text, port);
  } else {
    toUnsigned(attribute.GetValue().c_str(), port);
  }
  return port;
}

int readFlag(const AdvXMLParser::Element& element) {
  wchar_t text[c_textCapacity] = {};
  setField(text, element);
  return toInt(ACharString(AString(text)).c_str()) != 0 ? 1 : 0;
}

std::wstring recoverPassword(const AdvXMLParser::Element& element, bool useDecryptData) {
  std::wstring clear;
  if (useDecryptData) {
    decrypt_data(element.GetValue(), clear);
  } else {
    EncryptDecryptPassword(element.GetValue(), clear, false);
  }
  return clear;
}

}  // namespace sitehlp
