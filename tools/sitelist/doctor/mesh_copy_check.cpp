#include <cerrno>
#include <chrono>
#include <thread>

#include "host/fs/files.h"
#include "tools/sitelist/agent/mesh_copy.h"
#include "tools/sitelist/cli/input.h"
#include "tools/sitelist/cli/read_error.h"
#include "tools/sitelist/doctor/checks.h"

namespace tool {
namespace {

constexpr mode_t c_modeOfMeshDirectory = 0755;
constexpr int c_readings = 10;
constexpr std::chrono::milliseconds c_pauseBeforeReading{50};

// Compares the files several times, because a process of the agent writes the mesh copy shortly
// after the list. Returns 0 or the errno of reading the copy.
int compareMeshCopy(const ExaminedAgent& agent, bool& isSame) {
  int error = 0;
  isSame = false;
  for (int attempt = 0; attempt < c_readings && !isSame; ++attempt) {
    if (attempt != 0) std::this_thread::sleep_for(c_pauseBeforeReading);
    std::string list;
    std::string copy;
    error = tryReadBytes(agent.meshPath, copy);
    isSame = error == 0 && tryReadBytes(agent.listPath, list) == 0 && copy == list;
  }
  return error;
}

// A failure is reported by updateMeshCopy, and found by the next examination.
int mendMeshCopy(const ExaminedAgent& agent) {
  if (agent.settings.meshSiteListPath.empty()) {
    const std::string directory = agent.meshPath.substr(0, agent.meshPath.rfind('/'));
    if (const int error = host::makeDirectory(directory, c_modeOfMeshDirectory)) return error;
  }
  updateMeshCopy(*agent.context);
  return 0;
}

}  // namespace

void checkMeshCopy(const ExaminedAgent& agent, Findings& findings) {
  if (!requireList(agent, findings)) return;
  bool isSame = false;
  const int error = compareMeshCopy(agent, isSame);
  if (error == EACCES) return addUnchecked(agent, agent.meshPath, error, findings);
  if (isSame) {
    findings.ok("the mesh copy is the same as the list");
    return;
  }
  const std::string name = agent.nameOf(agent.meshPath);
  const bool isMissing = error == ENOENT || error == ENOTDIR;
  Finding finding{State::Failure,
                  isMissing ? "there is no mesh copy: " + name
                  : error == 0
                      ? "the mesh copy differs from the list: " + name
                      : "the mesh copy " + name + " cannot be read: " + readFailureReason(error)};
  finding.file = agent.meshPath;
  if (canActAs(agent.user)) {
    finding.next = c_runFix;
    finding.mended = "wrote the mesh copy";
    finding.isLast = true;
    finding.mend = [&agent] { return textOfError(mendMeshCopy(agent)); };
  } else {
    finding.next = runAs(agent.user) + " with --fix";
  }
  findings.add(finding);
}

}  // namespace tool
