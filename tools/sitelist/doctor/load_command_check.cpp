#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>

#include "host/fs/file_system.h"
#include "tools/sitelist/cli/text.h"
#include "tools/sitelist/doctor/checks.h"

namespace tool {

// Does not run the command.
void checkLoadCommand(const ExaminedAgent& agent, Findings& findings) {
  if (agent.settings.meshLoadCommand.empty()) {
    findings.warn("no load command is set, so the mesh service does not load new lists",
                  "set mesh.load_command in agent.toml", agent.path("agent.toml"));
    return;
  }
  const std::string& program = agent.settings.meshLoadCommand.front();
  struct stat status;
  int error = -host::fileSystem().stat(AT_FDCWD, program, true, status);
  if (error == 0 && !S_ISREG(status.st_mode)) error = EACCES;
  if (error == 0 && !canActAs(agent.user)) return addUnchecked(agent, program, EACCES, findings);
  if (error == 0) error = errorOfUse(agent.user, program, X_OK);
  if (error != 0) {
    findings.fail("the agent's user cannot run the load command " + shown(program) + ": " +
                      std::generic_category().message(error),
                  "make the program executable, or correct mesh.load_command in agent.toml",
                  program);
  }
  findings.okIfNone("the agent's user can run the load command " + shown(program));
}

}  // namespace tool
