#include "host/xml/tree_text.h"

#include <utf8.h>

#include <algorithm>
#include <cstring>

#include "host/common/ascii.h"
#include "host/common/encoding.h"

namespace host {
namespace {

// Writes the wide form of valid UTF-8 to [out, end). Returns the end of the written characters, or
// null when there is not enough space.
wchar_t* decode(const char* utf8, wchar_t* out, wchar_t* end) {
  const char* const utf8End = utf8 + std::strlen(utf8);
  while (utf8 != utf8End) {
    const auto room = static_cast<std::size_t>(end - out);
    const std::size_t ascii =
        widenAscii(utf8, std::min(room, static_cast<std::size_t>(utf8End - utf8)), out);
    utf8 += ascii;
    out += ascii;
    for (; utf8 != utf8End && static_cast<unsigned char>(*utf8) >= 0x80; ++out) {
      if (out == end) return nullptr;
      *out = static_cast<wchar_t>(utf8::unchecked::next(utf8));
    }
    if (out == end && utf8 != utf8End) return nullptr;
  }
  return out;
}

}  // namespace

bool equals(const char* utf8, const wchar_t* wide) {
  while (*utf8 != '\0') {
    const auto byte = static_cast<unsigned char>(*utf8);
    const std::uint32_t c = byte < 0x80 ? (++utf8, byte) : utf8::unchecked::next(utf8);
    if (c != static_cast<std::uint32_t>(*wide)) return false;
    ++wide;
  }
  return *wide == L'\0';
}

std::size_t findName(const char* utf8, const wchar_t* const* names, std::size_t count) {
  // Compares the first characters first, because they differ in most names.
  const auto byte = static_cast<unsigned char>(*utf8);
  const auto first = static_cast<wchar_t>(byte < 0x80 ? byte : utf8::unchecked::peek_next(utf8));
  for (std::size_t i = 0; i < count; ++i) {
    if (*names[i] == first && equals(utf8, names[i])) return i;
  }
  return count;
}

namespace {

// Calls `take` for each text directly in the node until it returns false. Iterators would call
// pugixml four times as often.
template <typename Take>
bool eachText(pugi::xml_node node, Take take) {
  for (pugi::xml_node child = node.first_child();; child = child.next_sibling()) {
    switch (child.type()) {
      case pugi::node_null:
        return true;
      case pugi::node_pcdata:
      case pugi::node_cdata:
        if (!take(child.value())) return false;
        break;
      default:
        break;
    }
  }
}

}  // namespace

bool isText(pugi::xml_node node) {
  return node.type() == pugi::node_pcdata || node.type() == pugi::node_cdata;
}

bool isGiven(const wchar_t* name) { return name && *name != L'\0'; }

bool isElement(pugi::xml_node node, const wchar_t* name) {
  return node.type() == pugi::node_element && (!isGiven(name) || equals(node.name(), name));
}

pugi::xml_attribute findAttribute(pugi::xml_node node, const wchar_t* name) {
  return node.find_attribute(
      [name](pugi::xml_attribute attribute) { return equals(attribute.name(), name); });
}

bool hasAttribute(pugi::xml_node node, const wchar_t* name, const wchar_t* value) {
  if (!isGiven(name)) return true;
  const pugi::xml_attribute attribute = findAttribute(node, name);
  return attribute && equals(attribute.value(), value ? value : L"");
}

std::wstring valueOf(pugi::xml_node node) {
  std::wstring value;
  eachText(node, [&](const char* text) { return appendWide(text, std::strlen(text), value); });
  return value;
}

void narrowValueOf(pugi::xml_node node, std::string& value) {
  value.clear();
  eachText(node, [&](const char* text) {
    value.append(text);
    return true;
  });
}

bool copyValue(pugi::xml_attribute attribute, wchar_t* dest, std::size_t capacity) {
  if (capacity == 0) return false;
  wchar_t* const end = decode(attribute.value(), dest, dest + capacity - 1);
  if (!end) return false;
  *end = L'\0';
  return true;
}

bool copyValue(pugi::xml_node node, wchar_t* dest, std::size_t capacity) {
  if (capacity == 0) return false;
  wchar_t* const last = dest + capacity - 1;
  if (!eachText(node, [&](const char* text) {
        dest = decode(text, dest, last);
        return dest != nullptr;
      })) {
    return false;
  }
  *dest = L'\0';
  return true;
}

}  // namespace host
