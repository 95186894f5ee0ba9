#ifndef TOOLS_SITELIST_DOCTOR_AGENT_USER_H
#define TOOLS_SITELIST_DOCTOR_AGENT_USER_H

#include <sys/types.h>

#include <string>

namespace tool {

// The user to whom the data directory of an agent belongs, and the group of that directory.
struct AgentUser {
  uid_t id = 0;
  gid_t group = 0;
};

// Returns the name of a user or group, printable, or its number.
std::string userName(uid_t user);
std::string groupName(gid_t group);

// Returns whether the effective user can find out what the agent's user may do. This is the agent's
// user, or root.
bool canActAs(const AgentUser& user);

// Finds out whether the agent's user may use a file in the given way (R_OK, W_OK, X_OK). Root asks
// the system as that user, in a child process. Returns 0 or an errno; EPERM if canActAs is false.
int errorOfUse(const AgentUser& user, const std::string& path, int mode);

// Returns what to do if the effective user may not read the agent's files.
std::string runAs(const AgentUser& user);

}  // namespace tool

#endif
