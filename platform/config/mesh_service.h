#ifndef PLATFORM_CONFIG_MESH_SERVICE_H
#define PLATFORM_CONFIG_MESH_SERVICE_H

#include <string>

#include "platform/export.h"

// The mesh service keeps its own copy of the site list and is told to load it. Both objects belong
// to the configuration library and live until the process ends; any thread may use them.

// Where the copy is.
class PLATFORM_API MeshServiceConfiguration {
 public:
  // The one of this process; never null.
  static MeshServiceConfiguration* GetInstance();

  // Full path of the mesh service's copy of the site list. Does not block.
  std::wstring GetMeshSiteListPath() const;
};

// Tells the service to load it.
class PLATFORM_API MeshServiceStartupControl {
 public:
  // The one of this process; never null. Both arguments are reserved and null.
  static MeshServiceStartupControl* GetInstance(void* reserved1, void* reserved2);

  // Asks the mesh service to load its site list and waits for the answer. 1 on success, any other
  // value on failure, which the implementation logs. May block as long as the agent's settings let
  // the command run. Works whatever the process does with SIGCHLD and with its children.
  int RunMeshServiceLoadSiteListCmd();
};

#endif
