#include "tools/sitelist/cli/matching.h"

#include <algorithm>
#include <utility>
#include <vector>

#include "tools/sitelist/cli/text.h"

namespace tool {
namespace {

constexpr std::size_t c_longest = 64;  // all names are shorter
constexpr std::size_t c_mostNames = 3;

std::string lower(std::string text) {
  std::transform(text.begin(), text.end(), text.begin(),
                 [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c; });
  return text;
}

// Returns how many letters must be inserted, removed, replaced or swapped with the next one.
std::size_t distance(const std::string& a, const std::string& b) {
  std::vector<std::size_t> beforeLast;
  std::vector<std::size_t> last;
  std::vector<std::size_t> row(b.size() + 1);
  for (std::size_t j = 0; j <= b.size(); ++j) row[j] = j;
  for (std::size_t i = 1; i <= a.size(); ++i) {
    beforeLast = std::exchange(last, row);
    row[0] = i;
    for (std::size_t j = 1; j <= b.size(); ++j) {
      const std::size_t replaced = last[j - 1] + (a[i - 1] == b[j - 1] ? 0 : 1);
      row[j] = std::min({last[j] + 1, row[j - 1] + 1, replaced});
      const bool areExchanged = i > 1 && j > 1 && a[i - 1] == b[j - 2] && a[i - 2] == b[j - 1];
      if (areExchanged) row[j] = std::min(row[j], beforeLast[j - 2] + 1);
    }
  }
  return row[b.size()];
}

// Returns the similar names of `known`, the most similar first.
std::vector<std::string> nearNames(const std::string& name, const std::vector<std::string>& known) {
  std::vector<std::pair<std::size_t, std::string>> found;
  const std::string wanted = lower(name.substr(0, c_longest));
  for (const std::string& each : known) {
    const std::string candidate = lower(each);
    const std::size_t letters = distance(wanted, candidate);
    const bool isPart = wanted.size() >= 3 && candidate.find(wanted) != std::string::npos;
    if (letters <= std::max<std::size_t>(1, wanted.size() / 4) || isPart) {
      found.emplace_back(letters, each);
    }
  }
  std::stable_sort(found.begin(), found.end(),
                   [](const auto& a, const auto& b) { return a.first < b.first; });
  const bool isOnlyCase = !found.empty() && found.front().first == 0;
  const std::size_t most = isOnlyCase ? 1 : c_mostNames;
  if (found.size() > most) found.resize(most);
  std::vector<std::string> names;
  for (auto& [letters, each] : found) names.push_back(std::move(each));
  return names;
}

}  // namespace

// At a mismatch the last "*" matches one more character.
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

std::string suggestion(const std::string& name, const std::vector<std::string>& known) {
  const std::vector<std::string> names = nearNames(name, known);
  std::string text;
  for (std::size_t i = 0; i < names.size(); ++i) {
    text += i == 0 ? "" : i + 1 == names.size() ? " or " : ", ";
    text += names[i];
  }
  return text.empty() ? "" : "; did you mean " + text + "?";
}

}  // namespace tool
