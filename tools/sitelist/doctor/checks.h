#ifndef TOOLS_SITELIST_DOCTOR_CHECKS_H
#define TOOLS_SITELIST_DOCTOR_CHECKS_H

#include "tools/sitelist/doctor/examined_agent.h"
#include "tools/sitelist/doctor/finding.h"

namespace tool {

// Each function makes one check and adds at least one finding. None of them changes files.
void checkSettings(const ExaminedAgent& agent, Findings& findings);
void checkFiles(const ExaminedAgent& agent, Findings& findings);
void checkLocks(const ExaminedAgent& agent, Findings& findings);
void checkPasswordKey(const ExaminedAgent& agent, Findings& findings);
void checkList(const ExaminedAgent& agent, Findings& findings);
void checkVersions(const ExaminedAgent& agent, Findings& findings);
void checkMeshCopy(const ExaminedAgent& agent, Findings& findings);
void checkKeyFiles(const ExaminedAgent& agent, Findings& findings);
void checkCertificates(const ExaminedAgent& agent, Findings& findings);
void checkLeftOvers(const ExaminedAgent& agent, Findings& findings);
void checkHistory(const ExaminedAgent& agent, Findings& findings);
void checkFreeSpace(const ExaminedAgent& agent, Findings& findings);
void checkVendorOrder(const ExaminedAgent& agent, Findings& findings);
void checkLoadCommand(const ExaminedAgent& agent, Findings& findings);

// The bounds that the help states.
constexpr int c_daysBeforeExpiry = 30;
constexpr unsigned long long c_lowMegabytes = 64;

// The advice for a fault that --fix mends.
constexpr const char* c_runFix = "run `sitelist doctor --fix`";

// The advice for what was not checked, because the list cannot be read.
constexpr const char* c_listFirst = "follow the advice of the check \"list\" first";

// Adds the finding for a file that cannot be examined because of this errno.
void addUnchecked(const ExaminedAgent& agent, const std::string& path, int error,
                  Findings& findings);

// Adds a finding and returns false if there is no list that can be checked.
bool requireList(const ExaminedAgent& agent, Findings& findings);

}  // namespace tool

#endif
