#ifndef HOST_XML_XML_NAME_H
#define HOST_XML_XML_NAME_H

#include <cstddef>
#include <string>

namespace host {

// Writes a plain name of less than `capacity` characters, without a terminator. Returns its length,
// or 0 if the name is not plain or too long. The content of `out` is then unspecified.
std::size_t writePlainName(const wchar_t* name, char* out, std::size_t capacity);

// The UTF-8 form of the name of a new element or attribute. A character that a name must not have
// becomes "_", because a document with an invalid name cannot be read. A short plain name needs no
// allocation; nearly all names are short and plain.
class XmlName {
 public:
  explicit XmlName(const wchar_t* name);
  explicit XmlName(const std::wstring& name) : XmlName(name.c_str()) {}
  XmlName(const XmlName&) = delete;
  XmlName& operator=(const XmlName&) = delete;

  const char* c_str() const { return m_text; }

 private:
  char m_short[64];
  std::string m_long;
  const char* m_text = m_short;
};

}  // namespace host

#endif
