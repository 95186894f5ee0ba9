#include "tools/sitelist/doctor/checks.h"

#include "tools/sitelist/cli/read_error.h"

namespace tool {

void addUnchecked(const ExaminedAgent& agent, const std::string& path, int error,
                  Findings& findings) {
  findings.warn(agent.nameOf(path) + " cannot be checked: " + readFailureReason(error),
                canActAs(agent.user) ? c_checkFile : runAs(agent.user), path);
}

}  // namespace tool
