#include "sitehlp/read/child_value.h"

#include "sitehlp/common/password.h"
#include "sitehlp/sites_helper.h"

namespace sitehlp {

int readNumber(const AdvXMLParser::Element& element) {
  std::string narrow;
  element.GetNarrowValue(narrow);
  return toInt(narrow.c_str());
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
