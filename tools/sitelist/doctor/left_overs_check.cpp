#include <cerrno>
#include <set>

#include "host/fs/mend.h"
#include "tools/sitelist/agent/left_over.h"
#include "tools/sitelist/doctor/checks.h"

namespace tool {
namespace {

void addLeftOver(const ExaminedAgent& agent, const std::string& directory, const std::string& name,
                 const char* kind, const std::function<std::string()>& mend, Findings& findings) {
  std::string path = directory;
  path.append("/").append(name);
  Finding finding{State::Warning,
                  agent.nameOf(path) + " is a temporary " + kind + " of a process that has ended"};
  finding.file = path;
  finding.next = c_runFix;
  if (canActAs(agent.user)) {
    finding.mended = "removed " + agent.nameOf(path);
    finding.mend = mend;
  } else {
    finding.next = runAs(agent.user) + " with --fix";
  }
  findings.add(finding);
}

void findLeftOvers(const ExaminedAgent& agent, const std::string& directory, Findings& findings) {
  std::vector<std::string> names;
  const int error = host::findLeftOverTempFiles(directory, names);
  if (error == ENOENT || error == ENOTDIR) return;
  if (error != 0) return addUnchecked(agent, directory, error, findings);
  for (const std::string& name : names) {
    const auto mend = [directory] {
      return textOfError(host::removeLeftOverTempFilesIn(directory));
    };
    addLeftOver(agent, directory, name, "file", mend, findings);
  }
  for (const std::string& name : leftOverScratchDirectories(directory)) {
    const auto mend = [directory] {
      removeLeftOverScratchDirectories(directory);
      return std::string();
    };
    addLeftOver(agent, directory, name, "directory", mend, findings);
  }
}

}  // namespace

void checkLeftOvers(const ExaminedAgent& agent, Findings& findings) {
  std::set<std::string> directories = {agent.settings.dataDirectory};
  for (const char* name : {"etc", "etc/history", "mesh", "locks", "keystore"}) {
    directories.insert(agent.path(name));
  }
  for (const std::string& directory : directories) findLeftOvers(agent, directory, findings);
  findings.okIfNone("no temporary file is left from a process that has ended");
}

}  // namespace tool
