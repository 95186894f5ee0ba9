#ifndef HOST_PROCESS_FAILURE_TEXT_H
#define HOST_PROCESS_FAILURE_TEXT_H

#include <string>

#include "platform/common/astring.h"

namespace host {

// The component of the host library's own messages.
extern const wchar_t* const c_logComponent;

// Returns the system's text for an errno.
std::string errorText(int error);

// Returns the log text for a failed system call: what failed, the file and the reason.
AString failureText(const char* what, const std::string& path, int error);

}  // namespace host

#endif
