#ifndef TOOLS_SITELIST_AGENT_OWNER_H
#define TOOLS_SITELIST_AGENT_OWNER_H

#include <sys/types.h>

#include <string>

namespace tool {

struct Owner {
  uid_t user = 0;
  gid_t group = 0;
};

// Returns a user, given by name or number, and the user's group. Fails when there is no such user.
Owner findOwner(const std::string& user);

// Makes a directory belong to the owner. What root creates in it then belongs to the same user. The
// directory must be empty unless it already belongs to the user. Fails when the owner cannot be
// changed. Follows a symbolic link only if it belongs to the effective user or to root.
void giveDirectory(const std::string& directory, const Owner& owner);

}  // namespace tool

#endif
