#ifndef HOST_CONFIG_SETTINGS_PATH_H
#define HOST_CONFIG_SETTINGS_PATH_H

#include <string>

namespace host {

// Returns a directory as a full path without a trailing separator.
std::string fullDirectory(const std::string& path);

// Throws SettingsError if the full path of the data directory is too long. The site list library
// stores <dataDirectory>/etc in a text of limited length and would cut it.
void requireUsableLength(const std::string& dataDirectory);

// Returns `path` if it is absolute, otherwise "directory/path". An empty path stays empty.
std::string pathFrom(const std::string& directory, const std::string& path);

}  // namespace host

#endif
