#include "tools/sitelist/cli/full_path.h"

#include <filesystem>
#include <system_error>

#include "tools/sitelist/cli/failure.h"

namespace tool {

std::string fullPath(const std::string& path) {
  std::error_code error;
  const std::filesystem::path full = std::filesystem::absolute(path, error);
  if (!error) return full.lexically_normal().string();
  throw failureAt(
      path, exitFile,
      "the path is relative, and the current directory cannot be determined: " + error.message(),
      "change to another directory, or give the full path");
}

}  // namespace tool
