#include "host/common/level_names.h"

#include <cstddef>

namespace host {
namespace {

// In the order of the values of the levels
constexpr const char* c_names[] = {"detail", "info", "error", "internal-error", "off"};

}  // namespace

const char* levelName(LogLevel level) { return c_names[static_cast<int>(level)]; }

std::optional<LogLevel> levelNamed(const std::string& name) {
  int value = 0;
  for (const char* known : c_names) {
    if (name == known) return static_cast<LogLevel>(value);
    ++value;
  }
  return std::nullopt;
}

}  // namespace host
