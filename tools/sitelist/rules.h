#ifndef TOOLS_SITELIST_RULES_H
#define TOOLS_SITELIST_RULES_H

#include <string>
#include <vector>

namespace tool {

struct BrokenRule {
  const char* name;  // never changes from one release to the next
  std::string text;  // as the library logged it, printable
};

// The rules that the checks logged as broken, in their order.
std::vector<BrokenRule> brokenRules();

// All names of rules, with what each asks for, for the help.
std::string ruleHelp();

}  // namespace tool

#endif
