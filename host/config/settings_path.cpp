#include "host/config/settings_path.h"

#include <filesystem>

#include "host/agent.h"
#include "host/common/encoding.h"

namespace host {
namespace {

constexpr std::size_t c_mostCharacters = 259;
constexpr const char* c_longestBelow = "/etc";

}  // namespace

std::string fullDirectory(const std::string& path) {
  std::error_code failed;
  const std::filesystem::path absolute = std::filesystem::absolute(path, failed);
  std::string full = failed ? path : absolute.string();
  while (full.size() > 1 && full.back() == '/') full.pop_back();
  return full;
}

void requireUsableLength(const std::string& dataDirectory) {
  const std::string path = dataDirectory + c_longestBelow;
  const std::size_t length = toWide(path.data(), path.size()).size();
  if (length <= c_mostCharacters) return;
  throw SettingsError("the data directory " + dataDirectory + " is too long: with " +
                      c_longestBelow + " it has " + std::to_string(length) +
                      " characters; at most " + std::to_string(c_mostCharacters) + " are allowed");
}

std::string pathFrom(const std::string& directory, const std::string& path) {
  return path.empty() || path.front() == '/' ? path : directory + "/" + path;
}

}  // namespace host
