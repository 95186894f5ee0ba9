#ifndef TOOLS_SITELIST_EDIT_NEW_FAULTS_H
#define TOOLS_SITELIST_EDIT_NEW_FAULTS_H

#include <string>
#include <vector>

#include "tools/sitelist/cli/failure.h"
#include "tools/sitelist/validate/fault.h"

namespace tool {

// The faults that a change of the list would add, by the rules of `validate`. `draft` is the
// changed list, next to the same key files. A fault is new if the list breaks its rule less often.
// The rules for the management server apply if the agent that is served is managed.
std::vector<Fault> newFaults(const std::string& path, const std::string& draft);

// The failure of a change of the list that would add these faults.
Failure refusalOf(const std::string& path, const std::vector<Fault>& faults);

}  // namespace tool

#endif
