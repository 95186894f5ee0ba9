#include "host/config/settings_path.h"

#include <filesystem>

namespace host {

std::string fullDirectory(const std::string& path) {
  std::error_code failed;
  const std::filesystem::path absolute = std::filesystem::absolute(path, failed);
  std::string full = failed ? path : absolute.string();
  while (full.size() > 1 && full.back() == '/') full.pop_back();
  return full;
}

std::string pathFrom(const std::string& directory, const std::string& path) {
  return path.empty() || path.front() == '/' ? path : directory + "/" + path;
}

}  // namespace host
