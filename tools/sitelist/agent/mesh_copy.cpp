#include "tools/sitelist/agent/mesh_copy.h"

#include <sys/stat.h>

#include "host/fs/files.h"
#include "platform/config/mesh_service.h"
#include "tools/sitelist/agent/agent_access.h"
#include "tools/sitelist/cli/input.h"
#include "tools/sitelist/cli/messages.h"
#include "tools/sitelist/cli/read_error.h"
#include "tools/sitelist/cli/text.h"

namespace tool {
namespace {

constexpr mode_t c_modeOfNewCopy = S_IRUSR | S_IWUSR | S_IRGRP;

}  // namespace

void updateMeshCopy(const Context& context) {
  serveAgent(context);
  const std::string copy = narrow(MeshServiceConfiguration::GetInstance()->GetMeshSiteListPath());
  std::string bytes;
  int error = tryReadBytes(ownListPath(context), bytes);
  if (error == 0) error = host::replaceFile(copy, bytes.data(), bytes.size(), c_modeOfNewCopy);
  if (error != 0) {
    printWarning(shown(copy) + ": the mesh copy could not be written: " + readFailureReason(error),
                 "check that its directory exists and that you may write there");
    return;
  }
  // A failure is logged.
  MeshServiceStartupControl::GetInstance(nullptr, nullptr)->RunMeshServiceLoadSiteListCmd();
}

}  // namespace tool
