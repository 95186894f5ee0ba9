#include "tools/sitelist/cli/pattern.h"

#include <cstddef>

#include "tools/sitelist/cli/text.h"

namespace tool {

// At a mismatch the last "*" takes one character more.
bool matchesPattern(const std::wstring& text, const std::wstring& pattern) {
  const std::wstring wanted = caseFolded(pattern);
  const std::wstring given = caseFolded(text);
  std::size_t at = 0;
  std::size_t star = std::wstring::npos;
  std::size_t behindStar = 0;
  for (std::size_t i = 0; i < given.size();) {
    if (at < wanted.size() && wanted[at] == L'*') {
      star = at++;
      behindStar = i;
    } else if (at < wanted.size() && (wanted[at] == L'?' || wanted[at] == given[i])) {
      ++at;
      ++i;
    } else if (star != std::wstring::npos) {
      at = star + 1;
      i = ++behindStar;
    } else {
      return false;
    }
  }
  return wanted.find_first_not_of(L'*', at) == std::wstring::npos;
}

}  // namespace tool
