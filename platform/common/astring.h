#ifndef PLATFORM_COMMON_ASTRING_H
#define PLATFORM_COMMON_ASTRING_H

#include <string>

#include "platform/export.h"

// Wide text (UTF-32 in wchar_t), used to build log lines, file names and converted values.
//
// Objects share nothing. One object must not be used by two threads at the same time. An operation
// that grows the text may throw std::bad_alloc and then leaves the object unchanged.
class PLATFORM_API AString {
 public:
  AString() = default;                 // empty
  AString(const wchar_t* text);        // null: an empty text
  AString(const std::wstring& text);   // a copy; an implicit conversion
  explicit AString(const char* utf8);  // bytes that are not valid UTF-8 become U+FFFD
  explicit AString(int number);        // decimal, with "-" if negative

  // Appends at the end and returns this object. Numbers are appended in decimal.
  AString& append(const wchar_t* text);
  AString& append(const std::wstring& text);
  AString& append(const AString& text);
  AString& append(int number);
  AString& append(long number);
  AString& append(unsigned int number);

  const std::wstring& str() const { return m_text; }       // valid as long as the object
  const wchar_t* c_str() const { return m_text.c_str(); }  // valid until the text changes
  bool empty() const { return m_text.empty(); }            // whether the text is empty

 private:
  std::wstring m_text;
};

// Narrow text (UTF-8), for file names that are passed to the system and for reading numbers. A
// character that is not a Unicode scalar value becomes U+FFFD.
class PLATFORM_API ACharString {
 public:
  // Converts the text. May throw std::bad_alloc.
  explicit ACharString(const std::wstring& text);
  explicit ACharString(const AString& text);

  const std::string& str() const { return m_text; }     // valid as long as the object
  const char* c_str() const { return m_text.c_str(); }  // the same, zero-terminated

 private:
  std::string m_text;
};

#endif
