#include "tools/sitelist/cli/text.h"

#include <locale.h>
#include <wchar.h>
#include <wctype.h>
#if __has_include(<xlocale.h>)
#include <xlocale.h>
#endif

#include <algorithm>
#include <cstddef>
#include <cstdio>
#include <cwchar>

#include "platform/common/astring.h"
#include "tools/sitelist/cli/shown_name.h"

namespace tool {
namespace {

bool isHarmful(wchar_t c) {
  return c < 0x20 || (c >= 0x7F && c <= 0x9F) || c == 0x61C || c == 0x200E || c == 0x200F ||
         (c >= 0x2028 && c <= 0x202E) || (c >= 0x2066 && c <= 0x2069);
}

// The soft hyphen, spaces without a width and the invisible operators. Texts that differ only in
// these look the same.
bool isInvisible(wchar_t c) {
  return c == 0xAD || c == 0x200B || (c >= 0x2060 && c <= 0x2064) || c == 0xFEFF;
}

// Returns whether the text at `at` looks like an escape of printable().
bool isLikeEscape(const std::wstring& text, std::size_t at) {
  constexpr std::size_t c_length = 6;
  return text.compare(at, 2, L"\\u") == 0 && at + c_length <= text.size() &&
         std::all_of(text.begin() + static_cast<std::ptrdiff_t>(at) + 2,
                     text.begin() + static_cast<std::ptrdiff_t>(at + c_length),
                     [](wchar_t c) { return std::wcschr(L"0123456789ABCDEFabcdef", c); });
}

locale_t openUnicodeLocale() {
  for (const char* name : {"C.UTF-8", "UTF-8", "en_US.UTF-8"}) {
    if (const locale_t found = ::newlocale(LC_CTYPE_MASK, name, nullptr)) return found;
  }
  return nullptr;
}

// Returns null if the machine has no Unicode locale.
locale_t unicodeLocale() {
  static const locale_t locale = openUnicodeLocale();
  return locale;
}

// Sets the Unicode locale for this thread, if there is one. The locale of the process is unchanged.
class InUnicode {
 public:
  InUnicode() : m_before(::uselocale(unicodeLocale())) {}
  ~InUnicode() { ::uselocale(m_before); }
  InUnicode(const InUnicode&) = delete;
  InUnicode& operator=(const InUnicode&) = delete;

 private:
  locale_t m_before;
};

}  // namespace

std::wstring wide(const std::string& utf8) { return AString(utf8.c_str()).str(); }
std::string narrow(const std::wstring& text) { return ACharString(text).str(); }

std::wstring printable(const std::wstring& text) {
  std::wstring result;
  for (std::size_t at = 0; at < text.size(); ++at) {
    const wchar_t c = text[at];
    if (isHarmful(c) || isInvisible(c) || isLikeEscape(text, at)) {
      char escape[16];
      std::snprintf(escape, sizeof(escape), "\\u%04X", static_cast<unsigned>(c));
      result += wide(escape);
    } else {
      result += c;
    }
  }
  return result;
}

std::string shown(const std::wstring& text) { return narrow(printable(withShownNames(text))); }
std::string shown(const std::string& utf8) { return shown(wide(utf8)); }

// Converts to upper case first, because a letter such as sigma has two lower-case forms.
std::wstring caseFolded(const std::wstring& text) {
  const InUnicode inUnicode;
  std::wstring folded = text;
  for (wchar_t& c : folded)
    c = static_cast<wchar_t>(::towlower(::towupper(static_cast<wint_t>(c))));
  return folded;
}

// Each character has one column if it is ASCII, or if the machine has no Unicode locale. ASCII is
// tested first, because finding the locale is slow.
std::size_t columnsOf(const std::wstring& text) {
  const bool isAscii = std::all_of(text.begin(), text.end(), [](wchar_t c) { return c < 0x80; });
  if (isAscii || !unicodeLocale()) return text.size();
  const InUnicode inUnicode;
  std::size_t columns = 0;
  for (const wchar_t c : text) {
    const int width = ::wcwidth(c);
    columns += width < 0 ? 1U : static_cast<std::size_t>(width);
  }
  return columns;
}

std::string withCommas(std::size_t number) {
  std::string text = std::to_string(number);
  for (std::size_t at = text.size(); at > 3;) text.insert(at -= 3, ",");
  return text;
}

std::wstring cutTo(const std::wstring& text, std::size_t columns, Kept kept) {
  if (columnsOf(text) <= columns) return text;
  std::wstring part = text;
  while (!part.empty() && columnsOf(part) + 1 > columns) {
    part.erase(kept == Kept::End ? 0 : part.size() - 1, 1);
  }
  return kept == Kept::End ? L'…' + part : part + L'…';
}

}  // namespace tool
