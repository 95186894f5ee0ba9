#ifndef TOOLS_SITELIST_DOCTOR_DIAGNOSIS_REPORT_H
#define TOOLS_SITELIST_DOCTOR_DIAGNOSIS_REPORT_H

#include <map>
#include <string>
#include <vector>

#include "tools/sitelist/doctor/diagnosis.h"
#include "tools/sitelist/report/context.h"

namespace tool {

// The findings that were mended, by the name of their check.
using Mended = std::map<std::string, std::vector<Finding>>;

// Returns the report of a diagnosis. What was mended comes before the other findings of its check.
Report reportOf(const Context& context, const std::vector<CheckResult>& results,
                const Mended& mended);

bool hasFailure(const std::vector<CheckResult>& results);

// Removes from `mended` the faults that a later diagnosis still finds, and returns the rest.
Mended withoutRemaining(Mended mended, const std::vector<CheckResult>& results);

}  // namespace tool

#endif
