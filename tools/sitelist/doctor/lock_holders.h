#ifndef TOOLS_SITELIST_DOCTOR_LOCK_HOLDERS_H
#define TOOLS_SITELIST_DOCTOR_LOCK_HOLDERS_H

#include <sys/stat.h>
#include <sys/types.h>

#include <set>
#include <string>

namespace tool {

// Returns the processes that have locked an open file, as the kernel's table of locks says. The set
// is empty on systems without such a table, and for processes that are not visible.
std::set<pid_t> holdersOf(const struct stat& file);

// Returns, for example, "process 123 (agentd, root)", printable.
std::string describeProcess(pid_t process);

}  // namespace tool

#endif
