#include "host/xml/xml_name.h"

#include <algorithm>
#include <cwchar>

#include "host/common/encoding.h"
#include "host/xml/well_formed.h"
#include "platform/xml/advxmlparser.h"

namespace host {
namespace {

bool isAscii(char c) { return static_cast<unsigned char>(c) < 0x80; }

// Of the plain characters; which ones beyond ASCII a name may have is for the parser to say that
// will read it.
bool canStart(wchar_t c) {
  return (c >= L'A' && c <= L'Z') || (c >= L'a' && c <= L'z') || c == L'_' || c == L':';
}

bool canFollow(wchar_t c) {
  return canStart(c) || (c >= L'0' && c <= L'9') || c == L'-' || c == L'.';
}

bool isAccepted(const std::string& name) {
  const std::string document = "<" + name + "/>";
  try {
    checkWellFormed(document.data(), document.size());
    return true;
  } catch (const AdvXMLParser::ParsingException&) {
    return false;
  } catch (const AdvXMLParser::ReadWriteException&) {
    return false;
  }
}

std::string repaired(const wchar_t* wide) {
  std::string name = toUtf8(wide, std::wcslen(wide));
  if (name.empty()) return "_";
  const auto replace = [&](auto isBad) { std::replace_if(name.begin(), name.end(), isBad, '_'); };
  replace([](char c) { return isAscii(c) && !canFollow(c); });
  if (isAscii(name[0]) && !canStart(name[0])) name[0] = '_';
  if (!std::all_of(name.begin(), name.end(), isAscii) && !isAccepted(name)) {
    replace([](char c) { return !isAscii(c); });
  }
  return name;
}

}  // namespace

XmlName::XmlName(const wchar_t* name) {
  std::size_t length = 0;
  if (canStart(name[0])) {
    while (length < sizeof m_short - 1 && canFollow(name[length])) {
      m_short[length] = static_cast<char>(name[length]);
      ++length;
    }
  }
  m_short[length] = '\0';
  if (length != 0 && name[length] == L'\0') return;
  m_long = repaired(name);
  m_text = m_long.c_str();
}

}  // namespace host
