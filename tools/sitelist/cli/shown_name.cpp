#include "tools/sitelist/cli/shown_name.h"

#include <utility>
#include <vector>

#include "tools/sitelist/cli/text.h"

namespace tool {
namespace {

struct ShownName {
  std::wstring path;
  std::wstring name;
};

std::vector<ShownName>& shownNames() {
  static std::vector<ShownName> names;
  return names;
}

}  // namespace

void showAs(const std::string& path, const std::string& name) {
  shownNames().push_back({wide(path), wide(name)});
}

// The last path comes first, because a file is added after its directory.
std::wstring withShownNames(std::wstring text) {
  const std::vector<ShownName>& names = shownNames();
  for (auto each = names.rbegin(); each != names.rend(); ++each) {
    for (std::size_t at = text.find(each->path); at != std::wstring::npos;
         at = text.find(each->path, at + each->name.size())) {
      text.replace(at, each->path.size(), each->name);
    }
  }
  return text;
}

std::string reportedName(const std::string& path) { return narrow(withShownNames(wide(path))); }

}  // namespace tool
