#ifndef HOST_PROCESS_COMMAND_H
#define HOST_PROCESS_COMMAND_H

#include <string>
#include <vector>

#include "host/process/output_lines.h"

namespace host {

// Runs a program, given by full path, with arguments and without a shell, and waits for its end, at
// most `timeoutSeconds`: then it and its process group get SIGTERM, and SIGKILL two seconds later.
// The program reads nothing, what it prints goes to `output`, and it inherits no descriptor and no
// signal setting. Processes that it leaves running get SIGPIPE when they print, or EPIPE where they
// ignore that signal.
//
// Returns an empty text when the program ended with status 0, else what went wrong. What the
// process does with its own children and with SIGCHLD changes nothing. Any thread; the caller holds
// no ForkLock.
std::string runCommand(const std::vector<std::string>& words, unsigned int timeoutSeconds,
                       OutputLines& output);

}  // namespace host

#endif
