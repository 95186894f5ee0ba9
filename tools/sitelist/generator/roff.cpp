#include "tools/sitelist/generator/roff.h"

#include <algorithm>
#include <cctype>
#include <cstdio>

#include "tools/sitelist/cli/text.h"

namespace tool {
namespace {

constexpr std::size_t c_sourceColumns = 78;

std::string escaped(wchar_t c, bool isLiteral) {
  switch (c) {
    case L'\\':
      return "\\e";
    case L'-':
      return isLiteral ? "\\-" : "-";
    case L'\'':
      return isLiteral ? "\\(aq" : "'";
    case L'"':
      return "\\(dq";
    case L'`':
      return "\\(ga";
    case L'^':
      return "\\(ha";
    case L'~':
      return "\\(ti";
    default:
      break;
  }
  if (c < 0x80) return std::string(1, static_cast<char>(c));
  char name[16];
  std::snprintf(name, sizeof name, "\\[u%04X]", static_cast<unsigned>(c));
  return name;
}

std::string escaped(const std::string& text, bool isLiteral) {
  std::string result;
  for (const wchar_t c : wide(text)) result += escaped(c, isLiteral);
  return result;
}

std::string bold(const std::string& text) { return "\\fB" + roffLiteral(text) + "\\fP"; }

bool isWordPart(char c) { return std::isalnum(static_cast<unsigned char>(c)) || c == '-'; }

// Returns the end of the option that begins at `at`, or `at` if there is none.
std::size_t endOfOption(const std::string& text, std::size_t at) {
  if (text[at] != '-' || (at > 0 && isWordPart(text[at - 1]))) return at;
  const std::size_t name = text.find_first_not_of('-', at);
  if (name == std::string::npos || !std::isalpha(static_cast<unsigned char>(text[name]))) return at;
  std::size_t end = name;
  while (end < text.size() && isWordPart(text[end])) ++end;
  return end;
}

std::string marked(const std::string& text) {
  std::string result;
  std::size_t plain = 0;
  const auto flush = [&](std::size_t end) {
    result += escaped(text.substr(plain, end - plain), false);
  };
  for (std::size_t at = 0; at < text.size();) {
    const bool isQuoted = text[at] == '`';
    const std::size_t end = isQuoted ? text.find('`', at + 1) : endOfOption(text, at);
    if (end == std::string::npos || end == at) {
      ++at;
      continue;
    }
    flush(at);
    result += bold(isQuoted ? text.substr(at + 1, end - at - 1) : text.substr(at, end - at));
    at = plain = isQuoted ? end + 1 : end;
  }
  flush(text.size());
  return result;
}

bool endsInStop(const std::string& word) {
  const std::size_t last = word.find_last_not_of(')');
  return last != std::string::npos && std::string(".!?").find(word[last]) != std::string::npos;
}

bool endsSentence(const std::string& word) {
  return endsInStop(word) && word.size() > 1 && word.find("..") == std::string::npos;
}

// Returns whether the word is a path, or the name of a field with a capital letter inside.
bool isName(const std::string& word) {
  if (word.find_first_of("/_=") != std::string::npos) return true;
  for (std::size_t i = 1; i < word.size(); ++i) {
    if (std::islower(static_cast<unsigned char>(word[i - 1])) &&
        std::isupper(static_cast<unsigned char>(word[i]))) {
      return true;
    }
  }
  return false;
}

// Returns the word for the formatter. A name must not be hyphenated. A full stop inside a sentence
// must not end it.
std::string guarded(const std::string& word) {
  const std::string open = isName(word) ? "\\%" : "";
  return open + word + (endsInStop(word) && !endsSentence(word) ? "\\&" : "");
}

}  // namespace

std::string roffLiteral(const std::string& text) { return escaped(text, true); }

std::string roffText(const std::string& text) {
  std::string source;
  std::string line;
  const auto finish = [&] {
    if (line.empty()) return;
    source += (line[0] == '.' || line[0] == '\'' ? "\\&" : "") + line + '\n';
    line.clear();
  };
  const std::string all = marked(text);
  for (std::size_t at = 0; at < all.size();) {
    const std::size_t end = std::min(all.find(' ', at), all.size());
    const std::string word = all.substr(at, end - at);
    if (line.size() + 1 + word.size() > c_sourceColumns) finish();
    if (!word.empty()) line += (line.empty() ? "" : " ") + guarded(word);
    if (endsSentence(word)) finish();
    at = end + 1;
  }
  finish();
  return source;
}

}  // namespace tool
