#ifndef HOST_PROCESS_COMMAND_H
#define HOST_PROCESS_COMMAND_H

#include <string>
#include <vector>

#include "host/process/output_lines.h"

namespace host {

// Runs a program, given by full path, without a shell and waits for its end. After `timeoutSeconds`
// the program and its process group get SIGTERM, and SIGKILL two seconds later. A program that
// still runs four seconds after that is left running. Its standard input is empty, and `output`
// receives what it prints. It inherits no descriptors and no signal settings. Processes that it
// leaves running get SIGPIPE when they print, or EPIPE if they ignore that signal.
//
// Returns an empty text when the program ended with status 0, otherwise a description of the
// failure. The result does not depend on how the process handles SIGCHLD or waits for its children.
// Any thread. The caller must not hold a ForkLock.
std::string runCommand(const std::vector<std::string>& words, unsigned int timeoutSeconds,
                       OutputLines& output);

}  // namespace host

#endif
