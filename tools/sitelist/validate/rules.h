#ifndef TOOLS_SITELIST_VALIDATE_RULES_H
#define TOOLS_SITELIST_VALIDATE_RULES_H

#include <string>
#include <vector>

#include "tools/sitelist/cli/exit_status.h"

namespace tool {

// Error: the agent refuses the list. Warning: the agent accepts the list, but probably reads it
// differently than intended.
enum class Severity { Error, Warning };

// A condition on a list. Names must not change in later releases.
struct Rule {
  const char* name;
  Severity severity;
  ExitStatus status;  // exit status for a list that breaks it
  const char* summary;
  const char* why;
  const char* mend;
  const char* faulty;  // one line as an example of a fault
  const char* mended;  // the same line after the correction
};

// Returns all rules: first those of the file, the list and the management server, then the
// warnings.
const std::vector<Rule>& allRules();

// Returns the rule with that name, or null.
const Rule* findRule(const std::string& name);

const char* nameOf(Severity severity);

// Returns the names and summaries of the rules of that severity, for the help.
std::string ruleHelp(Severity severity);

}  // namespace tool

#endif
