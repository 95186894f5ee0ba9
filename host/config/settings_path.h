#ifndef HOST_CONFIG_SETTINGS_PATH_H
#define HOST_CONFIG_SETTINGS_PATH_H

#include <string>

namespace host {

// A directory as a full path without a trailing separator.
std::string fullDirectory(const std::string& path);

// Throws SettingsError for a data directory, as a full path, that is too long to be one: the site
// list library keeps <dataDirectory>/etc in a text of limited length, and would cut it.
void requireUsableLength(const std::string& dataDirectory);

// A relative path counts from the directory; an empty one stays empty.
std::string pathFrom(const std::string& directory, const std::string& path);

}  // namespace host

#endif
