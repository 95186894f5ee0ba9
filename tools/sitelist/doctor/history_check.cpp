#include <fcntl.h>

#include <cerrno>

#include "host/fs/descriptor.h"
#include "tools/sitelist/cli/read_error.h"
#include "tools/sitelist/doctor/checks.h"
#include "tools/sitelist/history/history.h"

namespace tool {
namespace {

constexpr const char* c_remove = "this file cannot be restored with `sitelist undo`; remove it";

void checkEntry(const ExaminedAgent& agent, const HistoryEntry& entry, Findings& findings) {
  const auto error = findReadError(entry.path);
  if (!error) return;
  findings.warn(agent.nameOf(entry.path) + " cannot be read as a list: " + error->reason,
                error->status == exitFile ? runAs(agent.user) : c_remove, entry.path);
}

}  // namespace

void checkHistory(const ExaminedAgent& agent, Findings& findings) {
  const std::string directory = agent.path("etc/history");
  const host::Descriptor opened(
      host::fileSystem().open(AT_FDCWD, directory, O_RDONLY | O_DIRECTORY, 0));
  if (opened.error() == EACCES) return addUnchecked(agent, directory, EACCES, findings);
  const std::vector<HistoryEntry> entries = historyOf(agent.listPath);
  for (const HistoryEntry& entry : entries) checkEntry(agent, entry, findings);
  if (hasPendingCopyOfEndedProcess(agent.listPath)) {
    findings.warn(
        "a command ended before it had completed the history; the next change of the list "
        "completes it",
        "", directory);
  }
  const bool isOff = agent.settings.historyLength == 0;
  findings.okIfNone(!entries.empty() ? "every list of the history can be read"
                    : isOff          ? "the history is off and empty"
                                     : "the history is empty");
}

}  // namespace tool
