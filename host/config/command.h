#ifndef HOST_CONFIG_COMMAND_H
#define HOST_CONFIG_COMMAND_H

#include <string>
#include <vector>

namespace host {

// Runs a program, given by full path, with arguments and without a shell, and waits for its end.
// It reads nothing, its standard output goes to standard error, and it inherits no other descriptor
// and no signal setting. Returns an empty text when it ended with status 0, else what went wrong.
std::string runCommand(const std::vector<std::string>& words);

}  // namespace host

#endif
