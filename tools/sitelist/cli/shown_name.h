#ifndef TOOLS_SITELIST_CLI_SHOWN_NAME_H
#define TOOLS_SITELIST_CLI_SHOWN_NAME_H

#include <string>

namespace tool {

// Makes shown() and reports name a temporary file as the user knows it, until the process ends.
// `path` is the path of the temporary file, or of its directory. One thread only.
void showAs(const std::string& path, const std::string& name);

// Returns the text with the names in place of the paths.
std::wstring withShownNames(std::wstring text);

// Returns the name of a file in a report. It is valid UTF-8.
std::string reportedName(const std::string& path);

}  // namespace tool

#endif
