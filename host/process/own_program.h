#ifndef HOST_PROCESS_OWN_PROGRAM_H
#define HOST_PROCESS_OWN_PROGRAM_H

#include <string>

#include "platform/export.h"

namespace host {

// Returns the full path of the program of this process, without symbolic links. Returns an empty
// text and sets errno if the system cannot tell it. May throw std::bad_alloc. Any thread.
PLATFORM_API std::string ownProgram();

}  // namespace host

#endif
