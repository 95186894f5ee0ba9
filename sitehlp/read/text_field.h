#ifndef SITEHLP_READ_TEXT_FIELD_H
#define SITEHLP_READ_TEXT_FIELD_H

#include <cstddef>
#include <cwchar>
#include <string>

#include "platform/xml/advxmlparser.h"
#include "sitehlp/sites_helper.h"

// Filling the text fields of a record straight from the document. The outcome is that of
// CSitesHelper::CopyWStr on the whole value; a field that is still zero is not zeroed again.
namespace sitehlp {

// `length` characters, which need no terminator and hold no zero.
template <std::size_t N>
void setField(wchar_t (&field)[N], const wchar_t* text, std::size_t length) {
  if (length >= N) {
    CSitesHelper::CopyWStr(field, std::wstring(text, length).c_str(), N);
    return;
  }
  if (field[0] != L'\0') std::wmemset(field, L'\0', N);
  std::wmemcpy(field, text, length);
}

template <std::size_t N>
void setField(wchar_t (&field)[N], const std::wstring& text) {
  setField(field, text.data(), text.size());
}

// The value of an attribute or an element; a null handle counts as empty text.
template <std::size_t N, typename Source>
void setField(wchar_t (&field)[N], const Source& source) {
  if (field[0] != L'\0') std::wmemset(field, L'\0', N);
  if (source.CopyValue(field, N)) return;
  CSitesHelper::CopyWStr(field, source.GetValue().c_str(), N);
}

}  // namespace sitehlp

#endif
