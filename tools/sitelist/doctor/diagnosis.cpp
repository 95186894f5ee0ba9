#include "tools/sitelist/doctor/diagnosis.h"

#include "tools/sitelist/cli/failure.h"
#include "tools/sitelist/cli/log_record.h"
#include "tools/sitelist/doctor/checks.h"

namespace tool {
namespace {

struct Check {
  const char* name;
  void (*run)(const ExaminedAgent& agent, Findings& findings);
  const char* help;  // at most 60 columns in a line
};

constexpr Check c_checks[] = {
    {"settings", checkSettings, "agent.toml is valid and the agent's user can read it"},
    {"files", checkFiles, "the agent's files have the right owner and mode"},
    {"locks", checkLocks, "the lock files can be used, and no process blocks them"},
    {"password-key", checkPasswordKey, "the password key decrypts every password of the list"},
    {"list", checkList, "the agent's own list is valid (see `sitelist validate`)"},
    {"versions", checkVersions, "the list has a global and a local version"},
    {"mesh-copy", checkMeshCopy, "the mesh copy is the same as the list"},
    {"key-files", checkKeyFiles, "the key files are those that the server's version needs"},
    {"certificates", checkCertificates, "no certificate has expired or expires within 30 days"},
    {"left-overs", checkLeftOvers, "no temporary file is left from a process that has ended"},
    {"history", checkHistory, "each list of the history can be read"},
    {"free-space", checkFreeSpace, "there is space to write the list, and 64 MiB are free"},
    {"vendor-order", checkVendorOrder,
     "no vendor repository over FTP comes before the one over HTTP"},
    {"load-command", checkLoadCommand, "the agent's user can run the load command"},
};

constexpr std::size_t c_helpIndent = 16;

}  // namespace

std::vector<CheckResult> diagnose(const ExaminedAgent& agent) {
  std::vector<CheckResult> results;
  for (const Check& check : c_checks) {
    Findings findings;
    try {
      check.run(agent, findings);
    } catch (const Failure& failure) {
      findings.fail(failure.what(), failure.advice());
    }
    results.push_back({check.name, findings.all()});
  }
  clearLogRecords();
  return results;
}

std::string checkHelp() {
  std::string text;
  for (const Check& check : c_checks) {
    const std::string name = "  " + std::string(check.name);
    text.append(name).append(c_helpIndent - name.size(), ' ').append(check.help).append("\n");
  }
  return text;
}

}  // namespace tool
