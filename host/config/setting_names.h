#ifndef HOST_CONFIG_SETTING_NAMES_H
#define HOST_CONFIG_SETTING_NAMES_H

#include <string>
#include <vector>

#include "platform/export.h"

namespace host {

// All settings that an agent.toml may have. "mesh.load_command" is the key load_command in the
// table mesh.
PLATFORM_API std::vector<std::string> settingNames();

}  // namespace host

#endif
