#ifndef SITEHLP_READ_TEXT_FIELD_H
#define SITEHLP_READ_TEXT_FIELD_H

#include <cstddef>
#include <cwchar>
#include <string>

#include "platform/xml/advxmlparser.h"
#include "sitehlp/sites_helper.h"

// Functions that copy texts from the document into the fields of a record. The result is that of
// CSitesHelper::CopyWStr on the whole value. A field that is already zero is not cleared again.
namespace sitehlp {

// `text` has `length` characters. It needs no terminator and must not contain a zero.
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

// Copies the value of an attribute or an element. A null handle has an empty value.
template <std::size_t N, typename Source>
void setField(wchar_t (&field)[N], const Source& source) {
  if (field[0] != L'\0') std::wmemset(field, L'\0', N);
  if (source.CopyValue(field, N)) return;
  CSitesHelper::CopyWStr(field, source.GetValue().c_str(), N);
}

}  // namespace sitehlp

#endif
