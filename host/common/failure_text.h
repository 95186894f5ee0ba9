#ifndef HOST_COMMON_FAILURE_TEXT_H
#define HOST_COMMON_FAILURE_TEXT_H

#include <string>

#include "platform/common/astring.h"

namespace host {

// The component that the host's own messages name.
extern const wchar_t* const c_logComponent;

// The system's text for an errno.
std::string errorText(int error);

// One log text for a failed system call: what could not be done, with which file, and why.
AString failureText(const char* what, const std::string& path, int error);

}  // namespace host

#endif
