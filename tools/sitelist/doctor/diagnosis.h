#ifndef TOOLS_SITELIST_DOCTOR_DIAGNOSIS_H
#define TOOLS_SITELIST_DOCTOR_DIAGNOSIS_H

#include <string>
#include <vector>

#include "tools/sitelist/doctor/examined_agent.h"
#include "tools/sitelist/doctor/finding.h"

namespace tool {

// The findings of one check, at least one.
struct CheckResult {
  const char* check;  // the name; must not change in later releases
  std::vector<Finding> findings;
};

// Makes all checks. Changes no file.
std::vector<CheckResult> diagnose(const ExaminedAgent& agent);

// Returns the names of the checks and what they check, for the help.
std::string checkHelp();

}  // namespace tool

#endif
