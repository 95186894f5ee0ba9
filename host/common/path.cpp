#include "platform/common/afile.h"

std::wstring joinPath(const std::wstring& directory, const std::wstring& name) {
  if (directory.empty()) return name;
  const std::size_t last = directory.find_last_not_of(L'/');
  const std::size_t first = name.find_first_not_of(L'/');
  std::wstring path = directory.substr(0, last == std::wstring::npos ? 0 : last + 1);
  path += L'/';
  if (first != std::wstring::npos) path.append(name, first);
  return path;
}

void splitPath(const std::wstring& path, std::wstring* directory, std::wstring* name) {
  const std::size_t slash = path.rfind(L'/');
  std::wstring above;
  std::wstring last = path;
  if (slash != std::wstring::npos) {
    above = path.substr(0, slash == 0 ? 1 : slash);
    last = path.substr(slash + 1);
  }
  if (directory) directory->swap(above);
  if (name) name->swap(last);
}

APath::APath(const AString& directory, const AString& name)
    : m_path(joinPath(directory.str(), name.str())) {}
