#include "platform/config/mesh_service.h"

#include "host/agent.h"
#include "host/common/encoding.h"
#include "host/detached_agent.h"
#include "host/lock/lock_hold.h"
#include "host/process/command.h"
#include "host/process/failure_text.h"
#include "platform/common/log.h"

namespace {

// The classes have no members, so the objects need no constructor or destructor.
MeshServiceConfiguration g_meshConfiguration;
MeshServiceStartupControl g_meshControl;

void logLine(const std::string& line) {
  logInfo(host::c_logComponent,
          AString(L"Mesh service load command: ").append(host::toWide(line.data(), line.size())));
}

}  // namespace

MeshServiceConfiguration* MeshServiceConfiguration::GetInstance() { return &g_meshConfiguration; }

std::wstring MeshServiceConfiguration::GetMeshSiteListPath() const {
  if (host::isDetached()) return std::wstring();
  const host::AgentSettings& settings = host::agent();
  const std::string path = settings.meshSiteListPath.empty()
                               ? settings.dataDirectory + "/mesh/SiteList.xml"
                               : settings.meshSiteListPath;
  return host::toWide(path.data(), path.size());
}

MeshServiceStartupControl* MeshServiceStartupControl::GetInstance(void* /*reserved1*/,
                                                                  void* /*reserved2*/) {
  return &g_meshControl;
}

int MeshServiceStartupControl::RunMeshServiceLoadSiteListCmd() {
  const host::AgentSettings& settings = host::agent();
  const std::vector<std::string>& command = settings.meshLoadCommand;
  if (command.empty()) {
    logError(host::c_logComponent,
             AString(L"The mesh service did not load the list: no load command is set; next: set "
                     L"mesh.load_command in agent.toml"));
    return 0;
  }
  // The command may read the list under its lock. It would wait for this process, so the locks are
  // released first.
  host::releaseHolds();
  host::OutputLines output(logLine);
  const std::string failure = host::runCommand(command, settings.meshLoadTimeoutSeconds, output);
  if (failure.empty()) return 1;
  const std::string text = "Mesh service load command " + command.front() + " failed: " + failure +
                           "; next: run the command by hand; the log has its output";
  logError(host::c_logComponent, AString(text.c_str()));
  return 0;
}
