#ifndef HOST_CONFIG_SETTINGS_PATH_H
#define HOST_CONFIG_SETTINGS_PATH_H

#include <string>

namespace host {

inline std::string withoutTrailingSlash(std::string path) {
  while (path.size() > 1 && path.back() == '/') path.pop_back();
  return path;
}

// A relative path counts from the directory; an empty one stays empty.
inline std::string pathFrom(const std::string& directory, const std::string& path) {
  if (path.empty() || path.front() == '/') return path;
  return withoutTrailingSlash(directory) + "/" + path;
}

}  // namespace host

#endif
