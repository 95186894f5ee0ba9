#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>

#include "host/config/setting_names.h"
#include "host/fs/file_system.h"
#include "tools/sitelist/cli/matching.h"
#include "tools/sitelist/cli/read_error.h"
#include "tools/sitelist/doctor/checks.h"

namespace tool {
namespace {

constexpr const char* c_defaultsInForce = "; processes of the agent use the default settings";

// Returns "; did you mean A?" for an unknown setting.
std::string similarSetting(const std::string& error) {
  const std::string mark = "unknown setting ";
  const std::size_t at = error.rfind(mark);
  return at == std::string::npos ? ""
                                 : suggestion(error.substr(at + mark.size()), host::settingNames());
}

// The directory of the mesh copy is not created by a write.
void checkMeshDirectory(const ExaminedAgent& agent, Findings& findings) {
  if (agent.settings.meshSiteListPath.empty()) return;
  const std::string directory = agent.meshPath.substr(0, agent.meshPath.rfind('/') + 1);
  struct stat status;
  const int failed = host::fileSystem().stat(AT_FDCWD, directory, true, status);
  if (failed == 0 && S_ISDIR(status.st_mode)) return;
  findings.fail(
      "mesh.site_list_path names a directory that cannot be used: " + agent.nameOf(directory) +
          ": " + std::generic_category().message(failed == 0 ? ENOTDIR : -failed),
      "create the directory, or correct mesh.site_list_path in agent.toml", directory);
}

}  // namespace

void checkSettings(const ExaminedAgent& agent, Findings& findings) {
  const std::string file = agent.path("agent.toml");
  struct stat status;
  const int failed = host::fileSystem().stat(AT_FDCWD, file, true, status);
  if (failed == -ENOENT) {
    findings.warn("there is no agent.toml, so the agent uses the default settings",
                  "create the file with `sitelist init`", file);
    return;
  }
  if (failed == -EACCES) return addUnchecked(agent, file, EACCES, findings);
  if (!agent.settingsError.empty()) {
    findings.fail(agent.settingsError + similarSetting(agent.settingsError) + c_defaultsInForce,
                  "correct the file; agent.toml(5) lists the settings", file);
    return;
  }
  const int unread = canActAs(agent.user) ? errorOfUse(agent.user, file, R_OK) : 0;
  if (unread != 0) {
    findings.fail(
        "the agent's user cannot read agent.toml: " + readFailureReason(unread) + c_defaultsInForce,
        "give " + userName(agent.user.id) + " permission to read the file", file);
  }
  checkMeshDirectory(agent, findings);
  findings.okIfNone("agent.toml is valid, and the agent's user can read it");
}

}  // namespace tool
