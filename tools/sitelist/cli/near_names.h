#ifndef TOOLS_SITELIST_CLI_NEAR_NAMES_H
#define TOOLS_SITELIST_CLI_NEAR_NAMES_H

#include <string>
#include <vector>

namespace tool {

// Those of `known` that may have been meant by a name that is none of them, the nearest first.
std::vector<std::string> nearNames(const std::string& name, const std::vector<std::string>& known);

// "; did you mean A, B or C?", empty when there is nothing near.
std::string suggestion(const std::string& name, const std::vector<std::string>& known);

}  // namespace tool

#endif
