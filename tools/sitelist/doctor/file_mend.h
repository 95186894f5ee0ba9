#ifndef TOOLS_SITELIST_DOCTOR_FILE_MEND_H
#define TOOLS_SITELIST_DOCTOR_FILE_MEND_H

#include <sys/types.h>

#include <string>
#include <vector>

#include "tools/sitelist/doctor/agent_user.h"
#include "tools/sitelist/doctor/file_table.h"

namespace tool {

// Returns whether root may give such a file to the agent's user at all. The user may have moved a
// secret file of root there. The content must therefore prove what the file is.
bool canBeGiven(const FileRule& rule);

// Gives a file or directory of root to the agent's user and group, if its content is the expected
// one. Returns an empty text, or why it was not given.
std::string giveToAgentsUser(const std::string& path, const FileRule& rule,
                             const std::vector<FileRule>& rules, const AgentUser& user);

}  // namespace tool

#endif
