#ifndef TOOLS_SITELIST_EDIT_NEW_FAULTS_H
#define TOOLS_SITELIST_EDIT_NEW_FAULTS_H

#include <string>
#include <vector>

#include "tools/sitelist/cli/failure.h"
#include "tools/sitelist/validate/fault.h"

namespace tool {

// Returns the faults that a change would add to the list at `path`. `draft` is the changed list.
// Its key files must be next to it, unless `hasKeyFiles` is false. A fault is new if the old list
// breaks its rule less often. The rules for the management server apply if the current agent is
// managed.
std::vector<Fault> newFaults(const std::string& path, const std::string& draft, bool hasKeyFiles);

// Returns the failure of a change that would add these faults.
Failure refusalOf(const std::string& path, const std::vector<Fault>& faults);

}  // namespace tool

#endif
