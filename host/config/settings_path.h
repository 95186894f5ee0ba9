#ifndef HOST_CONFIG_SETTINGS_PATH_H
#define HOST_CONFIG_SETTINGS_PATH_H

#include <string>

namespace host {

// A directory as a full path without a trailing separator.
std::string fullDirectory(const std::string& path);

// A relative path counts from the directory; an empty one stays empty.
std::string pathFrom(const std::string& directory, const std::string& path);

}  // namespace host

#endif
