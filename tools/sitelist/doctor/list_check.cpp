#include <cerrno>

#include "tools/sitelist/cli/text.h"
#include "tools/sitelist/doctor/checks.h"

namespace tool {
namespace {

// Other checks report these faults.
bool isOfOtherCheck(const Fault& fault) {
  const std::string rule = fault.rule->name;
  return rule.rfind("certificate-", 0) == 0 || rule == "server-request-key" ||
         rule == "server-public-key" || rule == "missing-global-version";
}

// An agent that is not managed may have an empty list.
bool isGrave(const ExaminedAgent& agent, const Fault& fault) {
  const bool isEmptiness = std::string(fault.rule->name) == "no-sites";
  return fault.rule->severity == Severity::Error && (agent.settings.managed || !isEmptiness);
}

// Reports the faults of one severity as one result: the first fault and the number of the others.
void addFaults(const ExaminedAgent& agent, const std::vector<const Fault*>& faults, State state,
               Findings& findings) {
  if (faults.empty()) return;
  Rule rule = *faults.front()->rule;
  rule.severity = Severity::Error;  // so that the line does not end with "[warning]"
  Fault first = *faults.front();
  first.rule = &rule;
  std::string text = lineOf(agent.nameOf(agent.listPath), first);
  if (faults.size() > 1) {
    text += "; " + std::to_string(faults.size() - 1) + " more " +
            (state == State::Failure ? "error" : "warning") + (faults.size() > 2 ? "s" : "");
  }
  const std::string options = agent.settings.managed ? "" : "--unmanaged ";
  findings.add({state, text,
                "see `sitelist validate " + options + shown(agent.listPath) +
                    "` and `sitelist explain-rule " + rule.name + "`",
                agent.listPath});
}

}  // namespace

void checkList(const ExaminedAgent& agent, Findings& findings) {
  if (agent.hasNoList()) {
    findings.add({agent.settings.managed ? State::Failure : State::Warning,
                  "the agent has no list yet", "create it with `sitelist import`", agent.listPath});
    return;
  }
  if (agent.listError != 0) return addUnchecked(agent, agent.listPath, agent.listError, findings);
  if (!agent.list && !agent.isUnreadable()) {
    findings.fail(agent.nameOf(agent.listPath) + " is not a site list",
                  "restore a list with `sitelist undo`, or import one", agent.listPath);
    return;
  }
  std::vector<const Fault*> errors;
  std::vector<const Fault*> warnings;
  for (const Fault& fault : agent.faults) {
    if (!isOfOtherCheck(fault)) (isGrave(agent, fault) ? errors : warnings).push_back(&fault);
  }
  addFaults(agent, errors, State::Failure, findings);
  addFaults(agent, warnings, State::Warning, findings);
  findings.okIfNone("the list is valid");
}

void checkVersions(const ExaminedAgent& agent, Findings& findings) {
  if (!requireList(agent, findings)) return;
  const SiteList& list = *agent.list;
  const std::string import = "import the list again from the management server";
  if (list.globalVersion.empty()) {
    findings.warn("the list has no global version, so it cannot be compared with another list",
                  import, agent.listPath);
  }
  if (list.localVersion.empty()) {
    findings.warn("the list has no local version", import, agent.listPath);
  }
  findings.okIfNone("global " + shown(inQuotes(list.globalVersion)) + ", local " +
                    shown(inQuotes(list.localVersion)));
}

bool requireList(const ExaminedAgent& agent, Findings& findings) {
  if (agent.list) return true;
  if (agent.hasNoList()) {
    findings.ok("there is no list");
  } else {
    findings.warn("not checked, because the list cannot be read", c_listFirst, agent.listPath);
  }
  return false;
}

}  // namespace tool
