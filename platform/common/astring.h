#ifndef PLATFORM_COMMON_ASTRING_H
#define PLATFORM_COMMON_ASTRING_H

#include <string>

#include "platform/export.h"

// Wide text (UTF-32 in wchar_t) that log lines, file names and converted values are built in.
//
// Plain value types: no sharing, no locks, usable from any thread as long as one object is used by
// one thread at a time. Every operation that grows the text may throw std::bad_alloc and then
// leaves the object as it was.
class PLATFORM_API AString {
 public:
  AString() = default;                 // empty
  AString(const wchar_t* text);        // a null pointer counts as empty text
  AString(const std::wstring& text);   // a copy; a text stands wherever an AString is wanted
  explicit AString(const char* utf8);  // bytes that are not valid UTF-8 become U+FFFD
  explicit AString(int number);        // decimal, "-" in front of a negative number

  // Append at the end and return this object. Numbers are written in decimal.
  AString& append(const wchar_t* text);
  AString& append(const std::wstring& text);
  AString& append(const AString& text);
  AString& append(int number);
  AString& append(long number);
  AString& append(unsigned int number);

  const std::wstring& str() const { return m_text; }       // valid as long as the object
  const wchar_t* c_str() const { return m_text.c_str(); }  // valid until the text changes
  bool empty() const { return m_text.empty(); }            // whether there is no text

 private:
  std::wstring m_text;
};

// Narrow text (UTF-8), the form in which the operating system takes file names and in which numbers
// are read. Characters that are no Unicode scalar value become U+FFFD.
class PLATFORM_API ACharString {
 public:
  // The text converted. May throw std::bad_alloc.
  explicit ACharString(const std::wstring& text);
  explicit ACharString(const AString& text);

  const std::string& str() const { return m_text; }     // valid as long as the object
  const char* c_str() const { return m_text.c_str(); }  // the same, zero-terminated

 private:
  std::string m_text;
};

#endif
