#ifndef PLATFORM_CONFIG_MESH_SERVICE_H
#define PLATFORM_CONFIG_MESH_SERVICE_H

#include <string>

#include "platform/export.h"

// The mesh service is a service on the same machine. It works with the mesh copy, a copy of the
// agent's own list. Both objects belong to the configuration library and exist until the process
// ends. Any thread may use them.

// The configuration of the mesh service.
class PLATFORM_API MeshServiceConfiguration {
 public:
  // Returns the object of this process; never null.
  static MeshServiceConfiguration* GetInstance();

  // Returns the full path of the mesh copy, or an empty text if the mesh service gets no list from
  // this process. The first call may block, because it reads the agent's settings.
  std::wstring GetMeshSiteListPath() const;
};

// Makes the mesh service load the mesh copy.
class PLATFORM_API MeshServiceStartupControl {
 public:
  // Returns the object of this process; never null. Both arguments are reserved and must be null.
  static MeshServiceStartupControl* GetInstance(void* reserved1, void* reserved2);

  // Runs the load command and waits for its end. Returns 1 on success and another value on failure,
  // which is logged. Blocks at most for the time in the agent's settings and a few seconds. Does
  // not depend on how the process handles SIGCHLD or waits for its children.
  int RunMeshServiceLoadSiteListCmd();
};

#endif
