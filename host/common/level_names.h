#ifndef HOST_COMMON_LEVEL_NAMES_H
#define HOST_COMMON_LEVEL_NAMES_H

#include <optional>
#include <string>

#include "platform/common/log.h"

// The log levels as settings and log lines name them.
namespace host {

const char* levelName(LogLevel level);
std::optional<LogLevel> levelNamed(const std::string& name);

}  // namespace host

#endif
