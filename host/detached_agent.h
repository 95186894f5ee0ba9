#ifndef HOST_DETACHED_AGENT_H
#define HOST_DETACHED_AGENT_H

#include "host/agent.h"

namespace host {

// Sets the agent as setAgent does, for work on files that do not belong to this agent. From now on,
// until the next setAgent:
//
// - A named lock is taken at once, excludes nobody, and makes no file. The agent's locks guard only
//   the agent's own files.
// - There is no mesh copy and no load command.
// - The password key is read but never created. If the key file is missing or cannot be examined,
//   the key is a random one that only this process has.
//
// The data directory need not exist. Nothing is written in it, except that the mode of a key file
// may be corrected. Throws as setAgent does.
PLATFORM_API void setDetachedAgent(const AgentSettings& settings);

// Returns whether setDetachedAgent has set the current agent. Any thread.
bool isDetached();

}  // namespace host

#endif
