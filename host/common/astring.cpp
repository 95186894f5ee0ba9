#include "platform/common/astring.h"

#include <cstring>

#include "host/common/encoding.h"

AString::AString(const wchar_t* text) {
  if (text) m_text = text;
}

AString::AString(const std::wstring& text) : m_text(text) {}

AString::AString(const char* utf8) {
  if (utf8) m_text = host::toWide(utf8, std::strlen(utf8));
}

AString::AString(int number) : m_text(std::to_wstring(number)) {}

AString& AString::append(const wchar_t* text) {
  if (text) m_text.append(text);
  return *this;
}

AString& AString::append(const std::wstring& text) {
  m_text.append(text);
  return *this;
}

AString& AString::append(const AString& text) { return append(text.m_text); }

AString& AString::append(int number) { return append(std::to_wstring(number)); }

AString& AString::append(long number) { return append(std::to_wstring(number)); }

AString& AString::append(unsigned int number) { return append(std::to_wstring(number)); }

ACharString::ACharString(const std::wstring& text) : m_text(host::toUtf8(text)) {}

ACharString::ACharString(const AString& text) : m_text(host::toUtf8(text.str())) {}
