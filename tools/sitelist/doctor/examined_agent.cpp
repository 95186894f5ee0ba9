#include "tools/sitelist/doctor/examined_agent.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <algorithm>
#include <cerrno>

#include "host/detached_agent.h"
#include "host/fs/file_system.h"
#include "platform/config/mesh_service.h"
#include "tools/sitelist/agent/agent_access.h"
#include "tools/sitelist/cli/failure.h"
#include "tools/sitelist/cli/input.h"
#include "tools/sitelist/cli/log_record.h"
#include "tools/sitelist/cli/text.h"
#include "tools/sitelist/model/root.h"
#include "tools/sitelist/validate/validation.h"

namespace tool {
namespace {

void readSettings(const Context& context, ExaminedAgent& agent) {
  try {
    agent.settings = host::readAgentSettings(context.agentDirectory);
  } catch (const host::SettingsError& error) {
    agent.settings.dataDirectory = context.agentDirectory;
    agent.settingsError = shown(std::string(error.what()));
  }
}

// The path of the mesh copy is only known for an agent that is not detached.
void serve(const Context& context, ExaminedAgent& agent) {
  host::setAgent(agent.settings);
  agent.meshPath = narrow(MeshServiceConfiguration::GetInstance()->GetMeshSiteListPath());
  host::setDetachedAgent(agent.settings);
  recordLog(context.verbose);
}

void readList(ExaminedAgent& agent) {
  agent.listError = tryReadBytes(agent.listPath, agent.listBytes);
  if (agent.listError != 0) return;
  agent.faults = validateList({agent.listPath, agent.listPath}, agent.settings.managed);
  if (!agent.isUnreadable()) agent.list = readWholeSiteList(agent.listPath);
}

}  // namespace

std::string ExaminedAgent::nameOf(const std::string& path) const {
  const std::string start = settings.dataDirectory + "/";
  return shown(path.rfind(start, 0) == 0 ? path.substr(start.size()) : path);
}

bool ExaminedAgent::hasNoList() const { return listError == ENOENT || listError == ENOTDIR; }

bool ExaminedAgent::isUnreadable() const {
  return std::any_of(faults.begin(), faults.end(), [](const Fault& fault) {
    return fault.rule->status == exitDocument || fault.rule->status == exitFile;
  });
}

ExaminedAgent examineAgent(const Context& context, unsigned int lockWait) {
  requireDataDirectory(context);
  ExaminedAgent agent;
  agent.context = &context;
  agent.lockWait = lockWait;
  readSettings(context, agent);
  serve(context, agent);
  struct stat status;
  if (host::fileSystem().stat(AT_FDCWD, context.agentDirectory, true, status) == 0) {
    agent.user = {status.st_uid, status.st_gid};
  }
  agent.listPath = ownListPath(context);
  try {
    readList(agent);
  } catch (const Failure&) {
    agent.list.reset();  // the root is not that of a site list, or the file has changed meanwhile
  }
  return agent;
}

}  // namespace tool
