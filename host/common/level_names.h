#ifndef HOST_COMMON_LEVEL_NAMES_H
#define HOST_COMMON_LEVEL_NAMES_H

#include <optional>
#include <string>

#include "platform/common/log.h"

// The names of the log levels in settings and log lines.
namespace host {

const char* levelName(LogLevel level);
std::optional<LogLevel> levelNamed(const std::string& name);

}  // namespace host

#endif
