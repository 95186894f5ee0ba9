#include "tools/sitelist/cli/wrap.h"

#include <sstream>

#include "tools/sitelist/cli/text.h"

namespace tool {

std::string wrapped(const std::string& text, std::size_t indent, std::size_t columns) {
  std::istringstream words(text);
  std::string all;
  std::size_t used = 0;  // columns of the present line after the indent
  for (std::string word; words >> word;) {
    const std::size_t width = columnsOf(wide(word));
    if (used != 0 && columns != 0 && indent + used + 1 + width > columns) {
      all.append("\n").append(indent, ' ');
      used = 0;
    }
    if (used != 0) all += ' ';
    used += (used == 0 ? 0 : 1) + width;
    all += word;
  }
  return all;
}

}  // namespace tool
