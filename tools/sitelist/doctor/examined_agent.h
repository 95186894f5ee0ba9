#ifndef TOOLS_SITELIST_DOCTOR_EXAMINED_AGENT_H
#define TOOLS_SITELIST_DOCTOR_EXAMINED_AGENT_H

#include <optional>
#include <string>
#include <vector>

#include "host/agent.h"
#include "tools/sitelist/doctor/agent_user.h"
#include "tools/sitelist/model/site_list.h"
#include "tools/sitelist/report/context.h"
#include "tools/sitelist/validate/fault.h"

namespace tool {

// What the checks know about an agent. Its files were read without a lock.
struct ExaminedAgent {
  const Context* context = nullptr;
  host::AgentSettings settings;  // the defaults if the settings file cannot be used
  std::string settingsError;     // why it cannot be used, printable; empty if it can
  AgentUser user;

  std::string listPath;
  std::string meshPath;
  int listError = 0;  // errno of reading the agent's own list
  std::string listBytes;
  std::optional<SiteList> list;  // empty if the bytes cannot be read as a site list
  std::vector<Fault> faults;     // of the list, as for `validate`

  unsigned int lockWait = 0;  // longest wait for locks, in milliseconds

  // Returns the path of a file in the data directory.
  std::string path(const std::string& name) const { return settings.dataDirectory + "/" + name; }
  // Returns the path as messages show it, relative to the data directory if it is in there.
  std::string nameOf(const std::string& path) const;
  bool hasNoList() const;
  // Returns whether a fault of the list is that it cannot be read.
  bool isUnreadable() const;
};

// Reads the files of the agent of the command line. Makes this agent the current agent, detached
// (host/detached_agent.h). Fails if its data directory does not exist.
ExaminedAgent examineAgent(const Context& context, unsigned int lockWait);

}  // namespace tool

#endif
