#include "host/xml/xml_name.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cwchar>

#include "host/common/encoding.h"
#include "host/xml/well_formed.h"
#include "platform/xml/advxmlparser.h"

namespace host {
namespace {

bool isAscii(char c) { return static_cast<unsigned char>(c) < 0x80; }

constexpr unsigned char c_first = 1;  // may be the first character of a name
constexpr unsigned char c_other = 2;  // may be another character of a name

constexpr std::array<unsigned char, 0x80> placesInNames() {
  std::array<unsigned char, 0x80> places{};
  for (std::size_t c = 'A'; c <= 'Z'; ++c) places[c] = places[c | 0x20] = c_first | c_other;
  places['_'] = places[':'] = c_first | c_other;
  for (std::size_t c = '0'; c <= '9'; ++c) places[c] = c_other;
  places['-'] = places['.'] = c_other;
  return places;
}
constexpr std::array<unsigned char, 0x80> c_places = placesInNames();

// Returns whether a plain character may be at this place in a name. The parser that reads the
// document checks all other characters.
bool fits(wchar_t c, unsigned char place) {
  const auto at = static_cast<std::uint32_t>(c);
  return at < c_places.size() && (c_places[at] & place) != 0;
}
bool canStart(wchar_t c) { return fits(c, c_first); }
bool canFollow(wchar_t c) { return fits(c, c_other); }

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

std::size_t writePlainName(const wchar_t* name, char* out, std::size_t capacity) {
  if (!canStart(name[0])) return 0;
  std::size_t length = 0;
  while (length < capacity - 1 && canFollow(name[length])) {
    out[length] = static_cast<char>(name[length]);
    ++length;
  }
  return name[length] == L'\0' ? length : 0;
}

XmlName::XmlName(const wchar_t* name) {
  const std::size_t length = writePlainName(name, m_short, sizeof m_short);
  m_short[length] = '\0';
  if (length != 0) return;
  m_long = repaired(name);
  m_text = m_long.c_str();
}

}  // namespace host
