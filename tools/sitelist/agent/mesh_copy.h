#ifndef TOOLS_SITELIST_AGENT_MESH_COPY_H
#define TOOLS_SITELIST_AGENT_MESH_COPY_H

#include "tools/sitelist/report/context.h"

namespace tool {

// Writes the agent's own list as the mesh copy and runs the load command, for changes after which
// the library does not do this. Makes the agent of the command line the current agent. The caller
// holds the lock of the list; the load command runs without it. The list has been changed, so a
// failure is only reported.
void updateMeshCopy(const Context& context);

}  // namespace tool

#endif
