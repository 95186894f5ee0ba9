#ifndef HOST_DETACHED_AGENT_H
#define HOST_DETACHED_AGENT_H

#include "host/agent.h"

namespace host {

// Sets the agent as setAgent does, for work on files that are not its own. From now on, until the
// next setAgent:
//
// - A named lock is taken at once, excludes nobody, and makes no file. The agent's locks guard only
//   the agent's own files.
// - There is no mesh copy and no load command.
// - The password key is read but never created. Without a key file, passwords are decrypted and
//   encrypted with a random key that only this process has.
//
// The data directory need not exist. Nothing is written in it, except that the mode of a key file
// may be corrected. Throws as setAgent does.
PLATFORM_API void setDetachedAgent(const AgentSettings& settings);

// Whether the present agent was set by setDetachedAgent. Any thread.
bool isDetached();

}  // namespace host

#endif
